#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "chalkpane/filters/filter.h"

namespace chalkpane {

// A filter that moves pixels by an inverse map: for each pixel of the result it says where in the source to read.
//
// `MapPoint` is called from several threads and must use only what `Prepare` built. Masks are moved like pictures.
class DistortFilter : public Filter {
public:
    // The result has the bounds of `MapRect`, cut down to `region`. `fast` takes the nearest pixel instead of
    // interpolating. A region that misses the source gives a blank image of the source's bounds.
    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;

    // Bounds of the result for a source's.
    virtual void MapRect(Rect& out, const Rect& rect, bool expand) const;
    // Where the result's pixel (x, y) comes from, in plane coordinates of the source. Any float will do.
    virtual void MapPoint(std::int32_t x, std::int32_t y, float& sourceX, float& sourceY) const = 0;
    // The same for `sourceX.size()` pixels of row y from x on; by default by `MapPoint`.
    virtual void MapRow(std::int32_t x, std::int32_t y, std::span<float> sourceX, std::span<float> sourceY) const;
    // Builds tables.
    virtual void Prepare() {}
    // Called once before the rows, and once after them.
    virtual void BeginRun(const Image& source);
    virtual void EndRun() {}
    // True: only `first` .. `last` of row y is moved; the rest is copied from the same place of the source. An empty
    // span has first above last.
    virtual bool RowSpan(std::int32_t y, std::int32_t& first, std::int32_t& last) const;

    [[nodiscard]] bool MovesPixels() const override { return true; }
    [[nodiscard]] bool FiltersMask() const override { return true; }

protected:
    DistortFilter() = default;
    DistortFilter(const DistortFilter&) = default;

    // KEEP: the fourth choice of an enumeration arrives as 3 and is stored as the mode's own number.
    void SettleEdgeMode() {
        if (m_edgeMode == 3) m_edgeMode = edgeClamp;
    }

    std::int32_t m_edgeMode = 0;  // an EdgeMode
};

}  // namespace chalkpane
