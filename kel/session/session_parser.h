#pragma once

#include <string>
#include <vector>

namespace kel {

// The keys that the parser takes, object by object, in the order of its tables. The schema beside the documentation is
// held to this list.
struct SessionShape {
    struct Key {
        std::string name;
        bool required = false;
        friend bool operator==(const Key&, const Key&) = default;
    };
    std::string name;  // "session", "window", "camera", "container", "plugin", or an event's action
    std::vector<Key> keys;
};

[[nodiscard]] std::vector<SessionShape> SessionShapes();

}  // namespace kel
