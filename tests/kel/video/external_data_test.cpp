#include <doctest/doctest.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "kel/video/video_file.h"
#include "kel/video/video_reader.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/video/counted_video.h"
#include "tests/kel/video/open_watch.h"

// QuickTime's track may say that its frames lie in another file, by an alias to it. Such a video would have the program
// read whatever its author names.

namespace kel {
namespace {

void PutNumber(std::string& bytes, std::uint32_t number, std::size_t width) {
    for (std::size_t byte = width; byte-- > 0;) bytes += static_cast<char>(number >> (8 * byte));
}

std::uint32_t NumberAt(const std::string& bytes, std::size_t at) {
    std::uint32_t number = 0;
    for (std::size_t byte = 0; byte < 4; ++byte) number = number << 8U | static_cast<unsigned char>(bytes[at + byte]);
    return number;
}

// The entry of a table of data references that leads to `name` in the video's own folder: one folder up from the alias,
// one down to the target.
std::string Alias(const std::string& name) {
    std::string alias = "alis" + std::string(4 + 10 + 1 + 27 + 12 + 1 + 63 + 16, '\0');
    PutNumber(alias, 1, 2);
    PutNumber(alias, 1, 2);
    alias += std::string(16, '\0');
    const std::string path = "/" + name + std::string(name.size() % 2 == 0 ? 1 : 0, '\0');
    PutNumber(alias, 2, 2);  // an absolute path follows, of an even length
    PutNumber(alias, static_cast<std::uint32_t>(path.size()), 2);
    alias += path;
    PutNumber(alias, 0xffff, 2);
    PutNumber(alias, 0, 2);
    std::string entry;
    PutNumber(entry, static_cast<std::uint32_t>(alias.size() + 4), 4);
    return entry + alias;
}

// Puts the alias in the place of the one reference that the video's only track has, to the video itself. Each box
// around it says its own length, four bytes before its name.
void LeadAway(const std::filesystem::path& file, const std::string& name) {
    std::string bytes = cli::testing::ReadText(file);
    const std::size_t table = bytes.rfind("dref");
    REQUIRE_NE(table, std::string::npos);
    const std::size_t entry = table + 4 + 8;
    const std::uint32_t length = NumberAt(bytes, entry);
    const std::string alias = Alias(name);
    for (const std::string_view box :
         std::to_array<std::string_view>({"moov", "trak", "mdia", "minf", "dinf", "dref"})) {
        const std::size_t at = bytes.rfind(box, table) - 4;
        std::string longer;
        PutNumber(longer, NumberAt(bytes, at) + static_cast<std::uint32_t>(alias.size()) - length, 4);
        bytes.replace(at, 4, longer);
    }
    bytes.replace(entry, length, alias);
    cli::testing::WriteText(file, bytes);
}

// The same as the library does it for whoever lets it.
void OpenWithOthers(const std::filesystem::path& file) {
    AVDictionary* options = nullptr;
    av_dict_set(&options, "enable_drefs", "1", 0);
    AVFormatContext* input = nullptr;
    const int result = avformat_open_input(&input, file.c_str(), nullptr, &options);
    av_dict_free(&options);
    const AvInput closed(input);
    REQUIRE_GE(result, 0);
}

}  // namespace

TEST_CASE("A video whose frames lie in another file is refused, and the other is not opened") {
    const cli::testing::TemporaryFolder folder;
    testing::WriteCountedVideo(folder / "other.mov", 3, 64, 32);
    const testing::OpenWatch watch(folder / "other.mov");
    for (const std::string ending : {".mov", ".mp4"}) {
        CAPTURE(ending);
        const std::filesystem::path file = folder / ("film" + ending);
        testing::WriteCountedVideo(file, 3, 64, 32);
        LeadAway(file, "other.mov");
        CHECK_EQ(cli::testing::Thrown([&] { const VideoReader reader(file); }), file.string() + ": has no frames");
        CHECK_FALSE(watch.SawOpening());
        OpenWithOthers(file);
        CHECK(watch.SawOpening());
    }
}

}  // namespace kel
