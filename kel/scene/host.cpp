#include "kel/scene/host.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "cli/error.h"
#include "cli/nearest_name.h"
#include "kel/scene/canvas_picture.h"
#include "kel/scene/gl.h"
#include "kel/scene/host_state.h"
#include "kel/scene/image_texture.h"
#include "kel/scene/instance_rebuild.h"
#include "kel/scene/overlay_picture.h"
#include "kel/scene/scene_renderer.h"
#include "kel/scene/substituted_canvas.h"

namespace kel {
namespace {

constexpr double largestCoordinate = 1e9;

void CheckNumbers(std::initializer_list<Point3> points, const char* whose) {
    for (const Point3& point : points)
        for (const double number : point)
            if (!(std::abs(number) <= largestCoordinate))
                throw cli::Error(std::string("a number of the ") + whose + " is not finite, or beyond 1e9");
}

void CheckCamera(const Camera& camera) {
    CheckNumbers({camera.position, camera.target, camera.up}, "camera");
    if (camera.position == camera.target) throw cli::Error("the camera stands where it looks at");
    if (!(camera.fieldOfView > 0 && camera.fieldOfView < 180))
        throw cli::Error("the camera's field of view is not between 0 and 180 degrees");
}

void CheckPlacement(const Placement& placement) {
    CheckNumbers({placement.position, placement.rotation, placement.scale, {placement.size[0], placement.size[1], 0}},
                 "container");
    if (placement.size[0] < 0 || placement.size[1] < 0) throw cli::Error("the size of the container is below 0");
}

ContainerObject& FindContainer(HostState& state, ObjectId id) {
    auto* container = state.objects.Find<ContainerObject>(id);
    if (container == nullptr) throw cli::Error("there is no container " + std::to_string(id));
    return *container;
}

Instance& FindInstance(HostState& state, ObjectId container) {
    Instance* instance = FindContainer(state, container).instance.get();
    if (instance == nullptr) throw cli::Error("container " + std::to_string(container) + " has no plug-in");
    return *instance;
}

std::string Named(const char* what, std::string_view name) { return std::string(what) + " " + cli::Quoted(name); }

std::size_t FindParameter(const Instance& instance, std::string_view name) {
    const std::ptrdiff_t index = instance.IndexOf(name);
    if (index < 0) throw cli::Error("there is no " + Named("parameter", name));
    return static_cast<std::size_t>(index);
}

void CheckValue(const Instance& instance, std::size_t index, const ParameterValue& value) {
    const Parameter& parameter = instance.TheModule().registration.parameters[index];
    const std::string reason = parameter.Refusal(value);
    if (!reason.empty()) throw cli::Error(Named("parameter", parameter.name) + ": " + reason);
}

// Calls the function with each container that has an instance.
template <typename Function>
void ForEachPlugIn(HostState& state, Function function) {
    state.objects.ForEach<ContainerObject>([&](ObjectId, ContainerObject& container) {
        if (container.instance) function(container);
    });
}

void Register(HostState& state, Module& module) {
    state.registering = &module.registration;
    state.callback = Callback::InitEx;
    const std::int32_t answer = module.entryPoints.initEx();
    state.callback = Callback::None;
    state.registering = nullptr;
    if (answer != 0) throw cli::Error(module.file.string(), {}, "PLUGIN_INIT_EX answers " + std::to_string(answer));
}

void Deliver(HostState& state, const QueuedSetting& setting) {
    const SettingInput input{setting.parameter, setting.value};
    ContainerObject& container = FindContainer(state, setting.container);
    container.history.At(state.fieldsRun).operatorInputs.emplace_back(input);
    ChangeValue(state, FindInstance(state, setting.container), input);
}

void Deliver(HostState& state, const QueuedAction& action) {
    const ActionInput input{action.action};
    FindContainer(state, action.container).history.At(state.fieldsRun).operatorInputs.emplace_back(input);
    DoAction(state, FindInstance(state, action.container), input);
}

void Deliver(HostState& state, QueuedKey) {
    ForEachPlugIn(state, [&](ContainerObject& container) {
        container.history.At(state.fieldsRun).operatorInputs.emplace_back(KeyInput{});
        PressKeyFor(state, *container.instance);
    });
}

// The image that the container shows where no module draws; null: none.
ImageObject* PictureOn(HostState& state, ObjectId container) {
    const auto* texture = state.objects.Find<TextureObject>(FindContainer(state, container).picture);
    return texture == nullptr ? nullptr : state.objects.Find<ImageObject>(texture->image);
}

void ShowImage(HostState& state, ObjectId container, ImageObject image) {
    TextureObject texture;
    texture.image = state.objects.Add(std::move(image));
    FindContainer(state, container).picture = state.objects.Add(texture);
}

}  // namespace

Host::Host(WindowSize window, GlSource source) : m_state(std::make_unique<HostState>(window, source)) {
    SceneObject scene;
    scene.camera = m_state->objects.Add(CameraObject{});
    m_state->scene = m_state->objects.Add(scene);
}

Host::~Host() {
    const AtWork work(*m_state);
    ForEachPlugIn(*m_state, [&](ContainerObject& container) { EndInstance(*m_state, *container.instance); });
    m_state.reset();  // its textures end while the context is current
}

const Module& Host::LoadModule(const std::filesystem::path& file) {
    const AtWork work(*m_state);
    auto module = std::make_unique<Module>(OpenModule(file));
    for (const auto& loaded : m_state->modules)
        if (loaded->file == module->file) return *loaded;
    Register(*m_state, *module);
    LayOutBlock(*module);
    return *m_state->modules.emplace_back(std::move(module));
}

void Host::SetCamera(const Camera& camera) {
    CheckCamera(camera);
    const auto* scene = m_state->objects.Find<SceneObject>(m_state->scene);
    m_state->objects.Find<CameraObject>(scene->camera)->camera = camera;
    m_state->ShowAnew();
}

ObjectId Host::AddContainer(const Placement& placement) {
    CheckPlacement(placement);
    ContainerObject container;
    container.placement = placement;
    m_state->ShowAnew();
    return m_state->objects.Add(std::move(container));
}

void Host::SetPicture(ObjectId container, const picture_io::Picture& picture) {
    const AtWork work(*m_state);
    if (ImageObject* image = PictureOn(*m_state, container); image == nullptr)
        ShowImage(*m_state, container, MakeImage(picture));
    else if (!ReplacePixels(*image, picture))
        *image = MakeImage(picture);
    m_state->ShowAnew();
}

void Host::ExchangePicture(ObjectId container, picture_io::Picture& upwards, bool isOpaque) {
    const AtWork work(*m_state);
    const PictureAlpha alpha = isOpaque ? PictureAlpha::Full : PictureAlpha::Any;
    ImageObject* const image = PictureOn(*m_state, container);
    if (image == nullptr || !ExchangePixels(*image, upwards, alpha)) {
        SetPicture(container, picture_io::Flipped(upwards));
        return;
    }
    if (container != m_state->overlay.copied) return m_state->ShowAnew();
    m_state->changes.AddPicture();
    m_state->redraw = true;
}

void Host::Attach(ObjectId container, const Module& module, const std::vector<ParameterSetting>& values) {
    const AtWork work(*m_state);
    ContainerObject& attached = FindContainer(*m_state, container);
    if (attached.instance) throw cli::Error("container " + std::to_string(container) + " already has a plug-in");
    auto instance = std::make_unique<Instance>(module, container);
    for (const ParameterSetting& setting : values) {
        const std::size_t index = FindParameter(*instance, setting.name);
        CheckValue(*instance, index, setting.value);
        instance->SetValue(index, setting.value);
    }
    attached.instance = std::move(instance);
    attached.history.firstField = m_state->fieldsRun;
    for (std::size_t i = 0; i < module.registration.parameters.size(); ++i)
        attached.history.firstValues.push_back(attached.instance->Value(i));
    BeginInstance(*m_state, *attached.instance);
    m_state->ShowAnew();
}

void Host::AddImage(const std::string& name, const picture_io::Picture& picture) {
    m_state->imageNames[name] = m_state->objects.Add(MakeImage(picture));
}

void Host::QueuePointer(PointerKind kind, std::int32_t x, std::int32_t y, double pressure) {
    m_state->pointerQueue.Add({kind, x, y, pressure});
}

void Host::SetParameter(ObjectId container, std::string_view name, const ParameterValue& value) {
    const Instance& instance = FindInstance(*m_state, container);
    const std::size_t index = FindParameter(instance, name);
    CheckValue(instance, index, value);
    m_state->operatorQueue.emplace_back(QueuedSetting{container, index, value});
}

void Host::PushButton(ObjectId container, std::string_view name) {
    const Button* button = FindInstance(*m_state, container).TheModule().registration.FindButton(name);
    if (button == nullptr) throw cli::Error("there is no " + Named("button", name));
    m_state->operatorQueue.emplace_back(QueuedAction{container, button->action});
}

void Host::PressKey() { m_state->operatorQueue.emplace_back(QueuedKey{}); }

std::size_t Host::QueuedButtons() const { return m_state->pointerQueue.Buttons(); }

void Host::DeliverPointer(int fieldsDue) {
    m_state->deliveredPointer = m_state->pointerQueue.TakeField(fieldsDue);
    if (!m_state->deliveredPointer) return;
    const PointerStep step = *m_state->deliveredPointer;
    m_state->pointerX = step.x;
    m_state->pointerY = step.y;
    ForEachPlugIn(*m_state, [&](ContainerObject& container) {
        NotePointer(*m_state, container, step);
        if (step.kind != PointerKind::Move) MoveButton(*m_state, *container.instance, step);
    });
}

void Host::DeliverOperator() {
    // What the callbacks themselves might queue waits for the next field.
    for (const auto& item : std::exchange(m_state->operatorQueue, {}))
        std::visit([&](const auto& what) { Deliver(*m_state, what); }, item);
}

void Host::Render() {
    m_state->redraw = false;
    RenderField(*m_state);
}

void Host::SetRedraw(Redraw redraw) { m_state->redraws = redraw; }

FrameArea Host::TakeChangedArea() { return std::exchange(m_state->changedArea, {}); }

void Host::SetDrawing(bool on) {
    if (on && !m_state->drawing) m_state->redraw = true;
    m_state->drawing = on;
}

void Host::DrawAgain() {
    const AtWork work(*m_state);
    DrawFieldAgain(*m_state);
}

void Host::RunFieldCallbacks() {
    const auto start = std::chrono::steady_clock::now();
    ForEachPlugIn(*m_state, [&](ContainerObject& container) { PassField(*m_state, *container.instance); });
    FieldTimes& times = m_state->times;
    const bool isFirst = times.last.count() == 0;
    times.last = std::chrono::steady_clock::now() - start;
    if (!isFirst) times.slowest = std::max(times.slowest, times.last);
    ++m_state->fieldsRun;
}

void Host::RunField(int fieldsDue) {
    const AtWork work(*m_state);
    DeliverPointer(fieldsDue);
    DeliverOperator();
    RunFieldCallbacks();
    if (m_state->redraw) Render();
}

std::optional<PointerKind> Host::NextPointer() const { return m_state->pointerQueue.Next(); }

void Host::RunStep() {
    const AtWork work(*m_state);
    m_state->isStep = true;
    DeliverPointer(1);
    RunFieldCallbacks();
    if (m_state->redraw) Render();
    m_state->isStep = false;
}

const InstanceHistory& Host::History(ObjectId container) const { return FindContainer(*m_state, container).history; }

void Host::Rebuild(ObjectId container, const InstanceHistory& history) {
    const AtWork work(*m_state);
    (void)FindInstance(*m_state, container);
    RebuildInstance(*m_state, FindContainer(*m_state, container), history);
}

void Host::Substitute(ObjectId container, CanvasSubstitute* substitute) {
    ContainerObject& shown = FindContainer(*m_state, container);
    shown.substitute = substitute;
    m_state->ShowAnew();
}

std::span<const std::uint8_t> Host::TextureBytes(ObjectId container) const {
    const ImageObject* image = CanvasImage(*m_state, FindContainer(*m_state, container));
    if (image == nullptr) return {};
    return image->shown;
}

std::vector<ParameterValue> Host::Values(ObjectId container) const {
    const Instance& instance = FindInstance(*m_state, container);
    std::vector<ParameterValue> values;
    for (std::size_t i = 0; i < instance.TheModule().registration.parameters.size(); ++i)
        values.push_back(instance.Value(i));
    return values;
}

std::int64_t Host::FieldsRun() const { return m_state->fieldsRun; }

const std::optional<PointerStep>& Host::DeliveredPointer() const { return m_state->deliveredPointer; }

FieldTimes Host::Times() const { return m_state->times; }

ParameterValue Host::GetParameter(ObjectId container, std::string_view name) const {
    const Instance& instance = FindInstance(*m_state, container);
    return instance.Value(FindParameter(instance, name));
}

bool Host::IsParameterShown(ObjectId container, std::string_view name) const {
    const Instance& instance = FindInstance(*m_state, container);
    return instance.IsShown(FindParameter(instance, name));
}

std::uint64_t Host::PictureNumber() const { return m_state->pictureNumber; }

picture_io::Picture Host::ReadFrame() const {
    const AtWork work(*m_state);
    return m_state->frame->Read();
}

void Host::ReadForScreen(const FrameArea& part, void* pixels, std::int32_t rowPixels) const {
    const AtWork work(*m_state);
    m_state->frame->ReadForScreen(part, pixels, rowPixels);
}

void Host::ShowFrame(const FrameArea& area, std::uint32_t target) const { ShowFramePart(area, area, target); }

void Host::ShowFramePart(const FrameArea& area, const FrameArea& part, std::uint32_t target) const {
    const AtWork work(*m_state);
    ResetState();
    m_state->shrinker.Show(*m_state->frame, area, part, target);
}

picture_io::Picture Host::ReadCanvas(ObjectId container) const {
    return picture_io::DividedByAlpha(ReadPremultipliedCanvas(container));
}

picture_io::Picture Host::ReadPremultipliedCanvas(ObjectId container) const {
    const AtWork work(*m_state);
    return CanvasPicture(*m_state, FindContainer(*m_state, container));
}

picture_io::Picture Host::ReadOverlay() { return picture_io::DividedByAlpha(ReadPremultipliedOverlay()); }

picture_io::Picture Host::ReadPremultipliedOverlay() {
    const AtWork work(*m_state);
    return OverlayPicture(*m_state);
}

WindowSize Host::Window() const { return m_state->window; }

void Host::ResizeWindow(WindowSize window) {
    const AtWork work(*m_state);
    m_state->frame = std::make_unique<FrameBuffer>(window.width, window.height);
    m_state->window = window;
    m_state->overlay = {};
    m_state->ShowAnew();
}

const std::vector<std::string>& Host::WrongUses() const { return m_state->wrongUses.Lines(); }

}  // namespace kel
