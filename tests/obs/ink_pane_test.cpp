#include "obs/ink_pane.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

using chalkpane::CanvasPosition;
using chalkpane::canvasSize;
using chalkpane::Rect;
using chalkpane::obs::InkPane;
using chalkpane::obs::PaneAction;
using chalkpane::obs::PanelValues;
using chalkpane::obs::PanePlace;
using chalkpane::obs::RegisteredPanel;

namespace {

const RegisteredPanel& ThePanel() {
    static const RegisteredPanel panel;
    return panel;
}

PanelValues With(const std::string& name, const kel::ParameterValue& value, PanelValues values) {
    const auto& parameters = ThePanel().Registration().parameters;
    const auto found = std::ranges::find(parameters, name, &kel::Parameter::name);
    REQUIRE(found != parameters.end());
    values[static_cast<std::size_t>(found - parameters.begin())] = value;
    return values;
}

// Strokes that stay as they are drawn.
PanelValues Plain() { return With("RecoShapes", 0, ThePanel().Defaults()); }

// What a viewer has who is shown every change.
struct Viewer {
    std::vector<std::byte> canvas = std::vector<std::byte>(std::size_t{canvasSize} * canvasSize * 4);
    Rect last;
    int changes = 0;

    void Look(InkPane& pane) {
        pane.TakeChange([&](const Rect& changed, std::span<const std::byte> all) {
            ++changes;
            last = changed;
            for (std::int32_t y = changed.y0; y <= changed.y1; ++y) {
                const auto from = (static_cast<std::size_t>(y) * canvasSize + static_cast<std::size_t>(changed.x0)) * 4;
                const auto length = static_cast<std::size_t>(changed.Width()) * 4;
                std::copy_n(all.begin() + static_cast<std::ptrdiff_t>(from), length,
                            canvas.begin() + static_cast<std::ptrdiff_t>(from));
            }
        });
    }
    // As it is seen, y from the top.
    [[nodiscard]] int Channel(std::int32_t x, std::int32_t y, std::size_t channel) const {
        const auto place = static_cast<std::size_t>(canvasSize - 1 - y) * canvasSize + static_cast<std::size_t>(x);
        return std::to_integer<int>(canvas[place * 4 + channel]);
    }
    [[nodiscard]] int Alpha(std::int32_t x, std::int32_t y) const { return Channel(x, y, 3); }
    // The color there, which covers nearly all: it is multiplied by alpha, truncated once or twice.
    [[nodiscard]] bool Has(const kel::ColourBytes& colour, std::int32_t x, std::int32_t y) const {
        if (Alpha(x, y) < 230) return false;
        for (std::size_t channel = 0; channel < 3; ++channel)
            if (std::abs(Channel(x, y, channel) - colour[channel] * Alpha(x, y) / 255) > 2) return false;
        return true;
    }
    [[nodiscard]] bool IsBlank() const {
        return std::ranges::all_of(canvas, [](std::byte byte) { return byte == std::byte{0}; });
    }
};

// A pane of canvas pixels.
struct Pane {
    InkPane pane{ThePanel()};
    Viewer viewer;

    explicit Pane(const PanelValues& values = Plain()) {
        pane.SetPlace({canvasSize, canvasSize});
        pane.SetValues(values);
    }
    void Line(const CanvasPosition& from, const CanvasPosition& to) {
        pane.Press(from.x, from.y);
        for (const double part : {0.25, 0.5, 0.75})
            pane.Move(from.x + part * (to.x - from.x), from.y + part * (to.y - from.y));
        pane.Release(to.x, to.y);
    }
    Viewer& Look() {
        pane.PassField();
        viewer.Look(pane);
        return viewer;
    }
};

// What a pane shows that goes on from this text.
Viewer ShownFrom(const std::string& text) {
    Pane later;
    CHECK_EQ(later.pane.LoadInk(text), "");
    return later.Look();
}

constexpr kel::ColourBytes yellow{255, 214, 10, 255};
constexpr kel::ColourBytes red{255, 0, 0, 255};

}  // namespace

TEST_CASE("A stroke is in the pen's color, premultiplied, and only what changed is shown") {
    Pane pane;
    CHECK(pane.Look().IsBlank());
    CHECK_EQ(pane.viewer.changes, 1);  // all of the blank canvas
    pane.Line({100, 300}, {400, 300});
    CHECK(pane.Look().Has(yellow, 250, 300));
    CHECK_EQ(pane.viewer.changes, 2);
    CHECK(pane.viewer.last.Width() < 330);  // 300, and a radius of 5 at both ends with its soft edge
    CHECK(pane.viewer.last.Height() < 40);
    for (std::int32_t y = 280; y < 320; ++y) {
        for (std::size_t channel = 0; channel < 3; ++channel)
            CHECK(pane.viewer.Channel(250, y, channel) <= pane.viewer.Alpha(250, y));
    }
    pane.Look();
    CHECK_EQ(pane.viewer.changes, 2);
}

