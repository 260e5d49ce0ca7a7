#include <doctest/doctest.h>

#include <nlohmann/json.hpp>
#include <optional>

#include "kel/video/video_reader.h"
#include "tests/kel/kel_folder.h"
#include "tests/kel/outputs/src_over.h"
#include "tests/kel/pixels.h"

// Videos, numbered pictures, overlays, fill and key, as an operator asks for them.

namespace kel {
namespace {

using nlohmann::json;
using testing::CheckRefused;
using testing::Composited;
using testing::KelFolder;
using testing::Pixel;
using testing::SessionWith;
using testing::WorstDifference;

constexpr std::int64_t cardFields = 30;
constexpr int rounding = 2;  // of 255: that of the rendered picture, of the overlay's colour and of its alpha

json TestCard() { return json::parse(cli::testing::ReadText(KEL_SOURCE_FOLDER "/examples/test-card.json")); }

// With the card's pictures, which a session reads beside itself.
class CardFolder : public KelFolder {
public:
    CardFolder() : KelFolder(TestCard()) {
        const json card = TestCard();
        for (const json& container : card["containers"])
            if (const std::string name = container.value("picture", ""); !name.empty())
                Write(name, cli::testing::ReadText(KEL_SOURCE_FOLDER "/examples/" + name));
    }
};

// The card as it is before anybody draws on it.
picture_io::Picture CleanCard(const KelFolder& folder) {
    json session = TestCard();
    session.erase("events");
    session["fields"] = 1;
    folder.Write("clean.json", session.dump());
    REQUIRE_EQ(folder.Run("play clean.json --out clean.png").exitCode, 0);
    return folder.Open("clean.png");
}

// Frames of a video or of numbered pictures.
class Frames {
public:
    Frames(const KelFolder& folder, const std::string& name) : m_folder(folder), m_name(name) {
        if (!IsNumbered()) m_video.emplace(folder.Path(name));
    }
    [[nodiscard]] std::int64_t Count() const {
        std::int64_t count = 0;
        if (m_video) return m_video->FrameCount();
        while (m_folder.Has(NameAt(count))) ++count;
        return count;
    }
    [[nodiscard]] picture_io::Picture At(std::int64_t field) {
        return m_video ? m_video->ReadFrame(field) : m_folder.Open(NameAt(field));
    }

private:
    [[nodiscard]] bool IsNumbered() const { return m_name.ends_with("%05d.png"); }
    [[nodiscard]] std::string NameAt(std::int64_t field) const {
        const std::string digits = std::to_string(field);
        return m_name.substr(0, m_name.find('%')) + std::string(5 - digits.size(), '0') + digits + ".png";
    }

