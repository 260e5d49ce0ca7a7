#include "apps/chalkpane/strokes/stroke_painter.h"

#include <algorithm>
#include <numeric>

#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/strokes/brush_builder.h"
#include "apps/chalkpane/strokes/stroke_work.h"
#include "chalkpane/base/random.h"
#include "chalkpane/brush/sources/dab_colour.h"
#include "cli/error.h"

namespace chalkpane::app {
namespace {

// Of a channel's full scale.
std::uint16_t AlphaOf(double alpha, Depth depth) {
    const std::int32_t full = depth == Depth::Eight ? PixelFormat8::fullScale : PixelFormat14::fullScale;
    return static_cast<std::uint16_t>(alpha * full + 0.5);
}

std::unique_ptr<Image> FilledCanvas(const CanvasDescription& description, Depth depth) {
    RequireImageSize(description.width, description.height, depth, description.place);
    auto canvas =
        std::make_unique<Image>(Image::Colour(description.width, description.height, depth, AlphaForm::Straight));
    const auto word = [depth](std::uint16_t channel) -> std::uint16_t {
        return depth == Depth::Eight ? Narrow(channel) : channel;
    };
    const Colour& colour = description.colour;
    FillWithPixel(*canvas,
                  {word(colour.blue), word(colour.green), word(colour.red), AlphaOf(description.alpha, depth)});
    SetAlphaForm(*canvas, AlphaForm::Premultiplied);
    return canvas;
}

std::unique_ptr<Image> ReadCanvas(const std::filesystem::path& picture, std::optional<Depth> depth,
                                  const std::string& place) {
    try {
        return ReadImage(picture, depth, AlphaForm::Premultiplied);
    } catch (const cli::Error& error) {
        if (place.empty()) throw;
        throw cli::Error(place, {}, error.what());
    }
}

// The brush of one stroke after another.
class BrushInHand {
public:
    BrushInHand(const StrokesFile& file, const BrushScene& scene, BasicBrush* given)
        : m_file(file), m_scene(scene), m_brush(given) {}

    BasicBrush& TakeFor(const Stroke& stroke) {
        const BrushDescription& description = m_file.brushes[stroke.brush];
        if (m_index == stroke.brush) {
            RefreshBrush(*m_brush, description, m_scene);
        } else {
            if (m_brush == nullptr || m_own) {
                m_own = MakeBrush(description, m_scene);
                m_brush = m_own.get();
            }
            PrepareBrush(*m_brush, description, m_scene);
            m_index = stroke.brush;
            m_pace = PaceOf(*m_brush, m_scene.canvas.GetDepth());
            m_work.CountBrush(m_pace, stroke.place);
        }
        m_work.CountStroke(stroke.points, m_pace, stroke.place);
        return *m_brush;
    }

private:
    const StrokesFile& m_file;
    BrushScene m_scene;
    BasicBrush* m_brush;                // in hand; null before the first
    std::unique_ptr<BasicBrush> m_own;  // null while the brush is a given one
    std::size_t m_index = SIZE_MAX;     // of the description that the brush was prepared for
    BrushPace m_pace;
    WorkLimit m_work;
};

}  // namespace

std::unique_ptr<Image> MakeCanvas(const StrokesFile& file, const std::filesystem::path& picture,
                                  std::optional<Depth> depth) {
    if (!depth) depth = file.depth;
    if (!picture.empty()) return ReadCanvas(picture, depth, {});
    if (!file.canvas.picture.empty()) return ReadCanvas(file.canvas.picture, depth, file.canvas.place);
    return FilledCanvas(file.canvas, depth.value_or(Depth::Eight));
}

std::int64_t PointCount(const StrokesFile& file) {
    return std::accumulate(file.strokes.begin(), file.strokes.end(), std::int64_t{0},
                           [](std::int64_t count, const Stroke& stroke) {
                               return count + static_cast<std::int64_t>(stroke.points.size());
                           });
}

void PaintStroke(const Stroke& stroke, BasicBrush& brush, const Image& canvas, const std::function<void()>& painted) {
    // Files count from the top, the engine's plane from the bottom.
    const auto placed = [&canvas](const StrokePoint& point) {
        return StrokePoint{canvas.x0 + point.x, canvas.y1 + 1.0 - point.y, point.pressure};
    };
    bool isFirst = true;
    for (const StrokePoint& point : stroke.points) {
        const auto [x, y, pressure] = placed(point);
        if (isFirst)
            brush.BeginStroke(x, y, pressure);
        else
            brush.ContinueStroke(x, y, pressure);
        isFirst = false;
        if (painted) painted();
    }
    if (isFirst) return;
    const auto [x, y, pressure] = placed(stroke.points.back());
    brush.EndStroke(x, y, pressure);
}

void PaintStrokes(const StrokesFile& file, Image& canvas, PictureFiles& pictures, const PaintOptions& options) {
    for (const BrushDescription& brush : file.brushes) ReadPictures(brush, pictures);
    SeedRandom(file.seed);
    BrushInHand hand(file, {canvas, pictures, options.frame}, options.brush);
    std::int64_t points = 0;
    std::function<void()> painted;
    if (options.progress) painted = [&] { options.progress(++points); };
    for (const Stroke& stroke : file.strokes) {
        BasicBrush& brush = hand.TakeFor(stroke);
        if (stroke.seed) SeedRandom(*stroke.seed);
        PaintStroke(stroke, brush, canvas, painted);
    }
}

}  // namespace chalkpane::app
