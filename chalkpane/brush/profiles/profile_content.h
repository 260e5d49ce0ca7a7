#pragma once

#include <cstdint>

namespace chalkpane {

// The first word of the key of built masks: which class drew them.
enum class ProfileContent : std::uint64_t { Graph, Feather, Texture };

}  // namespace chalkpane
