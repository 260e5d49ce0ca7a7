#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/brush/sources/brush_source.h"

namespace chalkpane {

// Dabs that are a picture, or one of the frames that lie side by side in it, row by row from the top left.
//
// Rows and columns that leave no pixels to a frame leave no dab. A picture beyond what a transformer takes counts as
// none, and so does a file that could not be read; the size is then 20.
class CutoutBrushSource final : public BrushSource {
public:
    CutoutBrushSource(const FileName& cutoutFile, Depth depth);
    // Shares the pixels where the depth is the same.
    CutoutBrushSource(const Image& cutout, Depth depth);

    bool MakeDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                 std::unique_ptr<Image>& maskOut) override;
    // KEEP: the whole picture's mask, whatever the frames.
    [[nodiscard]] std::unique_ptr<Image> MakePlainMask(double x, double y) override;
    // The longer side of a frame.
    [[nodiscard]] double GetSize() const override;
    void GetDabRect(Rect& out) const override;
    [[nodiscard]] std::unique_ptr<Image> GetMask(double /*x*/, double /*y*/, double /*angle*/) override {
        return nullptr;
    }
    void Prepare(std::int32_t /*margin*/, GraphValue* /*graph*/, const Matrix3& newMatrix) override {
        matrix = newMatrix;
    }

    [[nodiscard]] const Matrix3& PositionMatrix() const { return matrix; }

private:
    // The cells of the picture.
    struct Grid {
        std::int32_t rows;
        std::int32_t columns;
        std::int32_t width;  // of a cell, pixels
        std::int32_t height;
        [[nodiscard]] bool IsWhole() const { return rows == 1 && columns == 1; }
    };
    void TakeFrames(const Image& cutout, Depth depth);
    [[nodiscard]] Grid Frames() const;
    [[nodiscard]] Rect NextFrame(const Grid& grid);

    std::unique_ptr<Image> frames;     // null: nothing to paint
    std::unique_ptr<Image> frameMask;  // one channel
    std::uint32_t frameIndex = 0;      // KEEP: runs on between strokes, and moves before it is used
    Matrix3 matrix;
};

}  // namespace chalkpane
