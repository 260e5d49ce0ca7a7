#pragma once

#include <obs.h>

#include <optional>
#include <vector>

#include "obs/item_place.h"

namespace chalkpane::obs {

// How a source lies in a scene: the items that lead to it, from the scene inwards. There are several where it lies in a
// group, or in a scene that lies in this one. Nothing: it is not there. Where it is there more than once it is the
// uppermost that is seen, and one that is hidden only where none is seen.
//
//   scene  a scene's or a group's source; of any other the answer is nothing
[[nodiscard]] std::optional<std::vector<ItemPlace>> FindInScene(obs_source_t* scene, obs_source_t* sought);

}  // namespace chalkpane::obs
