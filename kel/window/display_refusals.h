#pragma once

namespace kel {

// What the display refuses ends nothing from now on, but for a lack of memory there. Does nothing without X. To be
// called whenever SDL has been started, which then has a handler of its own that ends the program.
void PassOverRefusals();

}  // namespace kel
