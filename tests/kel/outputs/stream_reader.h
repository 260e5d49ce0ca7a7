#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "picture_io/picture.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/outputs/child_program.h"

namespace kel::testing {

// A program that knows nothing of this one reads what is sent live.
class StreamReader {
public:
    // Reads so many pictures, the last of which is looked at.
    explicit StreamReader(const std::string& address, int pictures = 2)
        : StreamReader(address, {"-frames:v", std::to_string(pictures)}) {}
    // Reads until it is killed.
    static StreamReader Endless(const std::string& address) { return StreamReader(address, {"-vf", "crop=2:2:0:0"}); }

    [[nodiscard]] ChildProgram& Program() { return m_program; }
    [[nodiscard]] bool HasRead() const {
        std::error_code failure;
        const auto bytes = std::filesystem::file_size(m_folder / "pictures", failure);
        return !failure && bytes > 0;
    }
    void Kill() {
        m_program.Signal(SIGKILL);
        (void)m_program.WaitForEnd();
    }
    // What it has read when it has ended; empty: nothing that makes a whole picture of that size.
    [[nodiscard]] picture_io::Picture Last(std::int32_t width, std::int32_t height) const {
        const std::string bytes = cli::testing::ReadText(m_folder / "pictures");
        picture_io::Picture picture(width, height);
        if (bytes.size() < picture.rgba.size() || bytes.size() % picture.rgba.size() != 0) return {};
        std::copy_n(bytes.end() - static_cast<std::ptrdiff_t>(picture.rgba.size()), picture.rgba.size(),
                    picture.rgba.begin());
        return picture;
    }

private:
    StreamReader(const std::string& address, const std::vector<std::string>& what)
        : m_program(Words(address, what, (m_folder / "pictures").string())) {}

    static std::vector<std::string> Words(const std::string& address, const std::vector<std::string>& what,
                                          const std::string& file) {
        std::vector<std::string> words = {"ffmpeg", "-nostdin", "-loglevel", "quiet"};
        // It would look at seconds of a stream that says its rate nowhere.
        words.insert(words.end(), {"-analyzeduration", "200000", "-fpsprobesize", "0"});
        words.insert(words.end(), {"-f", address.starts_with("tcp://") ? "nut" : "mpegts", "-i", address});
        words.insert(words.end(), what.begin(), what.end());
        words.insert(words.end(), {"-f", "rawvideo", "-pix_fmt", "rgba", "-flush_packets", "1", file});
        return words;
    }

    cli::testing::TemporaryFolder m_folder;
    ChildProgram m_program;
};

// Where the n-th live output of a program is read, from the file of what it says; empty while it has not said it yet.
inline std::string AddressIn(const std::string& file, std::size_t number) {
    const std::string text = cli::testing::ReadText(file);
    std::size_t at = 0;
    for (std::size_t i = 0; i <= number; ++i) {
        at = text.find("live: ", at + (i > 0 ? 1 : 0));
        if (at == std::string::npos || text.find('\n', at) == std::string::npos) return {};
    }
    const std::size_t begin = at + 6;
    return text.substr(begin, text.find(": ", begin) - begin);
}

}  // namespace kel::testing
