#include "kel/session/player.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "cli/error.h"
#include "cli/nearest_name.h"
#include "kel/session/session_memory.h"
#include "kel/session/session_values.h"
#include "kel/video/sound_reader.h"

namespace kel {
namespace {

picture_io::Picture Black() {
    picture_io::Picture picture(1, 1);
    picture.Set(0, 0, {0, 0, 0, 255});
    return picture;
}

}  // namespace

Player::Player(const Session& session, Host& host, const std::filesystem::path& defaultModule,
               SessionPermissions permissions)
    : m_session(session),
      m_host(host),
      m_permissions(std::move(permissions)),
      m_access(m_session, m_permissions),
      m_pointer(PointerTrack(session)) {
    CheckMemory(m_session, m_access, m_permissions);
    Camera camera;
    camera.position = session.camera.position;
    camera.target = session.camera.target;
    camera.fieldOfView = session.camera.fieldOfView;
    m_host.SetCamera(camera);
    for (const SessionContainer& container : session.containers) BuildContainer(container, defaultModule);
    for (const SessionEvent& event : session.events) PreparePendingChange(event);
}

void Player::BuildContainer(const SessionContainer& container, const std::filesystem::path& defaultModule) {
    Placement placement;
    placement.name = container.name;
    placement.size = container.size;
    placement.position = container.position;
    placement.rotation = container.rotation;
    placement.scale = container.scale;
    Container& played = m_containers.emplace_back();
    played.id = m_host.AddContainer(placement);
    if (!container.picture.empty())
        m_host.SetPicture(played.id, ReadPictureAt(container.picture, container.place + "/picture"));
    if (!container.video.empty()) played.video = OpenVideo(container, played.id);
    if (!container.live.empty()) m_host.SetPicture(played.id, Black());
    if (!container.plugin) return;
    played.module = &LoadModule(*container.plugin, defaultModule);
    m_host.Attach(played.id, *played.module, Settings(container.plugin->parameters, *played.module));
    played.ink = std::make_unique<ContainerInk>(m_host, played.id, *played.module);
}

std::unique_ptr<VideoShow> Player::OpenVideo(const SessionContainer& container, ObjectId id) const {
    const std::string place = container.place + "/film";
    const std::filesystem::path file = m_access.InputFile(container.video, place);
    try {
        return std::make_unique<VideoShow>(VideoReader(file), id, m_session.fieldsPerSecond,
                                           std::make_shared<FileTrack>(file));
    } catch (const cli::Error& error) {
        throw cli::Error(m_session.file.string(), place, error.what());
    }
}

const Module& Player::LoadModule(const SessionPlugin& plugin, const std::filesystem::path& defaultModule) {
    if (plugin.module.empty()) return m_host.LoadModule(defaultModule);
    const std::filesystem::path file = m_access.ModuleFile(plugin);
    try {
        return m_host.LoadModule(file);
    } catch (const cli::Error& error) {
        throw cli::Error(m_session.file.string(), plugin.place + "/module", error.what());
    }
}

std::vector<ParameterSetting> Player::Settings(const std::vector<SessionValue>& values, const Module& module) {
    std::vector<ParameterSetting> settings;
    for (const SessionValue& value : values) {
        const Parameter& parameter = ParameterOf(m_session, value, module.registration.parameters);
        settings.push_back({value.name, ToParameterValue(m_session, value, parameter)});
        if (parameter.kind != ParameterKind::Image) continue;
        const auto& path = std::get<std::string>(settings.back().value);
        if (!path.empty()) m_host.AddImage(path, ReadPictureAt(path, value.place));
    }
    return settings;
}

picture_io::Picture Player::ReadPictureAt(const std::string& path, const std::string& place) const {
    const std::filesystem::path file = m_access.InputFile(path, place);
    try {
        return picture_io::ReadPicture(file);
    } catch (const cli::Error& error) {
        throw cli::Error(m_session.file.string(), place, error.what());
    }
}

void Player::PreparePendingChange(const SessionEvent& event) {
    PendingChange change;
    change.field = event.field;
    if (const auto* set = std::get_if<SetEvent>(&event.what)) {
        change.container = set->container;
        change.settings = Settings(set->values, *m_containers[set->container].module);
    } else if (const auto* button = std::get_if<ButtonEvent>(&event.what)) {
        CheckButton(event, button->name, *m_containers[button->container].module);
        change.container = button->container;
        change.button = button->name;
    } else if (const auto* video = std::get_if<VideoEvent>(&event.what)) {
        CheckFrame(event, *video);
        change.container = video->container;
        change.video = video->change;
    } else if (const auto* ink = std::get_if<InkEvent>(&event.what)) {
        change.container = ink->container;
        change.ink = PrepareInk(event, *ink);
    } else if (const auto* save = std::get_if<SaveEvent>(&event.what)) {
        change.save = save->name;
    } else {
        return;
    }
    m_pendingChanges.push_back(std::move(change));
}

void Player::CheckButton(const SessionEvent& event, const std::string& name, const Module& module) const {
    if (module.registration.FindButton(name)) return;
    std::vector<std::string> names;
    for (const Button& button : module.registration.buttons) names.push_back(button.name);
    throw cli::Error(m_session.file.string(), event.place + "/button",
                     "there is no button " + cli::Quoted(name) + cli::NearestHint(name, names));
}

void Player::CheckFrame(const SessionEvent& event, const VideoEvent& video) const {
    const std::int64_t last = m_containers[video.container].video->Clock().Frames() - 1;
    const auto check = [&](const char* key, const std::optional<std::int64_t>& frame) {
        if (frame.value_or(0) > last)
            throw cli::Error(m_session.file.string(), event.place + "/film/" + key,
                             "the film's last frame is " + std::to_string(last) + ", not " + std::to_string(*frame));
    };
    check("frame", video.change.frame);
    check("in", video.change.in);
    check("out", video.change.out);
}

void Player::ChangeVideo(std::size_t container, const VideoChange& change) {
    m_containers[container].video->Change(change, m_field);
}

void Player::SetVideo(std::size_t container, std::unique_ptr<VideoShow> video) {
    m_containers[container].video = std::move(video);
}

SoundMoment Player::Heard() const {
    for (const Container& container : m_containers)
        if (container.video) return container.video->Heard(std::max<std::int64_t>(m_field - 1, 0));
    return {};
}

void Player::SetVideoConversion(VideoConversion conversion) {
    for (const Container& container : m_containers)
        if (container.video) container.video->SetConversion(conversion);
}

void Player::ShowVideosExactly() {
    bool isOther = false;
    for (const Container& container : m_containers)
        if (container.video && m_field > 0) isOther = container.video->ShowExactly(m_host, m_field - 1) || isOther;
    if (isOther) m_host.DrawAgain();
}

void Player::ShowVideoFrame(std::size_t container, std::int64_t frame) {
    if (m_containers[container].video->ShowFrame(m_host, frame)) m_host.DrawAgain();
}

// Those of the field to come; returns what it saves.
std::vector<std::string> Player::DeliverPendingChanges() {
    std::vector<std::string> saves;
    for (; m_nextPendingChange < m_pendingChanges.size() && m_pendingChanges[m_nextPendingChange].field == m_field;
         ++m_nextPendingChange) {
        const PendingChange& change = m_pendingChanges[m_nextPendingChange];
        const ObjectId container = m_containers[change.container].id;
        for (const ParameterSetting& setting : change.settings)
            m_host.SetParameter(container, setting.name, setting.value);
        if (!change.button.empty()) PushButton(change.container, change.button);
        if (change.ink) EditInk(change.container, *change.ink);
        if (change.video) ChangeVideo(change.container, *change.video);
        if (!change.save.empty()) saves.push_back(change.save);
    }
    return saves;
}

std::vector<std::string> Player::PlayField(Rendering rendering, int fieldsDue) {
    for (; m_nextPointer < m_pointer.size() && m_pointer[m_nextPointer].field == m_field; ++m_nextPointer) {
        const auto& [field, step, isStep] = m_pointer[m_nextPointer];
        m_host.QueuePointer(step.kind, step.x, step.y, step.pressure);
        if (!isStep) continue;
        m_host.SetDrawing(false);
        m_host.RunStep();
    }
    for (const Container& container : m_containers)
        if (container.ink) container.ink->BeforeField();
    std::vector<std::string> saves = DeliverPendingChanges();
    const bool isLast = m_field + 1 == m_session.fields;
    const bool isDrawn = rendering == Rendering::Wanted || !saves.empty() || isLast;
    std::exception_ptr damaged;
    try {
        if (isDrawn) ShowVideos();
    } catch (const cli::Error&) {
        damaged = std::current_exception();
    }
    m_host.SetDrawing(isDrawn);
    m_host.RunField(fieldsDue);
    ++m_field;
    if (damaged) std::rethrow_exception(damaged);
    return saves;
}

void Player::ShowVideos() {
    for (const Container& container : m_containers)
        if (container.video) container.video->Show(m_host, m_field);
}

ObjectId Player::OverlayContainer() const {
    for (const Container& container : m_containers)
        if (container.module != nullptr) return container.id;
    return noObject;
}

}  // namespace kel
