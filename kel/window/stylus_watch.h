#pragma once

#include <memory>

namespace kel {

// The pens of the display's tablets. Their places come as the pointer's; what that does not tell is watched here, on a
// connection of its own: which end is used, and how hard it is pressed. Without X, or without its input extension,
// there never is a pen.
class StylusWatch {
public:
    StylusWatch();
    ~StylusWatch();
    StylusWatch(const StylusWatch&) = delete;
    StylusWatch& operator=(const StylusWatch&) = delete;
    StylusWatch(StylusWatch&&) = delete;
    StylusWatch& operator=(StylusWatch&&) = delete;

    struct State {
        bool isEraser = false;
        double pressure = 1;  // 0.0 .. 1.0; full for what tells none
    };
    // Of what moved or pressed the pointer last. To be asked often: what is not asked for waits.
    [[nodiscard]] State Look();

private:
    struct Connection;
    std::unique_ptr<Connection> m_connection;  // null: there is nothing to watch
};

}  // namespace kel
