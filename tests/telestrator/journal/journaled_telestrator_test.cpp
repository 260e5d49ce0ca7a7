#include "telestrator/journal/journaled_telestrator.h"

#include <doctest/doctest.h>

#include <cstring>
#include <limits>

#include "chalkpane/base/random.h"
#include "tests/telestrator/journal/random_session.h"

namespace chalkpane {
namespace {

using testing::CanvasOf;
using testing::Draw;
using testing::DrawnSession;
using testing::PassField;
using testing::Pixels;
using testing::PixelsOf;
using testing::PlainCanvas;
using testing::SessionMaker;
using testing::SessionStroke;

// A telestrator that has drawn the session.
struct Drawn {
    explicit Drawn(const DrawnSession& session) {
        telestrator.Field({});
        for (const SessionStroke& stroke : session) Draw(telestrator, stroke);
    }
    [[nodiscard]] std::size_t Strokes() const { return telestrator.Drawing()->Strokes().size(); }

    JournaledTelestrator telestrator;
};

// Sessions whose strokes all leave ink, so that stroke k is the k-th of the session.
DrawnSession SessionWithInk(SessionMaker& maker, int strokes) {
    DrawnSession session;
    while (static_cast<int>(session.size()) < strokes) {
        const SessionStroke stroke = maker.Stroke();
        if (Drawn({stroke}).Strokes() == 1) session.push_back(stroke);
    }
    return session;
}

// Two telestrators that are driven alike. Notes whether their canvases were ever different after a field.
class Paired {
public:
    void Field(const TelestratorSettings& settings) {
        plain_.Field(settings);
        journaled_.Field(settings);
    }
    void Commit() {
        plain_.Commit();
        journaled_.Commit();
        const CanvasPixels left = plain_.canvasSurface->GetPixels();
        const CanvasPixels right = journaled_.Inner().canvasSurface->GetPixels();
        isSame_ = isSame_ && std::memcmp(left.bytes, right.bytes, left.byteSize) == 0;
    }
    void ApplyBrushMode(const TelestratorSettings& settings) {
        plain_.ApplyBrushMode(settings);
        journaled_.ApplyBrushMode(settings);
    }
    void Press(const TelestratorSettings& settings, const CanvasPosition& at) {
        CHECK_EQ(plain_.Press(settings, at), journaled_.Press(settings, at));
    }
    void Move(const TelestratorSettings& settings, const CanvasPosition& at) {
        CHECK_EQ(plain_.Move(settings, at), journaled_.Move(settings, at));
    }
    void Release(const TelestratorSettings& settings, const CanvasPosition& at) {
        CHECK_EQ(plain_.Release(settings, at), journaled_.Release(settings, at));
    }
    [[nodiscard]] bool IsSame() const { return isSame_; }

private:
    Telestrator plain_;
    JournaledTelestrator journaled_;
    bool isSame_ = true;
};

TEST_CASE("a journaled telestrator has the bytes of a plain one after every field") {
    for (const std::uint32_t seed : {1U, 2U, 3U}) {
        SessionMaker maker(seed);
        Paired both;
        for (const SessionStroke& stroke : maker.Session(12)) Draw(both, stroke);
        CAPTURE(seed);
        CHECK(both.IsSame());
    }
}

TEST_CASE("without one of its strokes a drawing has the bytes of the session without it") {
    SessionMaker maker(11);
    const DrawnSession session = SessionWithInk(maker, 9);
    for (std::size_t k = 0; k < session.size(); ++k) {
        Drawn drawn(session);
        DrawnSession without = session;
        without.erase(without.begin() + static_cast<std::ptrdiff_t>(k));
        CAPTURE(k);
        REQUIRE(drawn.telestrator.Remove(static_cast<std::uint32_t>(k + 1)));
        CHECK(CanvasOf(drawn.telestrator) == PlainCanvas(without));
        CHECK(PixelsOf(*drawn.telestrator.Inner().shapeSurface) == CanvasOf(drawn.telestrator));
    }
}

TEST_CASE("a moved stroke has the bytes of the session in which it was drawn there") {
    SessionMaker maker(12);
    DrawnSession session = SessionWithInk(maker, 7);
    Drawn drawn(session);
    for (std::size_t k = 0; k < session.size(); ++k) {
        const double right = maker.Real(-200, 200);
        const double down = maker.Real(-200, 200);
        for (auto& path : session[k].paths) {
            for (CanvasPosition& at : path) at = {at.x + right, at.y + down};
        }
        CAPTURE(k);
        REQUIRE(drawn.telestrator.MoveStroke(static_cast<std::uint32_t>(k + 1), right, down));
        CHECK(CanvasOf(drawn.telestrator) == PlainCanvas(session));
    }
}

TEST_CASE("a recoloured stroke has the bytes of the session in which it was drawn in that colour") {
    SessionMaker maker(13);
    DrawnSession session = SessionWithInk(maker, 7);
    Drawn drawn(session);
    for (std::size_t k = 0; k < session.size(); ++k) {
        const std::uint32_t colour = 0xFF000000U + static_cast<std::uint32_t>(maker.Number(0, 0xFFFFFF));
        const bool erases = session[k].settings.brushType == BrushType::Eraser;
        CAPTURE(k);
        CHECK_EQ(drawn.telestrator.Recolour(static_cast<std::uint32_t>(k + 1), colour), !erases);
        if (!erases) session[k].settings.brushColour = colour;
        CHECK(CanvasOf(drawn.telestrator) == PlainCanvas(session));
    }
}

TEST_CASE("undoing takes back stroke after stroke, beyond ten, and redoing brings each back") {
    SessionMaker maker(14);
    const DrawnSession session = SessionWithInk(maker, 13);
    JournaledTelestrator telestrator;
    telestrator.Field({});
    std::vector<Pixels> canvases = {CanvasOf(telestrator)};
    for (const SessionStroke& stroke : session) {
        Draw(telestrator, stroke);
        canvases.push_back(CanvasOf(telestrator));
    }
    for (std::size_t left = session.size(); left > 0; --left) {
        REQUIRE(telestrator.Undo());
        CHECK(CanvasOf(telestrator) == canvases[left - 1]);
    }
    CHECK_FALSE(telestrator.Undo());
    for (std::size_t there = 1; there <= session.size(); ++there) {
        REQUIRE(telestrator.Redo());
        CHECK(CanvasOf(telestrator) == canvases[there]);
    }
    CHECK_FALSE(telestrator.Redo());
}

TEST_CASE("ten undos in a row are those of the ring") {
    SessionMaker maker(15);
    DrawnSession session = SessionWithInk(maker, 12);
    Telestrator plain;
    for (SessionStroke& stroke : session) stroke.settings.maxUndos = 10;
    plain.Field(session.front().settings);
    for (const SessionStroke& stroke : session) Draw(plain, stroke);
    Drawn drawn(session);
    for (int i = 0; i < 10; ++i) {
        plain.RestoreUndoSnapshot();
        drawn.telestrator.Undo();
        CAPTURE(i);
        CHECK(CanvasOf(drawn.telestrator) == CanvasOf(plain));
    }
}

// After any edits the canvas is what the strokes make on a blank one.
TEST_CASE("random edits leave the bytes of the strokes that are there, and undoing them all those of the start") {
    for (const std::uint32_t seed : {21U}) {
        SessionMaker maker(seed);
        Drawn drawn(SessionWithInk(maker, 18));
        JournaledTelestrator& telestrator = drawn.telestrator;
        const Pixels start = CanvasOf(telestrator);
        std::vector<Pixels> canvases = {start};
        for (int i = 0; i < 30; ++i) {
            const auto number = static_cast<std::uint32_t>(maker.Number(1, 22));
            bool done = false;
            switch (maker.Number(0, 4)) {
                case 0:
                    done = telestrator.Remove(number);
                    break;
                case 1:
                    done = telestrator.MoveStroke(number, maker.Number(-99, 99), maker.Number(-99, 99));
                    break;
                case 2:
                    done = telestrator.Recolour(number, 0xFF20E0A0U);
                    break;
                case 3:
                    done = maker.Number(0, 9) == 0 && telestrator.Clear();
                    break;
                default:
                    if (canvases.size() > 1) {
                        CHECK(telestrator.Undo());
                        canvases.pop_back();
                        REQUIRE(CanvasOf(telestrator) == canvases.back());
                    }
                    break;
            }
            if (done) canvases.push_back(CanvasOf(telestrator));
            Image blank = Image::Colour(canvasSize, canvasSize, Depth::Eight, AlphaForm::Premultiplied);
            InkPainter painter;
            for (const InkDrawing::Stroke& stroke : telestrator.Drawing()->Strokes())
                painter.Paint(*stroke.ink, blank, blank);
            const Pixels wanted(blank.origin, blank.origin + blank.ByteSize());
            CAPTURE(seed);
            CAPTURE(i);
            REQUIRE(CanvasOf(telestrator) == wanted);
        }
        while (canvases.size() > 1) {
            REQUIRE(telestrator.Undo());
            canvases.pop_back();
            REQUIRE(CanvasOf(telestrator) == canvases.back());
        }
    }
}

TEST_CASE("an edit after undoing ends what could be redone") {
    SessionMaker maker(31);
    const DrawnSession session = SessionWithInk(maker, 5);
    Drawn drawn({session[0], session[1], session[2]});
    drawn.telestrator.Undo();
    drawn.telestrator.Undo();
    Draw(drawn.telestrator, session[3]);
    CHECK_FALSE(drawn.telestrator.Redo());
    CHECK(CanvasOf(drawn.telestrator) == PlainCanvas({session[0], session[3]}));
    // The fourth that was drawn keeps its number.
    CHECK(drawn.telestrator.Drawing()->Find(4) != nullptr);
    CHECK(drawn.telestrator.Drawing()->Find(2) == nullptr);
}

TEST_CASE("the dab that is an undo gesture takes back the edit before and leaves nothing") {
    SessionMaker maker(32);
    const DrawnSession session = SessionWithInk(maker, 2);
    for (const BrushType type : {BrushType::Colour, BrushType::Eraser}) {
        Drawn drawn(session);
        SessionStroke dab;
        dab.settings.recogniseShapes = true;
        dab.settings.shapeDelay = 2;
        dab.settings.brushType = type;
        dab.paths = {{{500, 500}, {506, 500}, {506, 500}, {507, 500}}};  // press, one point a width further, release
        Draw(drawn.telestrator, dab);
        CHECK(CanvasOf(drawn.telestrator) == PlainCanvas({session[0]}));
        CHECK(drawn.telestrator.Redo());
        CHECK(CanvasOf(drawn.telestrator) == PlainCanvas(session));
    }
}

TEST_CASE("an edit first finishes a line that waits, and is not made while the pointer is down") {
    TelestratorSettings settings;
    settings.recogniseShapes = true;
    JournaledTelestrator telestrator;
    telestrator.Field(settings);
    telestrator.Press(settings, {100, 100});
    for (int i = 1; i < 20; ++i) telestrator.Move(settings, {100.0 + 20 * i, 100});
    CHECK_FALSE(telestrator.Clear());
    CHECK_FALSE(telestrator.Undo());
    telestrator.Release(settings, {500, 100});
    CHECK(telestrator.Undo());
    CHECK(testing::IsBlank(*telestrator.Inner().canvasSurface));
    CHECK(telestrator.Redo());
    const SharedStroke stroke = telestrator.Drawing()->Find(1);
    REQUIRE(stroke != nullptr);
    CHECK_EQ(stroke->form, StrokeForm::Arrow);
}

TEST_CASE("a line whose recognition is switched off while it waits stays as it was drawn") {
    TelestratorSettings settings;
    settings.recogniseShapes = true;
    settings.shapeDelay = 3;
    JournaledTelestrator telestrator;
    telestrator.Field(settings);
    telestrator.Press(settings, {100, 100});
    telestrator.Release(settings, {300, 100});
    const Pixels drawn = CanvasOf(telestrator);
    settings.recogniseShapes = false;
    for (int i = 0; i < 5; ++i) PassField(telestrator, settings);
    CHECK(CanvasOf(telestrator) == drawn);
    CHECK(PixelsOf(*telestrator.Inner().shapeSurface) == drawn);
    CHECK(telestrator.Undo());
    CHECK(testing::IsBlank(*telestrator.Inner().canvasSurface));
}

TEST_CASE("movements and releases without a press, and presses at no position, do nothing") {
    const double nowhere = std::numeric_limits<double>::quiet_NaN();
    JournaledTelestrator telestrator;
    CHECK_FALSE(telestrator.Press({}, {10, 10}).IsValid());  // no canvas yet
    CHECK_FALSE(telestrator.Undo());
    telestrator.Field({});
    telestrator.Move({}, {100, 100});
    telestrator.Release({}, {100, 100});
    telestrator.Press({}, {nowhere, 5});
    telestrator.Release({}, {100, 100});
    CHECK(testing::IsBlank(*telestrator.Inner().canvasSurface));
    CHECK(telestrator.Drawing()->Strokes().empty());
    telestrator.Press({}, {100, 100});
    telestrator.Release({}, {nowhere, 5});
    REQUIRE_EQ(telestrator.Drawing()->Strokes().size(), 1);
    CHECK_EQ(telestrator.Drawing()->Strokes().front().ink->hand.back().event, HandEvent::Lift);
}

TEST_CASE("the change to show is that of the edits too") {
    JournaledTelestrator telestrator;
    telestrator.Field({});
    (void)telestrator.TakeChange();
    telestrator.Press({}, {100, 100});
    telestrator.Release({}, {300, 100});
    (void)telestrator.TakeChange();
    telestrator.Press({}, {800, 800});
    telestrator.Release({}, {810, 800});
    (void)telestrator.TakeChange();
    REQUIRE(telestrator.Remove(1));
    const Rect changed = telestrator.TakeChange().rect;
    CHECK(changed.Contains(Rect(95, 95, 305, 105)));
}

TEST_CASE("the nearest stroke to a place is the one whose ink is there, the later of two") {
    TelestratorSettings settings;
    settings.brushWidth = 5;
    JournaledTelestrator telestrator;
    telestrator.Field(settings);
    const auto line = [&](CanvasPosition from, CanvasPosition to) {
        telestrator.Press(settings, from);
        telestrator.Release(settings, to);
    };
    line({100, 100}, {300, 100});
    line({200, 50}, {200, 150});
    line({600, 600}, {700, 600});
    const InkDrawing& drawing = *telestrator.Drawing();
    CHECK(drawing.Nearest({200, 100}, 0) == 2);
    CHECK(drawing.Nearest({120, 104}, 0) == 1);
    CHECK(drawing.Nearest({650, 610}, 0) == std::nullopt);  // 10 from the line, 5 from its ink
    CHECK(drawing.Nearest({650, 610}, 5.001) == 3);
    telestrator.Remove(2);
    CHECK(drawing.Nearest({200, 100}, 0) == 1);
    telestrator.Clear();
    CHECK(drawing.Nearest({200, 100}, 2000) == std::nullopt);
}

TEST_CASE("no random number is drawn, so nothing depends on what drew some before") {
    SessionMaker maker(41);
    const DrawnSession session = maker.Session(6);
    SeedRandom(12345);
    const Drawn drawn(session);
    CHECK_EQ(RandomState(), 12345);
}

TEST_CASE("a recalled drawing lies over what is there, or in its place, as one edit") {
    SessionMaker maker(51);
    const DrawnSession session = SessionWithInk(maker, 6);
    const DrawnSession kept(session.begin(), session.begin() + 3);
    const DrawnSession present(session.begin() + 3, session.end());
    std::vector<SharedStroke> strokes;
    for (const InkDrawing::Stroke& stroke : Drawn(kept).telestrator.Drawing()->Strokes()) strokes.push_back(stroke.ink);
    Drawn drawn(present);
    REQUIRE(drawn.telestrator.Insert(strokes, InkDrawing::Recall::InPlace));
    CHECK(CanvasOf(drawn.telestrator) == PlainCanvas(kept));
    REQUIRE(drawn.telestrator.Undo());
    CHECK(CanvasOf(drawn.telestrator) == PlainCanvas(present));
    REQUIRE(drawn.telestrator.Insert(strokes, InkDrawing::Recall::Over));
    DrawnSession both = present;
    both.insert(both.end(), kept.begin(), kept.end());
    CHECK(CanvasOf(drawn.telestrator) == PlainCanvas(both));
}

}  // namespace
}  // namespace chalkpane
