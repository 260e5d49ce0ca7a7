#pragma once

#include <functional>
#include <vector>

#include "kel/module_loading/module.h"

namespace chalkpane::obs {

// The functions of a host that a module registers with (module/abi/host_api.h), for the telestrator's registration,
// which is linked to them. Each does something only while one of these runs on its thread.

// What `doRegister` registers.
[[nodiscard]] kel::Registration Register(const std::function<void()>& doRegister);

// Which parameters are shown when `show` has shown and hidden some; those that were hidden in the registration never.
[[nodiscard]] std::vector<bool> ShownAfter(const kel::Registration& registration, const std::function<void()>& show);

}  // namespace chalkpane::obs