    const KelFolder& m_folder;
    std::string m_name;
    std::optional<VideoReader> m_video;
};

// Every pixel's alpha is a byte of it; how many are neither clear nor opaque.
std::size_t HalfCovered(const picture_io::Picture& overlay) {
    std::size_t count = 0;
    for (std::size_t at = 3; at < overlay.rgba.size(); at += 4)
        count += overlay.rgba[at] > 25 && overlay.rgba[at] < 230 ? 1 : 0;
    return count;
}

std::size_t Covered(const picture_io::Picture& overlay) {
    std::size_t count = 0;
    for (std::size_t at = 3; at < overlay.rgba.size(); at += 4) count += overlay.rgba[at] > 0 ? 1 : 0;
    return count;
}

}  // namespace

TEST_CASE("An overlay that was written lies over the picture as the rendered strokes do") {
    const CardFolder folder;
    const picture_io::Picture clean = CleanCard(folder);
    struct Way {
        std::string name;
        bool isStraight;
    };
    for (const Way& way :
         {Way{"overlay.mov", false}, Way{"overlay.mov", true}, Way{"overlay.mkv", true},
          Way{"premultiplied.mkv", false}, Way{"overlay%05d.png", false}, Way{"straight%05d.png", true}}) {
        CAPTURE(way.name);
        CAPTURE(way.isStraight);
        const std::string straight = way.isStraight ? " --straight" : "";
        REQUIRE_EQ(folder.Run("play s.json --out out.mov --overlay " + way.name + straight).exitCode, 0);
        Frames rendered(folder, "out.mov");
        Frames overlay(folder, way.name);
        REQUIRE_EQ(rendered.Count(), cardFields);
        REQUIRE_EQ(overlay.Count(), cardFields);
        CHECK_EQ(Covered(overlay.At(0)), 0);
        for (std::int64_t field = 2; field < cardFields; field += 3)
            CHECK_LE(WorstDifference(Composited(overlay.At(field), clean, way.isStraight), rendered.At(field)),
                     rounding);
        CHECK_GT(HalfCovered(overlay.At(cardFields - 1)), 1000);
        CHECK_GT(Covered(overlay.At(cardFields - 1)), 3000);
    }
}

// The mixer's arithmetic: picture * (1 - key) + fill, or + fill * key where the fill is straight.
TEST_CASE("Fill and key lie over the picture as the rendered strokes do") {
    const CardFolder folder;
    const picture_io::Picture clean = CleanCard(folder);
    for (const bool isStraight : {false, true}) {
        CAPTURE(isStraight);
        const std::string straight = isStraight ? " --straight" : "";
        REQUIRE_EQ(folder.Run("play s.json --out out%05d.png --fill fill.mov --key key.mkv" + straight).exitCode, 0);
        Frames rendered(folder, "out%05d.png");
        Frames fill(folder, "fill.mov");
        Frames key(folder, "key.mkv");
        REQUIRE_EQ(fill.Count(), cardFields);
        REQUIRE_EQ(key.Count(), cardFields);
        for (const std::int64_t field : {12, 29}) {
            picture_io::Picture strokes = fill.At(field);
            const picture_io::Picture alpha = key.At(field);
            std::size_t coloured = 0;
            for (std::size_t at = 0; at < strokes.rgba.size(); at += 4) {
                coloured += alpha.rgba[at] == alpha.rgba[at + 1] && alpha.rgba[at] == alpha.rgba[at + 2] ? 0 : 1;
                strokes.rgba[at + 3] = alpha.rgba[at];
            }
            CHECK_EQ(coloured, 0);
            CHECK_LE(WorstDifference(Composited(strokes, clean, isStraight), rendered.At(field)), rounding);
        }
    }
}

TEST_CASE("A lossy video of a session has its size, its fields and about its colours") {
    const CardFolder folder;
    REQUIRE_EQ(folder.Run("play s.json --out out.mp4").exitCode, 0);
    REQUIRE_EQ(folder.Run("play s.json --out last.png").exitCode, 0);
    VideoReader film(folder.Path("out.mp4"));
    CHECK_EQ(film.Width(), 320);
    CHECK_EQ(film.Height(), 180);
    CHECK_EQ(film.FrameCount(), cardFields);
    CHECK_EQ(film.FramesPerSecond(), doctest::Approx(50).epsilon(1e-6));
    // The middles of the eight bars, and of the card's right stroke.
    const picture_io::Picture last = folder.Open("last.png");
    const picture_io::Picture read = film.ReadFrame(cardFields - 1);
    for (std::int32_t bar = 0; bar < 8; ++bar) {
        CAPTURE(bar);
        CHECK_LE(testing::Difference(read.At(bar * 40 + 28, 8), last.At(bar * 40 + 28, 8)), 12);
    }
    CHECK_LE(testing::Difference(read.At(290, 66), last.At(290, 66)), 40);  // soft all over
}

TEST_CASE("Numbered pictures are the same by --out and by --frames, and the video has them too") {
    const CardFolder folder;
    REQUIRE_EQ(folder.Run("play s.json --out a%05d.png --frames b%05d.png").exitCode, 0);
    REQUIRE_EQ(folder.Run("play s.json --out c.mov --frames d%05d.png").exitCode, 0);
    Frames film(folder, "c.mov");
    for (const std::int64_t field : {0, 9, 29}) {
        const picture_io::Picture picture = Frames(folder, "a%05d.png").At(field);
        CHECK(picture == Frames(folder, "b%05d.png").At(field));
        CHECK(picture == film.At(field));
        CHECK(picture == Frames(folder, "d%05d.png").At(field));
    }
    CHECK_EQ(Frames(folder, "a%05d.png").Count(), cardFields);
}

TEST_CASE("The overlay as one picture is that of the last field") {
    const CardFolder folder;
    for (const std::string straight : {"", " --straight"}) {
        REQUIRE_EQ(folder.Run("play s.json --overlay last.png" + straight).exitCode, 0);
        REQUIRE_EQ(folder.Run("play s.json --overlay all%05d.png" + straight).exitCode, 0);
        CHECK(folder.Open("last.png") == Frames(folder, "all%05d.png").At(cardFields - 1));
    }
}

TEST_CASE("The canvas is one picture in its own size, straight in any case") {
    const CardFolder folder;
    REQUIRE_EQ(folder.Run("play s.json --canvas a.png").exitCode, 0);
    REQUIRE_EQ(folder.Run("play s.json --canvas b.png --straight").exitCode, 0);
    CHECK_EQ(folder.Open("a.png").width, 1024);
    CHECK(folder.Open("a.png") == folder.Open("b.png"));
    for (const std::string name : {"c.mov", "c%05d.png"})
        CheckRefused(folder, "play s.json --canvas " + name,
                     name +
                         ": --canvas is one picture, of the end; it needs a name in .png, .webp, .tif, .tiff, .pam, "
                         ".avif, .heic or .heif");
}

TEST_CASE("A play that writes nothing says so, and one that saves does not") {
    const CardFolder folder;
    const auto silent = folder.Run("play s.json");
    CHECK_EQ(silent.exitCode, 0);
    CHECK_EQ(silent.complaint,
             "kel: nothing is written: the session saves no picture, and none of --out, --overlay, --canvas, --fill "
             "is given\n");
    const KelFolder saving(SessionWith("/events/0", {{"field", 0}, {"save", "kept.png"}}));
    const auto saved = saving.Run("play s.json");
    CHECK_EQ(saved.exitCode, 0);
    CHECK_EQ(saved.complaint, "");
}

TEST_CASE("Fill and key as one picture are those of the last field") {
    const CardFolder folder;
    REQUIRE_EQ(folder.Run("play s.json --fill fill.png --key key.png").exitCode, 0);
    REQUIRE_EQ(folder.Run("play s.json --overlay overlay%05d.png").exitCode, 0);
    const picture_io::Picture overlay = Frames(folder, "overlay%05d.png").At(cardFields - 1);
    const picture_io::Picture fill = folder.Open("fill.png");
    const picture_io::Picture key = folder.Open("key.png");
    std::size_t different = 0;
    for (std::size_t at = 0; at < overlay.rgba.size(); at += 4) {
        different += overlay.rgba[at] == fill.rgba[at] && overlay.rgba[at + 3] == key.rgba[at] ? 0 : 1;
        different += fill.rgba[at + 3] == 255 && key.rgba[at + 3] == 255 ? 0 : 1;
    }
    CHECK_EQ(different, 0);
}

TEST_CASE("Outputs that cannot be are refused before anything is played") {
    const KelFolder folder;
    const std::string alphaEndings = ".png, .webp, .tif, .tiff, .pam, .avif, .heic, .heif, .mov or .mkv";
    CheckRefused(folder, "play s.json --overlay o.mp4",
                 "o.mp4: .mp4 has no alpha; the strokes alone need " + alphaEndings + ", or else --fill and --key");
    CheckRefused(folder, "play s.json --overlay o.jpg",
                 "o.jpg: .jpg has no alpha; the strokes alone need " + alphaEndings + ", or else --fill and --key");
    CheckRefused(folder, "play s.json --overlay o%03d.jpg",
                 "o%03d.jpg: .jpg has no alpha; the strokes alone need " + alphaEndings + ", or else --fill and --key");
    CheckRefused(folder, "play s.json --out o.mp5",
                 "o.mp5: neither a picture nor a film ends in \".mp5\"; did you mean \".mp4\"?");
    CheckRefused(folder, "play s.json --fill o.mov",
                 "o.mov: --fill and --key are written as a pair; the other one is missing");
    CheckRefused(folder, "play s.json --key o.mov",
                 "o.mov: --fill and --key are written as a pair; the other one is missing");
    CheckRefused(folder, "play s.json --out o.mov --overlay ./o.mov", "./o.mov: two outputs have this name");
    CheckRefused(folder, "play s.json --out none/o.mov", "none/o.mov: cannot be written: there is no folder none");
    CheckRefused(folder, "play s.json --out f%d.png", "f%d.png: must have one number such as %05d in the file's name");
    CheckRefused(folder, "play s.json --frames f.mov", "f.mov: must have one number such as %05d in the file's name");
    const KelFolder plain(SessionWith("/containers/0", {{"size", {100, 100}}}));
    for (const std::string wanted : {"--overlay o.mov", "--fill o.mov --key k.mov"})
        CheckRefused(plain, "play s.json " + wanted,
                     "s.json: /containers: no container has a plug-in, so there is no overlay");
}

// The limit counts blocks of 512 or 1024 bytes; the videos are larger than 8 of either.
TEST_CASE("A disk that is full ends a play with one clear line and no file") {
    const CardFolder folder;
    for (const std::string name : {"out.mov", "out.mkv", "out.mp4", "out.webm", "out%05d.png"}) {
        CAPTURE(name);
        const std::ptrdiff_t entries = folder.Entries();
        const auto ended = folder.Run("play s.json --out " + name, KEL_PROGRAM, "ulimit -f 8 &&");
        CHECK_EQ(ended.exitCode, 2);
        CHECK_NE(ended.complaint.find("cannot be written: File too large\n"), std::string::npos);
        CHECK_EQ(folder.Entries(), entries);
    }
}

}  // namespace kel