TEST_CASE("The canvas lies as a square around the middle of the source") {
    // 1920 wide: a canvas pixel is 1.875 source pixels, and the square begins 420 pixels above the source.
    const PanePlace wide{1920, 1080};
    CHECK_EQ(wide.ToCanvas(0, 0).x, 0);
    CHECK_EQ(wide.ToCanvas(0, 0).y, doctest::Approx(224));  // 420 / 1.875
    CHECK_EQ(wide.ToCanvas(1920, 1080).x, 1024);
    CHECK_EQ(wide.ToCanvas(960, 540).y, 512);
    CHECK_EQ(wide.SeenPart().left, 0);
    CHECK_EQ(wide.SeenPart().top, 0.21875);  // 420 / 1920
    CHECK_EQ(wide.SeenPart().bottom, 0.78125);
    const PanePlace high{100, 400};
    CHECK_EQ(high.SeenPart().left, 0.375);
    CHECK_EQ(high.SeenPart().right, 0.625);
    CHECK_EQ(high.ToCanvas(50, 0).x, 512);
    CHECK_EQ(PanePlace{0, 0}.Side(), 1);
}

TEST_CASE("Drawing follows the pixels of the source") {
    InkPane pane(ThePanel());
    pane.SetValues(Plain());
    pane.SetPlace({1920, 1080});
    pane.Press(600, 540);
    pane.Move(960, 540);
    pane.Release(1320, 540);
    pane.PassField();
    Viewer viewer;
    viewer.Look(pane);
    CHECK(viewer.Has(yellow, 512, 512));
    CHECK_EQ(viewer.Alpha(250, 512), 0);  // source pixel 469
}

TEST_CASE("Undo, redo and clear are done in their order with strokes") {
    Pane pane;
    pane.Line({100, 100}, {300, 100});
    pane.Line({100, 200}, {300, 200});
    pane.pane.Push(PaneAction::Undo);
    pane.Line({100, 300}, {300, 300});
    pane.Look();
    CHECK(pane.viewer.Has(yellow, 200, 100));
    CHECK_EQ(pane.viewer.Alpha(200, 200), 0);
    CHECK(pane.viewer.Has(yellow, 200, 300));
    pane.pane.Push(PaneAction::Clear);
    CHECK(pane.Look().IsBlank());
    pane.pane.Push(PaneAction::Undo);
    CHECK(pane.Look().Has(yellow, 200, 300));
    pane.pane.Push(PaneAction::Redo);
    CHECK(pane.Look().IsBlank());
}

TEST_CASE("A color set between two strokes is the second one's") {
    Pane pane;
    pane.Line({100, 100}, {300, 100});
    pane.pane.SetValues(With("BrushColor", red, Plain()));
    pane.Line({100, 200}, {300, 200});
    pane.Look();
    CHECK(pane.viewer.Has(yellow, 200, 100));
    CHECK(pane.viewer.Has(red, 200, 200));
}

TEST_CASE("The eraser takes away in the field in which it is chosen, and what is saved knows") {
    Pane pane;
    pane.Line({100, 500}, {900, 500});
    pane.pane.SetValues(With("BrushType", 1, Plain()));
    pane.Line({500, 400}, {500, 600});
    pane.pane.SetValues(Plain());
    pane.Line({100, 600}, {400, 600});
    CHECK(pane.Look().Alpha(500, 500) < 20);
    CHECK(pane.viewer.Has(yellow, 300, 500));
    CHECK(pane.viewer.Has(yellow, 300, 600));
    CHECK_EQ(ShownFrom(pane.pane.InkText()).canvas, pane.viewer.canvas);
}

TEST_CASE("A line becomes its clean shape some fields after it was drawn") {
    Pane pane(With("ShapeDelay", 3, ThePanel().Defaults()));
    pane.Line({200, 500}, {800, 500});
    pane.Look();
    CHECK(pane.pane.InkText().find(" arrow ") != std::string::npos);  // as it would be saved now
    for (int field = 0; field < 4; ++field) pane.Look();
    const std::string text = pane.pane.InkText();
    CHECK(text.find(" arrow ") != std::string::npos);
    CHECK_EQ(ShownFrom(text).canvas, pane.viewer.canvas);
}

