#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "apps/chalkpane/strokes/brush_description.h"
#include "cli/json_node.h"

namespace chalkpane::app {

// Reads the brushes of a file of strokes. A brush that is "like" a named one begins with what that one has.
//
// Borrows the file's JSON. All throw cli::Error with file, place and reason.
class BrushParser {
public:
    explicit BrushParser(std::filesystem::path file) : m_file(std::move(file)) {}

    // named: the object whose members are the named brushes
    void ReadNamed(const cli::JsonNode& named);
    // The index of the brush that a stroke gives: by its name, or as an object of its own.
    [[nodiscard]] std::size_t IndexOf(const cli::JsonNode& node);
    // The index of the brush of strokes that give none: all defaults.
    [[nodiscard]] std::size_t IndexOfPlain();

    // All that indices were given for.
    [[nodiscard]] std::vector<BrushDescription> TakeBrushes() { return std::move(m_brushes); }

private:
    struct Named {
        cli::JsonNode node;
        enum class State : std::uint8_t { Unread, Reading, Read } state = State::Unread;
        std::size_t index = 0;  // among the brushes, once it is read
    };

    void ReadOnce(Named& brush, int depth);
    [[nodiscard]] std::size_t IndexOfName(const cli::JsonNode& node, int depth);
    [[nodiscard]] BrushDescription Read(const cli::JsonNode& node, int depth);

    std::filesystem::path m_file;
    std::map<std::string, Named> m_named;
    std::vector<BrushDescription> m_brushes;
    std::size_t m_plain = SIZE_MAX;
};

// The keys of a brush, of its picture and of a filter in a file, beside the names of parameters.
[[nodiscard]] std::vector<std::string> BrushKeys();
[[nodiscard]] std::vector<std::string> BrushPictureKeys();
[[nodiscard]] std::vector<std::string> FilterKeys();
// The labels and the long names of the parameters that a brush takes.
[[nodiscard]] std::vector<std::string> BrushParameterNames();

}  // namespace chalkpane::app
