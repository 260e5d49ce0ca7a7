#include "obs/plugin/pane_owner.h"

#include <utility>

#include "obs/plugin/pane_settings.h"

namespace chalkpane::obs {
namespace {

constexpr const char* inkSetting = "ChalkpaneInk";

// Those of the panel, and for what the plug-in can do besides.
std::vector<PanelHotkey> AllHotkeys() {
    std::vector<PanelHotkey> hotkeys = MakeHotkeys(ThePanel());
    for (const OwnButton& button : ownButtons)
        hotkeys.push_back({std::string("chalkpane.button.") + button.name,
                           button.label,
                           {kel::ModuleKey::Kind::Button, button.name, {}, 0}});
    return hotkeys;
}

const std::vector<PanelHotkey>& TheHotkeys() {
    static const std::vector<PanelHotkey> hotkeys = AllHotkeys();
    return hotkeys;
}

}  // namespace

PaneOwner::PaneOwner(obs_data_t* settings, obs_source_t* source, std::function<void()> openWindow)
    : m_source(source), m_openWindow(std::move(openWindow)), m_pane(std::make_shared<InkPane>(ThePanel())) {
    const std::string wrong = m_pane->LoadInk(obs_data_get_string(settings, inkSetting));
    if (!wrong.empty())
        blog(LOG_WARNING, "[chalkpane] %s: what was drawn cannot be read: %s", obs_source_get_name(source),
             wrong.c_str());
    Update(settings);
}

PaneOwner::~PaneOwner() { OfferHotkeys(nullptr); }

void PaneOwner::Update(obs_data_t* settings) {
    Guarded([&] { m_pane->SetValues(ValuesOf(settings)); });
}

void PaneOwner::Save(obs_data_t* settings) {
    Guarded([&] { obs_data_set_string(settings, inkSetting, m_pane->InkText().c_str()); });
}

void PaneOwner::Tick(const PanePlace& place, obs_source_t* shown) {
    if (place != m_pane->Place()) m_pane->SetPlace(place);
    Guarded([&] { m_pane->PassField(); });
    if (obs_source_showing(shown)) m_texture.Upload(*m_pane);
}

void PaneOwner::PushButton(const std::string& name) {
    Guarded([&] {
        if (name == "Clear") m_pane->Push(PaneAction::Clear);
        if (name == "Undo") m_pane->Push(PaneAction::Undo);
        if (name == redoButton.name) m_pane->Push(PaneAction::Redo);
        if (name == drawButton.name) m_openWindow();
    });
}

void PaneOwner::OfferHotkeys(obs_source_t* of) {
    if (of == std::exchange(m_offeredBy, of)) return;
    for (const Hotkey& hotkey : m_hotkeys) obs_hotkey_unregister(hotkey.id);
    m_hotkeys.clear();
    if (of == nullptr) return;
    m_hotkeys.reserve(TheHotkeys().size());
    for (const PanelHotkey& what : TheHotkeys()) {
        Hotkey& hotkey = m_hotkeys.emplace_back(Hotkey{this, &what});
        const auto press = [](void* data, obs_hotkey_id, obs_hotkey_t*, bool isPressed) {
            const auto& pressed = *static_cast<const Hotkey*>(data);
            if (isPressed) Guarded([&] { pressed.owner->Do(*pressed.what); });
        };
        const std::string label = "Chalkpane: " + what.label;
        hotkey.id = obs_hotkey_register_source(of, what.id.c_str(), label.c_str(), press, &hotkey);
    }
}

// The pane has the values at once, and OBS's settings follow, so that two hotkeys after each other both count.
void PaneOwner::Do(const PanelHotkey& hotkey) {
    if (hotkey.does.kind == kel::ModuleKey::Kind::Button) return PushButton(hotkey.does.button);
    const PanelValues values = AfterHotkey(ThePanel(), hotkey, m_pane->Values());
    m_pane->SetValues(values);
    obs_data_t* settings = obs_data_create();
    PutValues(values, settings);
    obs_source_update(m_source, settings);
    obs_data_release(settings);
    obs_source_update_properties(m_source);
}

void SendClick(InkPane& pane, double x, double y, std::int32_t button, bool isUp) {
    if (button != MOUSE_LEFT) return;
    Guarded([&] {
        if (isUp) {
            pane.Release(x, y);
        } else {
            pane.Press(x, y);
        }
    });
}

// Where the pointer is outside of the window's picture its position means nothing; the stroke waits for it to come
// back.
void SendMove(InkPane& pane, double x, double y, bool hasLeft) {
    if (!hasLeft) Guarded([&] { pane.Move(x, y); });
}

}  // namespace chalkpane::obs
