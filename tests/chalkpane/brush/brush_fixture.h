#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/brush/sources/brush_source.h"
#include "chalkpane/filters/filter_class.h"
#include "chalkpane/image/image.h"

namespace chalkpane {

inline ParameterValue& ValueOf(BasicBrush& brush, BrushParameter code) { return *brush.Value(code); }
inline ParameterValue& SourceValueOf(BasicBrush& brush, SourceParameter code) { return *brush.SourceValue(code); }

constexpr Colour whitePaint{16383, 16383, 16383};

// A canvas of 8 bits as the plug-in has it.
inline Image NewCanvas(std::int32_t width = 64, std::int32_t height = 64, Depth depth = Depth::Eight) {
    return Image::Colour(width, height, depth, AlphaForm::Premultiplied);
}

// A white brush whose dab is one whole pixel: the pixel that the dab's place lies in. On an empty canvas such a dab
// leaves (255 * w) >> 16 in all channels, w being 256 * op: 254 at full opacity, where op is 255.
inline void MakePixelBrush(BasicBrush& brush, Image& canvas) {
    brush.SetTarget(&canvas);
    SourceValueOf(brush, SourceParameter::ProfileName).setString("OnePixel");
    brush.Update();
    brush.SetColour(whitePaint);
}

inline int Alpha(const Image& canvas, std::int32_t x, std::int32_t y) { return canvas.GetPixel8(x, y).alpha; }

inline int PaintedPixels(const Image& canvas) {
    int count = 0;
    for (std::int32_t y = canvas.y0; y <= canvas.y1; ++y)
        for (std::int32_t x = canvas.x0; x <= canvas.x1; ++x) count += Alpha(canvas, x, y) != 0 ? 1 : 0;
    return count;
}

// Stands in a brush's chain, changes nothing and keeps the place of every dab.
class DabRecorder final : public FilterClass<DabRecorder, Filter> {
public:
    static constexpr FilterIdentity identity{"Recorder", "Recorder", ""};
    static constexpr auto Parameters() { return std::array<ParameterRow<DabRecorder>, 0>{}; }

    void Apply(const Image& source, std::unique_ptr<Image>& /*result*/, bool /*fast*/, const Rect* /*region*/,
               bool /*expand*/) override {
        dabs.push_back(source);
    }
    void Advance(const Image* image, std::int32_t frame, std::int32_t /*c*/, std::int32_t /*d*/, std::int32_t /*e*/,
                 std::int32_t /*f*/) override {
        ++advances;
        advancedImage = image;
        advancedFrame = frame;
    }

    std::vector<Rect> dabs;
    int advances = 0;
    const Image* advancedImage = nullptr;
    std::int32_t advancedFrame = -1;
};

// The recorder belongs to the brush.
inline DabRecorder& Record(BasicBrush& brush) {
    auto recorder = std::make_unique<DabRecorder>();
    DabRecorder& recorded = *recorder;
    brush.Filters().push_back(std::move(recorder));
    return recorded;
}

}  // namespace chalkpane
