#include "apps/chalkpane/presets/preset_video.h"

#include <utility>
#include <vector>

#include "apps/chalkpane/filtering/filter_run.h"
#include "apps/chalkpane/filtering/filter_texts.h"
#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/strokes/preset_brush.h"
#include "apps/chalkpane/strokes/stroke_painter.h"
#include "apps/chalkpane/strokes/strokes_memory.h"

namespace chalkpane::app {
namespace {

class FilterVideo final : public PresetVideo {
public:
    FilterVideo(Preset preset, VideoSource source, const FrameRateClock& clock)
        : m_filters(std::move(preset.filters)),
          m_depth(source.depth),
          m_video(std::move(source.video)),
          m_picture(m_video ? nullptr : ReadImage(source.file, source.depth, AlphaForm::Straight)),
          m_clock(clock) {
        std::erase_if(m_filters, [](const auto& filter) { return !filter->m_active; });
    }

    std::unique_ptr<Image> Make(std::int32_t frame) override {
        for (const auto& filter : m_filters) TakeValues(*filter);
        return RunFilters(m_filters, SourceOf(frame), {.frame = frame, .time = m_clock.frameToTime(frame)});
    }

private:
    // Its own copy of the picture: what comes out without any filter is the caller's to change.
    std::unique_ptr<Image> SourceOf(std::int32_t frame) {
        return m_video ? ImageOf(m_video->ReadFrame(frame), m_depth, AlphaForm::Straight) : m_picture->Clone();
    }

    std::vector<std::unique_ptr<Filter>> m_filters;
    std::optional<Depth> m_depth;
    std::unique_ptr<kel::VideoReader> m_video;
    std::unique_ptr<Image> m_picture;
    const FrameRateClock& m_clock;
};

class StrokeVideo final : public PresetVideo {
public:
    StrokeVideo(Preset preset, const VideoSource& source)
        : m_brush(std::move(preset), source.presetFile.string()),
          m_memory(source.memory, source.file),
          m_strokes(ReadStrokes(source.file)),
          m_canvas(MakeCanvas(Claimed(m_strokes, source), {}, source.depth)),
          m_pictures(m_canvas->GetDepth(), [this, before = source.beforeReading](const auto& picture) {
              if (before) before(picture);
              m_memory.CountPicture(picture);
          }) {
        SettleLattice();
        m_brush.ReadPictures(m_pictures);
    }

    std::unique_ptr<Image> Make(std::int32_t frame) override {
        auto canvas = m_canvas->Clone();
        m_brush.TakeFrame(m_strokes, *canvas, frame);
        PaintOptions options;
        options.frame = frame;
        options.brush = &m_brush.Brush();
        PaintStrokes(m_strokes, *canvas, m_pictures, options);
        return canvas;
    }

private:
    const StrokesFile& Claimed(const StrokesFile& strokes, const VideoSource& source) {
        if (source.beforeReading && !strokes.canvas.picture.empty()) source.beforeReading(strokes.canvas.picture);
        m_memory.Count(strokes, {}, source.depth);
        return strokes;
    }

    PresetBrush m_brush;
    StrokesMemory m_memory;
    StrokesFile m_strokes;
    std::unique_ptr<Image> m_canvas;  // before the first stroke
    PictureFiles m_pictures;
};

}  // namespace

std::unique_ptr<PresetVideo> MakeVideo(Preset preset, VideoSource source, const FrameRateClock& clock) {
    if (preset.kind == PresetKind::Brush) return std::make_unique<StrokeVideo>(std::move(preset), source);
    return std::make_unique<FilterVideo>(std::move(preset), std::move(source), clock);
}

}  // namespace chalkpane::app
