#pragma once

#include "shared/nearest_name.h"

namespace kel {

using shared::NearestHint;
using shared::Quoted;

}  // namespace kel
