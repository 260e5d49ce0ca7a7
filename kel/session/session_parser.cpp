#include "kel/session/session_parser.h"

#include <algorithm>
#include <set>

#include "cli/error.h"
#include "cli/json_node.h"
#include "cli/nearest_name.h"
#include "kel/session/session.h"
#include "kel/session/session_lines.h"
#include "picture_io/picture.h"
#include "picture_io/picture_format.h"

namespace kel {
namespace {

constexpr double farthest = 1e6;                   // scene units
constexpr double farthestPixel = 100'000;          // the pointer may leave the window, within reason
constexpr std::int64_t longest = 1'000'000;        // fields
constexpr std::int64_t farthestFrame = 9'999'999;  // two days of video
constexpr std::size_t mostContainers = 1000;
constexpr double secondsAfterTheLastEvent = 2.0;  // for what a module finishes some time after the pointer's release

template <std::size_t Count>
std::array<double, Count> Numbers(const cli::JsonNode& node, double minimum, double maximum) {
    // Before a place is made for each: there may be millions.
    if (node.Value().is_array() && node.Value().size() > Count)
        node.Refuse("must have " + std::to_string(Count) + " numbers");
    const auto elements = node.Elements(Count);
    std::array<double, Count> numbers{};
    for (std::size_t i = 0; i < Count; ++i) numbers[i] = elements[i].Number(minimum, maximum);
    return numbers;
}

SessionPoint Point(const cli::JsonNode& node) {
    const auto [x, y] = Numbers<2>(node, -farthestPixel, farthestPixel);
    return {x, y};
}

constexpr auto windowKeys = std::to_array<cli::JsonKey<SessionWindow>>({
    {"width", true, [](const auto& node, auto& window) { window.width = static_cast<int>(node.Integer(1, 8192)); }},
    {"height", true, [](const auto& node, auto& window) { window.height = static_cast<int>(node.Integer(1, 8192)); }},
});

constexpr auto cameraKeys = std::to_array<cli::JsonKey<SessionCamera>>({
    {"position", true, [](const auto& node, auto& camera) { camera.position = Numbers<3>(node, -farthest, farthest); }},
    {"target", true,
     [](const auto& node, auto& camera) {
         camera.target = Numbers<3>(node, -farthest, farthest);
         if (camera.target == camera.position) node.Refuse("must be another point than the camera's position");
     }},
    {"fieldOfView", false, [](const auto& node, auto& camera) { camera.fieldOfView = node.Number(1, 170); }},
});

std::vector<SessionValue> Values(const cli::JsonNode& node) {
    node.RequireObject();
    std::vector<SessionValue> values;
    for (const auto& [key, json] : node.Value().items()) {
        const cli::JsonNode member = node.Member(key);
        SessionValue value{key, {}, member.Place()};
        if (json.is_boolean())
            value.value = json.template get<bool>();
        else if (json.is_number_integer() &&
                 (!json.is_number_unsigned() || json.template get<std::uint64_t>() <= std::uint64_t{INT64_MAX}))
            value.value = json.template get<std::int64_t>();
        else if (json.is_number())
            value.value = json.template get<double>();
        else if (json.is_string())
            value.value = json.template get<std::string>();
        else
            member.Refuse("must be true, false, a number or a text");
        values.push_back(std::move(value));
    }
    return values;
}

constexpr auto pluginKeys = std::to_array<cli::JsonKey<SessionPlugin>>({
    {"module", false, [](const auto& node, auto& plugin) { plugin.module = node.Text(); }},
    {"parameters", false, [](const auto& node, auto& plugin) { plugin.parameters = Values(node); }},
});

constexpr auto containerKeys = std::to_array<cli::JsonKey<SessionContainer>>({
    {"name", false, [](const auto& node, auto& container) { container.name = node.Text(); }},
    {"size", true, [](const auto& node, auto& container) { container.size = Numbers<2>(node, 0, farthest); }},
    {"position", false, [](const auto& node, auto& container) { container.position = Numbers<3>(node, -farthest, farthest); }},
    {"rotation", false, [](const auto& node, auto& container) { container.rotation = Numbers<3>(node, -farthest, farthest); }},
    {"scale", false, [](const auto& node, auto& container) { container.scale = Numbers<3>(node, -farthest, farthest); }},
    {"picture", false, [](const auto& node, auto& container) { container.picture = node.Text(); }},
    {"film", false,
     [](const auto& node, auto& container) {
         if (!container.picture.empty()) node.Refuse("the container has a picture already");
         container.video = node.Text();
     }},
    {"live", false,
     [](const auto& node, auto& container) {
         if (!container.picture.empty()) node.Refuse("the container has a picture already");
         if (!container.video.empty()) node.Refuse("the container has a film already");
         container.live = node.Text();
     }},
    {"plugin", false,
     [](const auto& node, auto& container) {
         container.plugin.emplace().place = node.Place();
         cli::ReadKeys<SessionPlugin>(node, pluginKeys, *container.plugin);
     }},
});

// An event while it is read: what its companion keys said, until the action's own key makes the whole of it.
struct EventDraft {
    const std::vector<SessionContainer>& containers;
    SessionEvent event;
    std::int64_t fields = 1;
    bool curve = false;
    bool isStep = false;
    double pressure = 1;
    std::optional<std::size_t> container;
    SessionPoint by;
    std::vector<SessionValue> parameters;
    bool inPlace = false;
};

// What an event asks its container to have.
struct PluginOn {
    static constexpr const char* name = "plug-in";
    static bool Has(const SessionContainer& container) { return container.plugin.has_value(); }
};
struct VideoOn {
    static constexpr const char* name = "film";
    static bool Has(const SessionContainer& container) { return !container.video.empty(); }
};

// The container that an event is for: the one it names, else the only one that has such a thing.
template <typename Thing>
std::size_t AddressedContainer(const cli::JsonNode& node, const EventDraft& draft) {
    if (draft.container) return *draft.container;
    const std::string name = Thing::name;
    const auto count = std::count_if(draft.containers.begin(), draft.containers.end(), Thing::Has);
    if (count == 0) node.Refuse("no container has a " + name);
    if (count > 1) node.Refuse("several containers have a " + name + ": say which one with \"container\"");
    const auto only = std::find_if(draft.containers.begin(), draft.containers.end(), Thing::Has);
    return static_cast<std::size_t>(only - draft.containers.begin());
}

template <typename Thing>
void ReadContainerName(const cli::JsonNode& node, EventDraft& draft) {
    const std::string name = node.Text();
    std::vector<std::string> names;
    for (std::size_t i = 0; i < draft.containers.size(); ++i) {
        const SessionContainer& container = draft.containers[i];
        if (Thing::Has(container) && !container.name.empty()) names.push_back(container.name);
        if (container.name != name) continue;
        if (!Thing::Has(container)) node.Refuse("the container " + cli::Quoted(name) + " has no " + Thing::name);
        draft.container = i;
        return;
    }
    node.Refuse("there is no container " + cli::Quoted(name) + cli::NearestHint(name, names));
}

constexpr auto videoKeys = std::to_array<cli::JsonKey<VideoChange>>({
    {"frame", false, [](const auto& node, auto& change) { change.frame = node.Integer(0, farthestFrame); }},
    {"play", false, [](const auto& node, auto& change) { change.play = node.Truth(); }},
    {"loop", false, [](const auto& node, auto& change) { change.loop = node.Truth(); }},
    {"speed", false, [](const auto& node, auto& change) { change.speed = node.Number(slowestVideo, fastestVideo); }},
    {"in", false, [](const auto& node, auto& change) { change.in = node.Integer(0, farthestFrame); }},
    {"out", false, [](const auto& node, auto& change) { change.out = node.Integer(0, farthestFrame); }},
});

void ReadVideo(const cli::JsonNode& node, EventDraft& draft) {
    VideoEvent video;
    cli::ReadKeys<VideoChange>(node, videoKeys, video.change);
    if (node.Value().empty())
        node.Refuse("changes nothing; it needs one of \"frame\", \"play\", \"loop\", \"speed\", \"in\", \"out\"");
    video.container = AddressedContainer<VideoOn>(node, draft);
    draft.event.what = video;
}

template <PointerKind kind>
void ReadPointer(const cli::JsonNode& node, EventDraft& draft) {
    draft.event.what = PointerEvent{kind, Point(node), draft.isStep, draft.pressure};
}

void ReadStroke(const cli::JsonNode& node, EventDraft& draft) {
    StrokeEvent stroke;
    for (const cli::JsonNode& point : node.Elements(1)) stroke.path.push_back(Point(point));
    stroke.fields = draft.fields;
    stroke.curve = draft.curve;
    draft.event.what = std::move(stroke);
}

void ReadSave(const cli::JsonNode& node, EventDraft& draft) {
    const std::filesystem::path name = node.Text();
    if (!picture_io::IsPictureName(name)) node.Refuse("must be the name of a picture; " + picture_io::EndingsRule());
    if (name.has_parent_path() || name.string().find('\\') != std::string::npos)
        node.Refuse("must be a file name without a folder; `kel play --saves` says where to");
    if (name.string().starts_with('.')) node.Refuse("must not begin with a dot");
    draft.event.what = SaveEvent{name.string()};
}

using EventKey = cli::JsonKey<EventDraft>;
constexpr EventKey fieldKey = {"field", true, [](const cli::JsonNode& node, EventDraft& draft) {
                                   draft.event.field = node.Integer(0, longest - 1);
                               }};
template <typename Thing>
constexpr EventKey containerKey = {"container", false, ReadContainerName<Thing>};

constexpr EventKey stepKey = {"step", false,
                              [](const cli::JsonNode& node, EventDraft& draft) { draft.isStep = node.Truth(); }};

constexpr EventKey pressureKey = {
    "pressure", false, [](const cli::JsonNode& node, EventDraft& draft) { draft.pressure = node.Number(0, 1); }};

constexpr auto pressKeys =
    std::to_array<EventKey>({fieldKey, stepKey, pressureKey, {"press", true, ReadPointer<PointerKind::Press>}});
constexpr auto moveKeys =
    std::to_array<EventKey>({fieldKey, stepKey, pressureKey, {"move", true, ReadPointer<PointerKind::Move>}});
constexpr auto releaseKeys =
    std::to_array<EventKey>({fieldKey, pressureKey, {"release", true, ReadPointer<PointerKind::Release>}});
constexpr auto strokeKeys = std::to_array<EventKey>({
    fieldKey,
    {"fields", true, [](const auto& node, auto& draft) { draft.fields = node.Integer(1, longest - 1); }},
    {"curve", false, [](const auto& node, auto& draft) { draft.curve = node.Truth(); }},
    {"stroke", true, ReadStroke},
});
constexpr auto setKeys = std::to_array<EventKey>({
    fieldKey,
    containerKey<PluginOn>,
    {"set", true,
     [](const auto& node, auto& draft) {
         draft.event.what = SetEvent{Values(node), AddressedContainer<PluginOn>(node, draft)};
     }},
});
constexpr auto buttonKeys = std::to_array<EventKey>({
    fieldKey,
    containerKey<PluginOn>,
    {"button", true,
     [](const auto& node, auto& draft) {
         draft.event.what = ButtonEvent{node.Text(), AddressedContainer<PluginOn>(node, draft)};
     }},
});
constexpr auto videoEventKeys = std::to_array<EventKey>({fieldKey, containerKey<VideoOn>, {"film", true, ReadVideo}});

constexpr std::int64_t mostStrokes = longest;

template <InkEvent::Kind kind>
void ReadInk(const cli::JsonNode& node, EventDraft& draft) {
    InkEvent ink;
    ink.kind = kind;
    ink.number = node.Integer(1, mostStrokes);
    ink.by = draft.by;
    ink.values = std::move(draft.parameters);
    ink.container = AddressedContainer<PluginOn>(node, draft);
    draft.event.what = std::move(ink);
}

constexpr auto undoKeys =
    std::to_array<EventKey>({fieldKey, containerKey<PluginOn>, {"undo", true, ReadInk<InkEvent::Kind::Undo>}});
constexpr auto redoKeys =
    std::to_array<EventKey>({fieldKey, containerKey<PluginOn>, {"redo", true, ReadInk<InkEvent::Kind::Redo>}});
constexpr auto removeStrokeKeys = std::to_array<EventKey>(
    {fieldKey, containerKey<PluginOn>, {"removeStroke", true, ReadInk<InkEvent::Kind::Remove>}});
constexpr auto moveStrokeKeys = std::to_array<EventKey>({
    fieldKey,
    containerKey<PluginOn>,
    {"by", true, [](const auto& node, auto& draft) { draft.by = Point(node); }},
    {"moveStroke", true, ReadInk<InkEvent::Kind::Move>},
});
constexpr auto recolourStrokeKeys = std::to_array<EventKey>({
    fieldKey,
    containerKey<PluginOn>,
    {"parameters", true, [](const auto& node, auto& draft) { draft.parameters = Values(node); }},
    {"recolourStroke", true, ReadInk<InkEvent::Kind::Recolour>},
});
constexpr std::int64_t slots = 9;

template <typename Draft>
void TakeInk(const cli::JsonNode& node, Draft& draft, InkEvent ink) {
    ink.inPlace = draft.inPlace;
    ink.container = AddressedContainer<PluginOn>(node, draft);
    draft.event.what = std::move(ink);
}

template <InkEvent::Kind kind>
void ReadSlot(const cli::JsonNode& node, EventDraft& draft) {
    InkEvent ink;
    ink.kind = kind;
    ink.number = node.Integer(1, slots);
    TakeInk(node, draft, std::move(ink));
}

void ReadRecalledStrokes(const cli::JsonNode& node, EventDraft& draft) {
    InkEvent ink;
    ink.kind = InkEvent::Kind::Recall;
    for (const cli::JsonNode& line : node.Elements(1)) ink.strokes += line.Text() + '\n';
    TakeInk(node, draft, std::move(ink));
}

constexpr auto fadeKeys = std::to_array<cli::JsonKey<InkEvent>>({
    {"after", true, [](const auto& node, auto& ink) { ink.fadeAfter = node.Number(0, 3600); }},
    {"over", false, [](const auto& node, auto& ink) { ink.fadeOver = node.Integer(1, 10000); }},
});

void ReadFade(const cli::JsonNode& node, EventDraft& draft) {
    InkEvent ink;
    ink.kind = InkEvent::Kind::Fade;
    if (!node.Value().is_boolean())
        cli::ReadKeys<InkEvent>(node, fadeKeys, ink);
    else if (node.Truth())
        node.Refuse("must be false, or say \"after\" how many seconds");
    TakeInk(node, draft, std::move(ink));
}

constexpr EventKey inPlaceKey = {"inPlace", false,
                                 [](const cli::JsonNode& node, EventDraft& draft) { draft.inPlace = node.Truth(); }};
constexpr auto keepKeys =
    std::to_array<EventKey>({fieldKey, containerKey<PluginOn>, {"keep", true, ReadSlot<InkEvent::Kind::Keep>}});
constexpr auto recallKeys = std::to_array<EventKey>(
    {fieldKey, containerKey<PluginOn>, inPlaceKey, {"recall", true, ReadSlot<InkEvent::Kind::Recall>}});
constexpr auto recallStrokesKeys = std::to_array<EventKey>(
    {fieldKey, containerKey<PluginOn>, inPlaceKey, {"recallStrokes", true, ReadRecalledStrokes}});
constexpr auto fadeEventKeys = std::to_array<EventKey>({fieldKey, containerKey<PluginOn>, {"fade", true, ReadFade}});
constexpr auto saveKeys = std::to_array<EventKey>({fieldKey, {"save", true, ReadSave}});

// What an event does is said by one key, which is the name of the kind.
struct EventKind {
    std::string_view action;
    std::span<const EventKey> keys;
};
constexpr auto eventKinds = std::to_array<EventKind>({
    {"press", pressKeys},
    {"move", moveKeys},
    {"release", releaseKeys},
    {"stroke", strokeKeys},
    {"set", setKeys},
    {"button", buttonKeys},
    {"film", videoEventKeys},
    {"undo", undoKeys},
    {"redo", redoKeys},
    {"removeStroke", removeStrokeKeys},
    {"moveStroke", moveStrokeKeys},
    {"recolourStroke", recolourStrokeKeys},
    {"keep", keepKeys},
    {"recall", recallKeys},
    {"recallStrokes", recallStrokesKeys},
    {"fade", fadeEventKeys},
    {"save", saveKeys},
});

const EventKind& KindOf(const cli::JsonNode& node) {
    node.RequireObject();
    const EventKind* kind = nullptr;
    std::set<std::string> known;
    for (const EventKind& each : eventKinds) {
        for (const EventKey& key : each.keys) known.emplace(key.name);
        if (!node.Has(each.action)) continue;
        if (kind)
            node.Refuse("an event does one thing, not both " + cli::Quoted(kind->action) + " and " +
                        cli::Quoted(each.action));
        kind = &each;
    }
    if (kind) return *kind;
    for (const auto& member : node.Value().items())
        if (!known.contains(member.key()))
            node.Member(member.key())
                .Refuse("unknown key" + cli::NearestHint(member.key(), {known.begin(), known.end()}));
    std::string actions;
    for (const EventKind& each : eventKinds) actions += (actions.empty() ? "" : ", ") + cli::Quoted(each.action);
    node.Refuse("the event does nothing; it needs one of " + actions);
}

void ReadContainers(const cli::JsonNode& node, Session& session) {
    std::set<std::string> names;
    if (node.Value().is_array() && node.Value().size() > mostContainers)
        node.Refuse("must have at most " + std::to_string(mostContainers) + " elements");
    for (const cli::JsonNode& element : node.Elements(1)) {
        SessionContainer& container = session.containers.emplace_back();
        container.place = element.Place();
        cli::ReadKeys<SessionContainer>(element, containerKeys, container);
        if (!container.name.empty() && !names.insert(container.name).second)
            element.Member("name").Refuse("another container has this name");
    }
}

void ReadEvents(const cli::JsonNode& node, Session& session) {
    for (const cli::JsonNode& element : node.Elements(0)) {
        EventDraft draft{session.containers, {}, 1, false, false, 1, {}, {}, {}, false};
        draft.event.place = element.Place();
        cli::ReadKeys<EventDraft>(element, KindOf(element).keys, draft);
        if (draft.event.LastField() >= longest) element.Refuse("ends after field " + std::to_string(longest - 1));
        session.events.push_back(std::move(draft.event));
    }
    std::stable_sort(session.events.begin(), session.events.end(),
                     [](const SessionEvent& left, const SessionEvent& right) { return left.field < right.field; });
}

// How long it takes until everything has happened and modules have had time to finish.
std::int64_t FieldsNeeded(const Session& session) {
    std::int64_t last = 0;
    for (const SessionEvent& event : session.events) last = std::max(last, event.LastField());
    return last + 1 + static_cast<std::int64_t>(session.fieldsPerSecond * secondsAfterTheLastEvent);
}

void ReadLength(const cli::JsonNode& node, Session& session) {
    session.fields = node.Integer(1, longest);
    for (const SessionEvent& event : session.events)
        if (event.LastField() >= session.fields)
            throw cli::Error(session.file.string(), event.place,
                             "ends in field " + std::to_string(event.LastField()) + ", after the last one played, " +
                                 std::to_string(session.fields - 1));
}

// Later rows rely on earlier ones: events name containers, and the length is held against the events.
constexpr auto sessionKeys = std::to_array<cli::JsonKey<Session>>({
    {"$schema", false, [](const auto& node, auto&) { (void)node.Text(); }},
    {"recording", false, [](const auto& node, auto& session) { session.isRecording = node.Truth(); }},
    {"window", true,
     [](const auto& node, auto& session) { cli::ReadKeys<SessionWindow>(node, windowKeys, session.window); }},
    {"fieldsPerSecond", false, [](const auto& node, auto& session) { session.fieldsPerSecond = node.Number(1, 1000); }},
    {"camera", true,
     [](const auto& node, auto& session) { cli::ReadKeys<SessionCamera>(node, cameraKeys, session.camera); }},
    {"containers", true, ReadContainers},
    {"events", false, ReadEvents},
    {"fields", false, ReadLength},
});

template <typename Keys>
SessionShape Shape(std::string_view name, const Keys& keys) {
    SessionShape shape{std::string(name), {}};
    for (const auto& key : keys) shape.keys.push_back({std::string(key.name), key.required});
    return shape;
}

}  // namespace

std::int64_t SessionEvent::LastField() const {
    const auto* stroke = std::get_if<StrokeEvent>(&what);
    return stroke ? field + stroke->fields : field;
}

std::filesystem::path Session::Resolve(const std::string& path) const { return file.parent_path() / path; }

Session ParseSession(const std::string& text, const std::filesystem::path& file) {
    Session session;
    session.file = file;
    const nlohmann::json json = cli::ParseJson(WholeSessionText(text), file);
    const cli::JsonNode root(json, file);
    cli::ReadKeys<Session>(root, sessionKeys, session);
    if (!root.Has("fields")) session.fields = FieldsNeeded(session);
    return session;
}

Session ReadSession(const std::filesystem::path& file) { return ParseSession(cli::ReadJsonText(file), file); }

std::vector<SessionShape> SessionShapes() {
    std::vector<SessionShape> shapes = {Shape("session", sessionKeys), Shape("window", windowKeys),
                                        Shape("camera", cameraKeys),   Shape("container", containerKeys),
                                        Shape("plugin", pluginKeys),   Shape("videoChange", videoKeys),
                                        Shape("fading", fadeKeys)};
    for (const EventKind& kind : eventKinds) shapes.push_back(Shape(kind.action, kind.keys));
    return shapes;
}

}  // namespace kel
