#pragma once

#include <stdexcept>
#include <string>

namespace cli {

// What the operator got wrong or what this machine cannot do, as one line without an end of line.
class Error : public std::runtime_error {
public:
    explicit Error(const std::string& message) : std::runtime_error(message) {}
    // place: where inside the file; may be empty
    Error(const std::string& file, const std::string& place, const std::string& reason)
        : std::runtime_error(file + ": " + (place.empty() ? "" : place + ": ") + reason) {}
};

}  // namespace cli
