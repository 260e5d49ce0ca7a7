#pragma once

#include "host/session_nearest.h"
#include "shared/json_node.h"

namespace kel {

using shared::ParseJson;
using shared::ReadKeys;
using SessionNode = shared::JsonNode;
template <typename T>
using SessionKey = shared::JsonKey<T>;

}  // namespace kel
