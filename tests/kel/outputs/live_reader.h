#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "picture_io/picture.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/outputs/child_program.h"

namespace kel::testing {

// A program that knows nothing of this one reads what is sent live: `pictures` of them, the last of which is looked at.
class LiveReader {
public:
    explicit LiveReader(const std::string& address, int pictures = 2)
        : m_program(Words(address, pictures, (m_folder / "pictures").string())) {}

    [[nodiscard]] ChildProgram& Program() { return m_program; }
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
    static std::vector<std::string> Words(const std::string& address, int pictures, const std::string& file) {
        std::vector<std::string> words = {"ffmpeg", "-nostdin", "-loglevel", "quiet"};
        if (address.starts_with("tcp://")) words.insert(words.end(), {"-f", "nut"});
        // A reader of datagrams looks for the stream's size before it begins.
        if (!address.starts_with("tcp://")) words.insert(words.end(), {"-f", "mpegts"});
        words.insert(words.end(), {"-i", address, "-frames:v", std::to_string(pictures), "-f", "rawvideo", "-pix_fmt",
                                   "rgba", file});
        return words;
    }

    cli::testing::TemporaryFolder m_folder;
    ChildProgram m_program;
};

}  // namespace kel::testing
