#pragma once

namespace kel {

// What the display refuses ends nothing from now on, but for a lack of memory there. Does nothing without X. To be
// called before SDL is started, whose end puts back the handler that it found and then hears of what was refused last,
// and again behind that, since SDL has put its own in place.
void PassOverRefusals();

}  // namespace kel
