#include <doctest/doctest.h>

#include <nlohmann/json.hpp>
#include <optional>

#include "host/film/film_reader.h"
#include "tests/host/desk.h"
#include "tests/host/laid_over.h"
#include "tests/host/pixels.h"

// Films, numbered pictures, overlays, fill and key, as an operator asks for them.

namespace kel {
namespace {

using nlohmann::json;
using testing::CheckRefused;
using testing::CheckRefusedLike;
using testing::Desk;
using testing::LaidOver;
using testing::Pixel;
using testing::SessionWith;
using testing::WorstDifference;

constexpr std::int64_t cardFields = 30;
constexpr int rounding = 2;  // of 255: that of the rendered picture, of the overlay's colour and of its alpha

json TestCard() {
    json session = json::parse(shared::testing::ReadText(KEL_SOURCE_FOLDER "/examples/test-card.json"));
    for (json& container : session["containers"])
        if (container.contains("picture"))
            container["picture"] = KEL_SOURCE_FOLDER "/examples/" + container["picture"].get<std::string>();
    return session;
}

// The card as it is before anybody draws on it.
Picture CleanCard(const Desk& desk) {
    json session = TestCard();
    session.erase("events");
    session["fields"] = 1;
    desk.Write("clean.json", session.dump());
    REQUIRE_EQ(desk.Run("play clean.json --out clean.png").exitCode, 0);
    return desk.Open("clean.png");
}

// Frames of a film or of numbered pictures.
class Frames {
public:
    Frames(const Desk& desk, const std::string& name) : m_desk(desk), m_name(name) {
        if (!IsNumbered()) m_film.emplace(desk.Path(name));
    }
    [[nodiscard]] std::int64_t Count() const {
        std::int64_t count = 0;
        if (m_film) return m_film->FrameCount();
        while (m_desk.Has(NameAt(count))) ++count;
        return count;
    }
    [[nodiscard]] Picture At(std::int64_t field) {
        return m_film ? m_film->ReadFrame(field) : m_desk.Open(NameAt(field));
    }

private:
    [[nodiscard]] bool IsNumbered() const { return m_name.ends_with("%05d.png"); }
    [[nodiscard]] std::string NameAt(std::int64_t field) const {
        const std::string digits = std::to_string(field);
        return m_name.substr(0, m_name.find('%')) + std::string(5 - digits.size(), '0') + digits + ".png";
    }