TEST_CASE("Saved ink comes back byte for byte, and can be undone") {
    Pane pane;
    CHECK_EQ(pane.pane.InkText(), "");
    pane.Line({100, 100}, {900, 700});
    pane.Line({100, 700}, {900, 100});
    pane.Look();
    const std::string text = pane.pane.InkText();
    Pane later;
    CHECK_EQ(later.pane.LoadInk(text), "");
    CHECK_EQ(later.Look().canvas, pane.viewer.canvas);
    CHECK_EQ(later.pane.InkText(), text);
    pane.pane.Push(PaneAction::Undo);
    later.pane.Push(PaneAction::Undo);
    CHECK_EQ(later.Look().canvas, pane.Look().canvas);
    CHECK_FALSE(later.viewer.IsBlank());
}

TEST_CASE("What is saved in the middle of a stroke has it up to the pen, and the stroke goes on") {
    Pane pane;
    pane.Line({100, 100}, {300, 100});
    pane.pane.Press(100, 500);
    pane.pane.Move(300, 500);
    pane.pane.Move(500, 500);
    const Viewer shown = ShownFrom(pane.pane.InkText());
    CHECK(shown.Has(yellow, 200, 100));
    CHECK(shown.Has(yellow, 400, 500));
    pane.pane.SetValues(With("BrushColor", red, Plain()));
    pane.pane.Move(600, 500);
    pane.pane.Move(700, 500);
    pane.pane.Move(800, 500);
    CHECK(ShownFrom(pane.pane.InkText()).Has(red, 650, 500));
    pane.pane.Release(900, 500);
    CHECK(pane.Look().Has(red, 800, 500));
    CHECK_EQ(ShownFrom(pane.pane.InkText()).canvas, pane.viewer.canvas);
    CHECK_EQ(std::ranges::count(pane.pane.InkText(), '\n'), 3);  // the header and two strokes
}

TEST_CASE("A stroke goes on through a change of size, and where the pointer is gone the pen leaves") {
    Pane pane;
    pane.pane.Press(100, 500);
    pane.pane.Move(300, 500);
    pane.pane.SetPlace({2 * canvasSize, 2 * canvasSize});
    pane.pane.Move(1200, 1000);
    pane.pane.Lift();
    pane.pane.Move(1200, 200);
    CHECK(pane.Look().Has(yellow, 500, 500));
    CHECK_EQ(pane.viewer.Alpha(600, 300), 0);
}

TEST_CASE("Presses of a pen that is down, and all else of one that is up, draw nothing") {
    Pane pane;
    pane.pane.Move(100, 100);
    pane.pane.Release(300, 100);
    pane.pane.Lift();
    CHECK(pane.Look().IsBlank());
    pane.pane.Press(100, 100);
    pane.pane.Press(900, 900);
    pane.pane.Release(300, 100);
    pane.Look();
    CHECK_EQ(pane.viewer.Alpha(900, 900), 0);
    CHECK(pane.viewer.Has(yellow, 200, 100));
}

TEST_CASE("A telestrator that is not active draws nothing, and ends the stroke in which it becomes so") {
    Pane pane(With("Active", 0, Plain()));
    pane.Line({100, 100}, {300, 100});
    CHECK(pane.Look().IsBlank());
    pane.pane.SetValues(Plain());
    pane.pane.Press(100, 200);
    pane.pane.Move(200, 200);
    pane.pane.SetValues(With("Active", 0, Plain()));
    pane.pane.Move(600, 200);
    pane.Look();
    CHECK(pane.viewer.Has(yellow, 150, 200));
    CHECK_EQ(pane.viewer.Alpha(400, 200), 0);
}

TEST_CASE("Ink that cannot be read is told of, and kept until something is drawn") {
    Pane pane;
    CHECK_NE(pane.pane.LoadInk("chalkpane-journal 1\n0 scribble\n"), "");
    CHECK_EQ(pane.pane.InkText(), "chalkpane-journal 1\n0 scribble\n");
    pane.Line({100, 100}, {300, 100});
    CHECK(ShownFrom(pane.pane.InkText()).Has(yellow, 200, 100));
}

TEST_CASE("Positions that are nowhere draw nothing") {
    Pane pane;
    pane.pane.Press(1e300, -1e300);
    pane.pane.Move(100, 100);
    pane.pane.Release(1e300, 100);
    CHECK(pane.Look().IsBlank());
}

TEST_CASE("Operator, frames and saving come from threads of their own") {
    Pane pane;
    std::thread operating([&] {
        for (int i = 0; i < 20; ++i) {
            pane.Line({100, 10.0 + 40 * i}, {300, 10.0 + 40 * i});
            pane.pane.SetValues(Plain());
        }
    });
    std::thread saving([&] {
        for (int i = 0; i < 5; ++i) (void)pane.pane.InkText();
    });
    for (int i = 0; i < 20; ++i) pane.Look();
    operating.join();
    saving.join();
    pane.Look();
    for (int i = 0; i < 20; ++i) CHECK(pane.viewer.Has(yellow, 200, 10 + 40 * i));
}
