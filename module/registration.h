#pragma once

#include <cstdint>

#include "module/plugin_instance.h"

namespace chalkpane {

// Names the plug-in, its parameters and its buttons to the host.
void RegisterPlugin();

// Shows and hides parameters to suit the brush type and the texture unit. Returns the host's last answer.
std::int32_t ShowParameters(const PluginParameters& values);

// What the host calls BrushType when it has changed: parameters count from 1 in the order of registration.
constexpr std::int32_t brushTypeNumber = 5;

// The push buttons, by the number that the host hands back.
enum class PluginAction : std::int32_t { Clear = 0, Undo = 1 };

}  // namespace chalkpane
