#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "chalkpane/image/image.h"
#include "chalkpane/image/rect.h"
#include "chalkpane/parameters/colour.h"

namespace chalkpane {

class BasicBrush;
class LineDraft;
class TelestratorSurface;

enum class StrokeStage { Begin, Continue, End };

// Is told of every step of a stroke that a surface's brush was given, after it: so it sees also what recognisers draw.
class StepListener {
public:
    StepListener() = default;
    StepListener(const StepListener&) = delete;
    StepListener& operator=(const StepListener&) = delete;
    StepListener(StepListener&&) = delete;
    StepListener& operator=(StepListener&&) = delete;
    virtual void OnStep(const TelestratorSurface& surface, StrokeStage stage, double x, double y,
                        double pressure) noexcept = 0;

protected:
    ~StepListener() = default;
};

// The pixels of a canvas, borrowed until the canvas is made anew. Without a canvas all of it is zero.
struct CanvasPixels {
    std::byte* bytes = nullptr;  // top row first, four bytes a pixel, no gaps between rows
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::size_t byteSize = 0;
};

// One canvas and the one brush, named "Telestrator", that paints on it. It is told width, colour and strokes;
// this class turns them into brush settings.
//
// Coordinates are canvas pixels. What allocates may throw std::bad_alloc: the constructor, the canvas, the setters.
class TelestratorSurface {
public:
    TelestratorSurface();
    ~TelestratorSurface();
    TelestratorSurface(const TelestratorSurface&) = delete;
    TelestratorSurface& operator=(const TelestratorSurface&) = delete;
    TelestratorSurface(TelestratorSurface&&) = delete;
    TelestratorSurface& operator=(TelestratorSurface&&) = delete;

    // A blank canvas of 8-bit premultiplied pixels in place of the former one.
    void CreateCanvasImage(std::int32_t canvasWidth, std::int32_t canvasHeight);
    [[nodiscard]] CanvasPixels GetPixels() const;
    // Without a canvas nothing happens.
    void ClearPixels();

    // Each stores and then applies all settings once, also when the value is the old one.
    // The radius of the brush in canvas pixels, which the operator sets as its width.
    void SetBrushWidth(std::int32_t radius);
    void SetBrushColour(std::uint16_t red, std::uint16_t green, std::uint16_t blue);
    void SetBrushSpacing(double fractionOfDiameter);
    void SetSpacingMode(std::int32_t mode);
    void SetMatchPath(bool on);
    void SetColourSource();
    void SetEraseSource();
    void ResetBrushImage();

    // Copies width * height pixels of four bytes. A size without pixels gives an empty image.
    // Applies nothing: that is left to the caller.
    void LoadBrushImage(std::int32_t imageWidth, std::int32_t imageHeight, const std::uint8_t* pixels);

    void ApplyBrushSettings();

    // Each returns the canvas pixels that the call changed.
    Rect BeginStroke(double x, double y, double pressure);
    Rect ContinueStroke(double x, double y, double pressure);
    Rect EndStroke(double x, double y, double pressure);

    enum SourceMode : std::int32_t { colourMode = 0, eraseMode = 1, imageMode = 2 };

    Image* canvas = nullptr;  // owned while ownsCanvas is set
    bool ownsCanvas = false;
    std::unique_ptr<BasicBrush> brush;
    std::unique_ptr<Image> brushImage;
    std::int32_t width = 5;  // the radius of the brush in canvas pixels
    Colour colour;
    std::int32_t sourceMode = colourMode;
    std::int32_t blendMode = 0;
    double spacing = 0.15;
    std::int32_t spacingMode = 2;
    bool matchPath = false;
    std::uint8_t unusedByte = 0;
    StepListener* listener = nullptr;      // not owned
    std::unique_ptr<LineDraft> lineDraft;  // of a line to be drawn here; null before the first long stroke

private:
    void DestroyOwnedCanvas();
    Rect Tell(StrokeStage stage, double x, double y, double pressure, const Rect& changed) const;
};

}  // namespace chalkpane
