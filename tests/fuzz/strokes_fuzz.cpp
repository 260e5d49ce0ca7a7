#include <algorithm>

#include "apps/chalkpane/strokes/stroke_painter.h"
#include "apps/chalkpane/strokes/strokes_file.h"
#include "tests/fuzz/fuzz_input.h"

// A file of strokes, painted where canvas and strokes are small.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace chalkpane::app;
    fuzz::TakeOrRefuse([&] {
        constexpr std::int32_t largestSide = 128;
        StrokesFile file = ParseStrokes(fuzz::TextOf(bytes, size), "/nonexistent/fuzz.json");
        file.canvas.width = std::min(file.canvas.width, largestSide);
        file.canvas.height = std::min(file.canvas.height, largestSide);
        if (PointCount(file) > 20) return;
        for (Stroke& stroke : file.strokes)
            for (auto& point : stroke.points) {
                point.x = std::clamp(point.x, -200.0, 200.0);
                point.y = std::clamp(point.y, -200.0, 200.0);
            }
        const auto canvas = MakeCanvas(file, {}, std::nullopt);
        PictureFiles pictures(canvas->GetDepth());
        PaintStrokes(file, *canvas, pictures, {});
    });
    return 0;
}
