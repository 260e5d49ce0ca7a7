#include "host/player.h"

#include <exception>

#include "host/error.h"
#include "host/session_nearest.h"
#include "host/session_values.h"

namespace kel {
namespace {

PointerKind KindOf(PointerAction action) {
    switch (action) {
        case PointerAction::Press:
            return PointerKind::Press;
        case PointerAction::Release:
            return PointerKind::Release;
        case PointerAction::Move:
            break;
    }
    return PointerKind::Move;
}

}  // namespace

Player::Player(const Session& session, Host& host, const std::filesystem::path& defaultModule)
    : m_session(session), m_host(host), m_pointer(PointerTrack(session)) {
    Camera camera;
    camera.position = session.camera.position;
    camera.target = session.camera.target;
    camera.fieldOfView = session.camera.fieldOfView;
    m_host.SetCamera(camera);
    for (const SessionContainer& container : session.containers) BuildContainer(container, defaultModule);
    for (const SessionEvent& event : session.events) PrepareDeed(event);
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
    if (!container.film.empty()) played.film = OpenFilm(container, played.id);
    if (!container.plugin) return;
    played.module = &LoadModule(*container.plugin, defaultModule);
    m_host.Attach(played.id, *played.module, Settings(container.plugin->parameters, *played.module));
}

std::unique_ptr<FilmShow> Player::OpenFilm(const SessionContainer& container, ObjectId id) const {
    try {
        return std::make_unique<FilmShow>(m_session.Resolve(container.film), id, m_session.fieldsPerSecond);
    } catch (const Error& error) {
        throw Error(m_session.file.string(), container.place + "/film", error.what());
    }
}

const Module& Player::LoadModule(const SessionPlugin& plugin, const std::filesystem::path& defaultModule) {
    if (plugin.module.empty()) return m_host.LoadModule(defaultModule);
    try {
        return m_host.LoadModule(m_session.Resolve(plugin.module));
    } catch (const Error& error) {
        throw Error(m_session.file.string(), plugin.place + "/module", error.what());
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

kel::Picture Player::ReadPictureAt(const std::string& path, const std::string& place) const {
    try {
        return ReadPicture(m_session.Resolve(path));
    } catch (const Error& error) {
        throw Error(m_session.file.string(), place, error.what());
    }
}

void Player::PrepareDeed(const SessionEvent& event) {
    Deed deed;
    deed.field = event.field;
    if (const auto* set = std::get_if<SetEvent>(&event.what)) {
        deed.container = set->container;
        deed.settings = Settings(set->values, *m_containers[set->container].module);
    } else if (const auto* button = std::get_if<ButtonEvent>(&event.what)) {
        CheckButton(event, button->name, *m_containers[button->container].module);
        deed.container = button->container;
        deed.button = button->name;
    } else if (const auto* film = std::get_if<FilmEvent>(&event.what)) {
        CheckFrame(event, *film);
        deed.container = film->container;
        deed.film = film->change;
    } else if (const auto* save = std::get_if<SaveEvent>(&event.what)) {
        deed.save = save->name;
    } else {
        return;
    }
    m_deeds.push_back(std::move(deed));
}

void Player::CheckButton(const SessionEvent& event, const std::string& name, const Module& module) const {
    if (module.registration.FindButton(name)) return;
    std::vector<std::string> names;
    for (const Button& button : module.registration.buttons) names.push_back(button.name);
    throw Error(m_session.file.string(), event.place + "/button",
                "there is no button " + Quoted(name) + NearestHint(name, names));
}

void Player::CheckFrame(const SessionEvent& event, const FilmEvent& film) const {
    const std::int64_t last = m_containers[film.container].film->Clock().Frames() - 1;
    if (film.change.frame.value_or(0) <= last) return;
    throw Error(m_session.file.string(), event.place + "/film/frame",
                "the film's last frame is " + std::to_string(last) + ", not " + std::to_string(*film.change.frame));
}

void Player::ChangeFilm(std::size_t container, const FilmChange& change) {
    m_containers[container].film->Change(change, m_field);
}

// Those of the field to come; returns what it saves.
std::vector<std::string> Player::DoDeeds() {
    std::vector<std::string> saves;
    for (; m_nextDeed < m_deeds.size() && m_deeds[m_nextDeed].field == m_field; ++m_nextDeed) {
        const Deed& deed = m_deeds[m_nextDeed];
        const ObjectId container = m_containers[deed.container].id;
        for (const ParameterSetting& setting : deed.settings)
            m_host.SetParameter(container, setting.name, setting.value);
        if (!deed.button.empty()) m_host.PushButton(container, deed.button);
        if (deed.film) ChangeFilm(deed.container, *deed.film);
        if (!deed.save.empty()) saves.push_back(deed.save);
    }
    return saves;
}

std::vector<std::string> Player::PlayField(Picture picture) {
    for (; m_nextPointer < m_pointer.size() && m_pointer[m_nextPointer].field == m_field; ++m_nextPointer) {
        const PointerStep& step = m_pointer[m_nextPointer];
        m_host.QueuePointer(KindOf(step.action), step.x, step.y);
    }
    std::vector<std::string> saves = DoDeeds();
    const bool isLast = m_field + 1 == m_session.fields;
    const bool isDrawn = picture == Picture::Wanted || !saves.empty() || isLast;
    std::exception_ptr damaged;
    try {
        if (isDrawn) ShowFilms();
    } catch (const Error&) {
        damaged = std::current_exception();
    }
    m_host.SetDrawing(isDrawn);
    m_host.RunField();
    ++m_field;
    if (damaged) std::rethrow_exception(damaged);
    return saves;
}

void Player::ShowFilms() {
    for (const Container& container : m_containers)
        if (container.film) container.film->Show(m_host, m_field);
}

ObjectId Player::OverlayContainer() const {
    for (const Container& container : m_containers)
        if (container.module != nullptr) return container.id;
    return noObject;
}

}  // namespace kel
