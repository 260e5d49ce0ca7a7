#pragma once

#include <string>
#include <string_view>

namespace chalkpane {

// The name of a file: a string in which every "/" became a backslash when it was assigned. Saved with a picture it is
// relative to a base directory, one for the whole process, so that a folder can be moved with all that is in it.
class FileName {
public:
    FileName() = default;
    explicit FileName(std::string_view newName) { assign(newName); }

    void assign(std::string_view newName);
    const std::string& string() const { return name; }
    bool empty() const { return name.empty(); }

    // Names compare as the strings they are, case included.
    friend bool operator==(const FileName&, const FileName&) = default;

    // The name as seen from `base`: ".\" or one "..\" per directory to climb. Unchanged where the drives differ, or the
    // two have less than the root and one directory in common.
    std::string relativeTo(std::string_view base = baseDirectory()) const;
    // A name that begins with a dot and another dot or a separator, found from `base`; any other unchanged. Climbing
    // stops at the root.
    std::string absolute(std::string_view base = baseDirectory()) const;

    // Ends with a separator, or else its last part counts as a file. Empty at first. Not for several threads.
    static const std::string& baseDirectory();
    static void setBaseDirectory(std::string_view directory);

private:
    std::string name;
};

// A path in its parts, which joined give the path again: "C:", "\art\", "brush", ".png".
struct SplitPath {
    explicit SplitPath(std::string_view path);
    std::string drive;      // with its colon, or empty
    std::string directory;  // to the last separator, which it includes
    std::string name;
    std::string extension;  // with its full stop, or empty
};

enum class LeadingSeparators { Collapse, Keep };
// Backslashes for slashes, one for several; a pair at the very front can be kept, for the name of a machine.
std::string normaliseDirectory(std::string_view directory, LeadingSeparators leading);

}  // namespace chalkpane
