#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "cli/file_claims.h"
#include "cli/staged_file.h"
#include "picture_io/picture_file.h"

namespace picture_io {

// The pictures that a command makes, which appear all together at its end or not at all.
//
// Each picture is staged under another name in its own folder; Commit gives all of them their names. What is not
// committed is deleted.
class OutputFiles {
public:
    // Says early that `file` will be staged, or standard output as "-". Throws Error when it cannot be a picture there:
    // the name's ending, a folder that is missing or closed, what is no regular file, an input, or another output of
    // the same name.
    void Announce(const std::filesystem::path& file);
    // The same for a picture that may take the place of `input`, which is read whole before.
    void AnnounceOnto(const std::filesystem::path& file, const std::filesystem::path& input);
    // The same for a file that is no picture and that somebody else writes.
    void AnnounceOther(const std::filesystem::path& file);
    // Says that `file` will be read, before it is. Throws Error when it is an output, as Announce does for an input.
    void AnnounceInput(const std::filesystem::path& file) { m_claims.Read(file); }

    // Throws Error when the picture cannot be written.
    void Stage(const AnyPicture& picture, const std::filesystem::path& file, const WriteOptions& options = {});
    // The bytes of a file that is finished; "-" is standard output.
    void StageBytes(std::vector<std::uint8_t> bytes, const std::filesystem::path& file);
    // The same in two steps, so that other processes may do the second: makes the file's place, and fills the place
    // that was made as the index-th.
    void Reserve(const std::filesystem::path& file) { m_staged.emplace_back(file); }
    void Fill(std::size_t index, const std::vector<std::uint8_t>& bytes) const { m_staged[index].Write(bytes); }
    void StageText(std::string_view text, const std::filesystem::path& file);

    // A kill leaves all of the files in place or none. Throws Error when a file cannot be put in place; those before it
    // are then there already.
    void Commit();

private:
    cli::FileClaims m_claims;
    std::vector<cli::StagedFile> m_staged;
    std::vector<std::uint8_t> m_stream;  // for standard output, which goes first: whoever reads it may be gone
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
