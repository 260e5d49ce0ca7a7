#pragma once

#include "shared/error.h"

namespace kel {

using shared::Error;

}  // namespace kel
