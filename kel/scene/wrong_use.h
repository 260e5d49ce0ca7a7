#pragma once

#include <array>
#include <string>
#include <vector>

namespace kel {

// What a module can do wrong. Each kind is reported once, and the call changes nothing.
enum class WrongUse {
    UnknownId,      // no living object of that id and kind
    OutOfPlace,     // a call outside the callbacks that it is meant for
    OutsideImage,   // an upload beyond the edge, or none at all
    BadUnit,        // a texture unit that does not exist
    BadNumber,      // a number that the function does not know
    UnknownName,    // a name that the function does not know, or that is taken
    NullPointer,    // a result without a place to put it, or a text that is not there
    WrongThread,    // a call on another thread than the render thread
    OpenGlRefused,  // OpenGL did not accept what was asked in a render
};
constexpr std::size_t wrongUseKinds = 9;

// Writes the first of each kind to standard error, one line each, and keeps the lines.
class WrongUseLog {
public:
    void Report(WrongUse kind, const std::string& what);
    [[nodiscard]] const std::vector<std::string>& Lines() const { return m_lines; }

private:
    std::array<bool, wrongUseKinds> m_reported{};
    std::vector<std::string> m_lines;
};

}  // namespace kel
