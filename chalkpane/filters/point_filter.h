#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "chalkpane/filters/filter.h"

namespace chalkpane {

// A filter that looks at one pixel at a time.
//
// It gives `ProcessRow8` and `ProcessRow16`, which rewrite a span of pixels in place, or `ProcessPixel` alone. Colour
// comes to them without its alpha, whatever the image's flag says, and is premultiplied again behind them. Row
// operations run on several threads and must see the filter as read only; what they need is made in `Prepare`.
class PointFilter : public Filter {
public:
    // The result has the work rectangle's bounds: those of the source, cut down to `region`. A region that misses the
    // source gives a blank image of the source's bounds. `fast` and `expand` mean nothing here.
    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;

    // Pixels firstX .. lastX of row y, in image coordinates: four channels a pixel, blue, green, red, alpha.
    virtual void ProcessRow16(std::int32_t firstX, std::int32_t lastX, std::int32_t y, std::span<std::uint16_t> pixels);
    virtual void ProcessRow8(std::int32_t firstX, std::int32_t lastX, std::int32_t y, std::span<std::uint8_t> pixels);
    // The same with the one channel of a mask. They do nothing: a point filter leaves masks as they are.
    virtual void ProcessMaskRow16(std::int32_t firstX, std::int32_t lastX, std::int32_t y,
                                  std::span<std::uint16_t> pixels);
    virtual void ProcessMaskRow8(std::int32_t firstX, std::int32_t lastX, std::int32_t y,
                                 std::span<std::uint8_t> pixels);
    // Builds look-ups.
    virtual void Prepare() {}
    // Called once before the rows, and once after them.
    virtual void BeginRun(const Image& source);
    virtual void EndRun() {}
    // False: the rows are called in ascending order on the calling thread.
    [[nodiscard]] virtual bool CanRunInParallel() const { return true; }
    // Channels in the scale 0 to 255 at either depth; what leaves it is clamped, and NaN becomes 0.
    virtual void ProcessPixel(std::int32_t x, std::int32_t y, float& a, float& r, float& g, float& b);
    // True: only `first` .. `last` of row y is to be processed; the rest is copied. An empty span has first above last.
    virtual bool RowSpan(std::int32_t y, std::int32_t& first, std::int32_t& last) const;

protected:
    PointFilter() = default;
    PointFilter(const PointFilter&) = default;
};

}  // namespace chalkpane
