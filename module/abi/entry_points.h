#pragma once

#include <cstdint>

// Everything else in the module is hidden.
#define CHALKPANE_EXPORT __attribute__((visibility("default")))

namespace chalkpane {
// The instance block. Its fields are the module's own affair; to the host it is so many bytes, with the parameter
// values at their places in front.
struct PluginInstance;
}  // namespace chalkpane

// What a module exports; nothing else leaves it. All calls come on the host's render thread, never two at a time, and
// none lets an exception out. `instance` is the block that the host allocates (PLUGIN_INIT_EX says how large) and
// fills with the parameter values; it stays the host's.
//
// The host, which finds the functions by name, takes their types from these declarations and calls them through no
// other type.
extern "C" {

// Registers the plug-in and its parameters, once. Returns 0.
CHALKPANE_EXPORT std::int32_t PLUGIN_INIT_EX() noexcept;

// Constructs the fields behind the parameter values, which stay as they are. Allocates nothing. Returns `instance`.
CHALKPANE_EXPORT chalkpane::PluginInstance* PLUGIN_INIT_FUNCTION(chalkpane::PluginInstance* instance) noexcept;

// Ends the instance: deletes the host texture and frees what the fields own.
CHALKPANE_EXPORT void PLUGIN_CLEANUP_FUNCTION(chalkpane::PluginInstance* instance) noexcept;

// Shows and hides parameters to suit the present values. Returns the host's last answer.
CHALKPANE_EXPORT std::int32_t PLUGIN_GUI_STATUS(chalkpane::PluginInstance* instance) noexcept;

// `parameter` counts the registered parameters from 1.
CHALKPANE_EXPORT void PLUGIN_CHANGED_CALLBACK(chalkpane::PluginInstance* instance, std::int32_t parameter) noexcept;

// `action`: 0 clears, 1 takes back. Without a canvas nothing happens.
CHALKPANE_EXPORT void PLUGIN_EXEC_ACTION(chalkpane::PluginInstance* instance, std::int32_t action) noexcept;

// One step of the main loop, once for each rendered field.
CHALKPANE_EXPORT void PLUGIN_EXEC_PER_FIELD(chalkpane::PluginInstance* instance) noexcept;

// A press (`pressed` not 0) or a release of button 1 at window pixel (x, y), y from the top. `button` and `state` must
// be 1, or the call does nothing and returns 1. Returns the host's answer to the redraw, or -1 while inactive.
CHALKPANE_EXPORT std::int32_t PLUGIN_MOUSE_CALLBACK(chalkpane::PluginInstance* instance, std::int32_t a,
                                                    std::int32_t button, std::int32_t pressed, std::int32_t state,
                                                    std::int32_t x, std::int32_t y, std::int32_t b,
                                                    std::int32_t c) noexcept;

// The keyboard has no function.
CHALKPANE_EXPORT void PLUGIN_KEYBOARD_CALLBACK(chalkpane::PluginInstance* instance) noexcept;

// Before the container is drawn: uploads what changed and sets combiners, texture matrices and blending.
// Returns 1 when there is a canvas, else 0. The two last arguments are the host's own business.
CHALKPANE_EXPORT std::int32_t PLUGIN_PRE_RENDER_OPENGL(chalkpane::PluginInstance* instance, std::int32_t word,
                                                       float value) noexcept;

// After the container is drawn: restores blending. Returns 1.
CHALKPANE_EXPORT std::int32_t PLUGIN_POST_RENDER_OPENGL(chalkpane::PluginInstance* instance, std::int32_t word,
                                                        float value) noexcept;

}  // extern "C"
