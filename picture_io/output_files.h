#pragma once

#include <filesystem>
#include <set>
#include <vector>

#include "cli/staged_file.h"
#include "picture_io/picture.h"

namespace picture_io {

// The pictures that a command makes, which appear all together at its end or not at all.
//
// Each picture is staged under another name in its own folder; Commit gives all of them their names. What is not
// committed is deleted.
class OutputFiles {
public:
    // Says early that `file` will be staged. Throws Error when it cannot be a picture there: the name's ending, a
    // folder that is missing or closed, or another output of the same name.
    void Announce(const std::filesystem::path& file);
    // The same for a file that is no picture and that somebody else writes.
    void AnnounceOther(const std::filesystem::path& file);

    // Throws Error when the picture cannot be written.
    void Stage(const Picture& picture, const std::filesystem::path& file);
    void Stage(const Picture16& picture, const std::filesystem::path& file);

    // Throws Error when a file cannot be put in place; those before it are then there already.
    void Commit();

private:
    template <typename AnyDepth>
    void StageAny(const AnyDepth& picture, const std::filesystem::path& file);

    std::set<std::filesystem::path> m_announced;
    std::vector<cli::StagedFile> m_staged;
};

// "frames/f%05d.png": the names of numbered pictures.
class NumberedName {
public:
    // Throws Error unless the pattern has exactly one %0Nd (N: 1 to 9), in the file's name and not in its folder.
    explicit NumberedName(const std::string& pattern);

    [[nodiscard]] std::filesystem::path At(std::int64_t number) const;

private:
    std::string m_before;
    std::string m_after;
    std::size_t m_digits = 1;
};

}  // namespace picture_io
