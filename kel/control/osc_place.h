#pragma once

#include <netinet/in.h>

#include "kel/control/control_address.h"

namespace kel {

// The place as the system has it. Throws Error when the host is no address of four numbers.
[[nodiscard]] sockaddr_in OscPlaceOf(const ControlAddress& address);

}  // namespace kel