    const Desk& m_desk;
    std::string m_name;
    std::optional<FilmReader> m_film;
};

// Every pixel's alpha is a byte of it; how many are neither clear nor opaque.
std::size_t HalfCovered(const Picture& overlay) {
    std::size_t count = 0;
    for (std::size_t at = 3; at < overlay.rgba.size(); at += 4)
        count += overlay.rgba[at] > 25 && overlay.rgba[at] < 230 ? 1 : 0;
    return count;
}

std::size_t Covered(const Picture& overlay) {
    std::size_t count = 0;
    for (std::size_t at = 3; at < overlay.rgba.size(); at += 4) count += overlay.rgba[at] > 0 ? 1 : 0;
    return count;
}

}  // namespace

TEST_CASE("An overlay that was written lies over the picture as the rendered strokes do") {
    const Desk desk(TestCard());
    const Picture clean = CleanCard(desk);
    struct Way {
        std::string name;
        AlphaForm form;
    };
    for (const Way& way :
         {Way{"overlay.mov", AlphaForm::Premultiplied}, Way{"overlay.mov", AlphaForm::Straight},
          Way{"overlay.mkv", AlphaForm::Straight}, Way{"premultiplied.mkv", AlphaForm::Premultiplied},
          Way{"overlay%05d.png", AlphaForm::Premultiplied}, Way{"straight%05d.png", AlphaForm::Straight}}) {
        CAPTURE(way.name);
        CAPTURE(way.form == AlphaForm::Straight);
        const std::string straight = way.form == AlphaForm::Straight ? " --straight" : "";
        REQUIRE_EQ(desk.Run("play s.json --out out.mov --overlay " + way.name + straight).exitCode, 0);
        Frames rendered(desk, "out.mov");
        Frames overlay(desk, way.name);
        REQUIRE_EQ(rendered.Count(), cardFields);
        REQUIRE_EQ(overlay.Count(), cardFields);
        CHECK_EQ(Covered(overlay.At(0)), 0);
        for (std::int64_t field = 2; field < cardFields; field += 3)
            CHECK_LE(WorstDifference(LaidOver(overlay.At(field), clean, way.form), rendered.At(field)), rounding);
        CHECK_GT(HalfCovered(overlay.At(cardFields - 1)), 1000);
        CHECK_GT(Covered(overlay.At(cardFields - 1)), 3000);
    }
}

// The mixer's arithmetic: picture * (1 - key) + fill, or + fill * key where the fill is straight.
TEST_CASE("Fill and key lie over the picture as the rendered strokes do") {
    const Desk desk(TestCard());
    const Picture clean = CleanCard(desk);
    for (const AlphaForm form : {AlphaForm::Premultiplied, AlphaForm::Straight}) {
        CAPTURE(form == AlphaForm::Straight);
        const std::string straight = form == AlphaForm::Straight ? " --straight" : "";
        REQUIRE_EQ(desk.Run("play s.json --out out%05d.png --fill fill.mov --key key.mkv" + straight).exitCode, 0);
        Frames rendered(desk, "out%05d.png");
        Frames fill(desk, "fill.mov");
        Frames key(desk, "key.mkv");
        REQUIRE_EQ(fill.Count(), cardFields);
        REQUIRE_EQ(key.Count(), cardFields);
        for (const std::int64_t field : {12, 29}) {
            Picture strokes = fill.At(field);
            const Picture alpha = key.At(field);
            std::size_t coloured = 0;
            for (std::size_t at = 0; at < strokes.rgba.size(); at += 4) {
                coloured += alpha.rgba[at] == alpha.rgba[at + 1] && alpha.rgba[at] == alpha.rgba[at + 2] ? 0 : 1;
                strokes.rgba[at + 3] = alpha.rgba[at];
            }
            CHECK_EQ(coloured, 0);
            CHECK_LE(WorstDifference(LaidOver(strokes, clean, form), rendered.At(field)), rounding);
        }
    }
}

TEST_CASE("A lossy film of a session has its size, its fields and about its colours") {
    const Desk desk(TestCard());
    REQUIRE_EQ(desk.Run("play s.json --out out.mp4").exitCode, 0);
    REQUIRE_EQ(desk.Run("play s.json --out last.png").exitCode, 0);
    FilmReader film(desk.Path("out.mp4"));
    CHECK_EQ(film.Width(), 320);
    CHECK_EQ(film.Height(), 180);
    CHECK_EQ(film.FrameCount(), cardFields);
    CHECK_EQ(film.FramesPerSecond(), doctest::Approx(50).epsilon(1e-6));
    // The middles of the eight bars, and of the card's right stroke.
    const Picture last = desk.Open("last.png");
    const Picture read = film.ReadFrame(cardFields - 1);
    for (std::int32_t bar = 0; bar < 8; ++bar) {
        CAPTURE(bar);
        CHECK_LE(testing::Difference(read.At(bar * 40 + 28, 8), last.At(bar * 40 + 28, 8)), 12);
    }
    CHECK_LE(testing::Difference(read.At(290, 66), last.At(290, 66)), 40);  // soft all over
}

TEST_CASE("Numbered pictures are the same by --out and by --frames, and the film has them too") {
    const Desk desk(TestCard());
    REQUIRE_EQ(desk.Run("play s.json --out a%05d.png --frames b%05d.png").exitCode, 0);
    REQUIRE_EQ(desk.Run("play s.json --out c.mov --frames d%05d.png").exitCode, 0);
    Frames film(desk, "c.mov");
    for (const std::int64_t field : {0, 9, 29}) {
        const Picture picture = Frames(desk, "a%05d.png").At(field);
        CHECK(picture == Frames(desk, "b%05d.png").At(field));
        CHECK(picture == film.At(field));
        CHECK(picture == Frames(desk, "d%05d.png").At(field));
    }
    CHECK_EQ(Frames(desk, "a%05d.png").Count(), cardFields);
}

TEST_CASE("The overlay as one picture is the canvas, straight in any case") {
    const Desk desk(TestCard());
    REQUIRE_EQ(desk.Run("play s.json --overlay a.png").exitCode, 0);
    REQUIRE_EQ(desk.Run("play s.json --overlay b.png --straight").exitCode, 0);
    CHECK_EQ(desk.Open("a.png").width, 1024);
    CHECK(desk.Open("a.png") == desk.Open("b.png"));
}

TEST_CASE("Fill and key as one picture are those of the last field") {
    const Desk desk(TestCard());
    REQUIRE_EQ(desk.Run("play s.json --fill fill.png --key key.png").exitCode, 0);
    REQUIRE_EQ(desk.Run("play s.json --overlay overlay%05d.png").exitCode, 0);
    const Picture overlay = Frames(desk, "overlay%05d.png").At(cardFields - 1);
    const Picture fill = desk.Open("fill.png");
    const Picture key = desk.Open("key.png");
    std::size_t different = 0;
    for (std::size_t at = 0; at < overlay.rgba.size(); at += 4) {
        different += overlay.rgba[at] == fill.rgba[at] && overlay.rgba[at + 3] == key.rgba[at] ? 0 : 1;
        different += fill.rgba[at + 3] == 255 && key.rgba[at + 3] == 255 ? 0 : 1;
    }
    CHECK_EQ(different, 0);
}

TEST_CASE("Outputs that cannot be are refused before anything is played") {
    const Desk desk;
    CheckRefused(desk, "play s.json --overlay o.mp4",
                 "o.mp4: .mp4 has no alpha; the strokes alone need .png, .mov or .mkv, or else --fill and --key");
    CheckRefused(desk, "play s.json --overlay o.jpg",
                 "o.jpg: .jpg has no alpha; the strokes alone need .png, .mov or .mkv, or else --fill and --key");
    CheckRefused(desk, "play s.json --overlay o%03d.jpg",
                 "o%03d.jpg: .jpg has no alpha; the strokes alone need .png, .mov or .mkv, or else --fill and --key");
    CheckRefused(desk, "play s.json --out o.mp5",
                 "o.mp5: neither a picture nor a film ends in \".mp5\"; did you mean \".mp4\"?");
    CheckRefused(desk, "play s.json --fill o.mov",
                 "o.mov: --fill and --key are written as a pair; the other one is missing");
    CheckRefused(desk, "play s.json --key o.mov",
                 "o.mov: --fill and --key are written as a pair; the other one is missing");
    CheckRefused(desk, "play s.json --out o.mov --overlay ./o.mov", "./o.mov: two outputs have this name");
    CheckRefused(desk, "play s.json --out none/o.mov", "none/o.mov: cannot be written: there is no folder none");
    CheckRefused(desk, "play s.json --out f%d.png", "f%d.png: must have one number such as %05d in the file's name");
    CheckRefused(desk, "play s.json --frames f.mov", "f.mov: must have one number such as %05d in the file's name");
    const Desk plain(SessionWith("/containers/0", {{"size", {100, 100}}}));
    for (const std::string wanted : {"--overlay o.mov", "--fill o.mov --key k.mov"})
        CheckRefused(plain, "play s.json " + wanted,
                     "s.json: /containers: no container has a plug-in, so there is no overlay");
}

// The limit counts blocks of 512 or 1024 bytes; the films are larger than 8 of either.
TEST_CASE("A disk that is full ends a play with one clear line and no file") {
    const Desk desk(TestCard());
    for (const std::string name : {"out.mov", "out.mkv", "out.mp4", "out.webm", "out%05d.png"}) {
        CAPTURE(name);
        const std::ptrdiff_t entries = desk.Entries();
        const auto ended = desk.Run("play s.json --out " + name, KEL_PROGRAM, "ulimit -f 8 &&");
        CHECK_EQ(ended.exitCode, 2);
        CHECK_NE(ended.complaint.find("cannot be written: File too large\n"), std::string::npos);
        CHECK_EQ(desk.Entries(), entries);
    }
}

}  // namespace kel
