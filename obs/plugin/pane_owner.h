#pragma once

#include <obs-module.h>

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "obs/ink_pane.h"
#include "obs/panel_hotkeys.h"
#include "obs/plugin/pane_texture.h"

namespace chalkpane::obs {

// Does it, and lets nothing out that OBS's own code could not take; what went wrong is in OBS's log.
template <typename Function>
void Guarded(const Function& function) noexcept {
    try {
        function();
    } catch (const std::exception& error) {
        blog(LOG_ERROR, "[chalkpane] %s", error.what());
    }
}

// What OBS keeps of a new source; null where it cannot be made.
template <typename Data>
void* Create(obs_data_t* settings, obs_source_t* source) noexcept {
    try {
        return new Data(settings, source);
    } catch (const std::exception& error) {
        blog(LOG_ERROR, "[chalkpane] %s", error.what());
        return nullptr;
    }
}

// What the source and the filter have in common: a pane with its texture, and what OBS does with them. Nothing but the
// constructor throws.
class PaneOwner {
public:
    // Takes settings and ink from the settings. Borrows the source, which owns this.
    //   openWindow  opens a window to draw in, on the thread of OBS's own window
    PaneOwner(obs_data_t* settings, obs_source_t* source, std::function<void()> openWindow);
    ~PaneOwner();
    PaneOwner(const PaneOwner&) = delete;
    PaneOwner& operator=(const PaneOwner&) = delete;
    PaneOwner(PaneOwner&&) = delete;
    PaneOwner& operator=(PaneOwner&&) = delete;

    void Update(obs_data_t* settings);
    void Save(obs_data_t* settings);
    // A frame of OBS is a field. The size is the source's, in its pixels; `shown` is what is seen if the ink is: the
    // source itself, or the one that a filter is put on.
    void Tick(const PanePlace& place, obs_source_t* shown);
    void Draw() const { m_texture.Draw(m_pane->Place()); }

    // By the name of the panel's, or of one of those that are the plug-in's own.
    void PushButton(const std::string& name);
    // Offers the hotkeys as those of this source, in place of the one before; null: of none. Those of a filter are its
    // source's, since OBS offers none for filters that are made by others than itself.
    void OfferHotkeys(obs_source_t* of);
    // Shared with windows to draw in, which may outlive the source.
    [[nodiscard]] const std::shared_ptr<InkPane>& Pane() const { return m_pane; }
    [[nodiscard]] obs_source_t* Source() const { return m_source; }

private:
    struct Hotkey {
        PaneOwner* owner = nullptr;
        const PanelHotkey* what = nullptr;
        obs_hotkey_id id = OBS_INVALID_HOTKEY_ID;
    };

    void Do(const PanelHotkey& hotkey);

    obs_source_t* m_source;
    std::function<void()> m_openWindow;
    std::shared_ptr<InkPane> m_pane;
    PaneTexture m_texture;
    obs_source_t* m_offeredBy = nullptr;  // only compared with
    std::vector<Hotkey> m_hotkeys;        // never moved once they are registered
};

// How an operator's pointer reaches a pane, by the events that OBS sends to a source.
void SendClick(InkPane& pane, double x, double y, std::int32_t button, bool isUp);
void SendMove(InkPane& pane, double x, double y, bool hasLeft);

}  // namespace chalkpane::obs
