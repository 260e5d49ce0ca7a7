#pragma once

#include <filesystem>

#include "host/window/desk.h"
#include "host/window/keys_table.h"

namespace kel {

struct WindowOptions {
    std::filesystem::path file;  // a picture, a film or a session
    DeskOptions desk;            // what it says of OpenGL and of sizes is the window's own business
    KeysTable keys;
    bool areKeysGiven = false;  // by the operator: keys that the module has no use for are errors
};

// Opens the desk in a window and returns when the operator has closed it. Throws Error when that cannot be done.
void RunDeskWindow(const WindowOptions& options);

}  // namespace kel
