#include "telestrator/telestrator_surface.h"

#include <cstring>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "chalkpane/brush/basic_brush.h"
#include "telestrator/line_draft.h"

namespace chalkpane {
namespace {

constexpr std::int32_t lastBlendMode = 9;

std::unique_ptr<Image> NewSurfaceImage(std::int32_t width, std::int32_t height) {
    return std::make_unique<Image>(Image::Colour(width, height, Depth::Eight, AlphaForm::Premultiplied));
}

// Any mode without a spacing of its own shortens.
SpacingType KnownSpacing(std::int32_t mode) {
    const bool isKnown = mode == static_cast<std::int32_t>(SpacingType::Keep) ||
                         mode == static_cast<std::int32_t>(SpacingType::ShortenAndThin);
    return isKnown ? static_cast<SpacingType>(mode) : SpacingType::Shorten;
}

// KEEP: a brush image outlives its surface; one of each stays behind, until the program ends.
void LeaveBehind(std::unique_ptr<Image> image) noexcept {
    static std::mutex mutex;
    static std::vector<std::unique_ptr<Image>> images;
    if (!image) return;
    const std::lock_guard lock(mutex);
    try {
        images.emplace_back();
    } catch (const std::bad_alloc&) {
        return;
    }
    images.back() = std::move(image);
}

}  // namespace

TelestratorSurface::TelestratorSurface()
    : brush(std::make_unique<BasicBrush>("Telestrator")), colour(Colour::fromIndex(4)) {
    brush->Update();
    ApplyBrushSettings();
}

TelestratorSurface::~TelestratorSurface() {
    brush.reset();
    DestroyOwnedCanvas();
    LeaveBehind(std::move(brushImage));
}

void TelestratorSurface::DestroyOwnedCanvas() {
    if (ownsCanvas) delete canvas;
    canvas = nullptr;
    ownsCanvas = false;
}

void TelestratorSurface::CreateCanvasImage(std::int32_t canvasWidth, std::int32_t canvasHeight) {
    brush->SetTarget(nullptr);
    DestroyOwnedCanvas();
    canvas = NewSurfaceImage(canvasWidth, canvasHeight).release();
    ownsCanvas = true;
    brush->SetTarget(canvas);
}

CanvasPixels TelestratorSurface::GetPixels() const {
    if (canvas == nullptr) return {};
    return {canvas->origin, canvas->Width(), canvas->Height(), canvas->ByteSize()};
}

void TelestratorSurface::ClearPixels() {
    if (const CanvasPixels pixels = GetPixels(); pixels.bytes != nullptr) {
        std::memset(pixels.bytes, 0, pixels.byteSize);
    }
}

void TelestratorSurface::SetBrushWidth(std::int32_t radius) {
    width = radius;
    ApplyBrushSettings();
}

void TelestratorSurface::SetBrushColour(std::uint16_t red, std::uint16_t green, std::uint16_t blue) {
    colour = {red, green, blue};
    ApplyBrushSettings();
}

void TelestratorSurface::SetBrushSpacing(double fractionOfDiameter) {
    spacing = fractionOfDiameter;
    ApplyBrushSettings();
}

void TelestratorSurface::SetSpacingMode(std::int32_t mode) {
    spacingMode = mode;
    ApplyBrushSettings();
}

void TelestratorSurface::SetMatchPath(bool on) {
    matchPath = on;
    ApplyBrushSettings();
}

void TelestratorSurface::SetColourSource() {
    sourceMode = colourMode;
    ApplyBrushSettings();
}

void TelestratorSurface::SetEraseSource() {
    sourceMode = eraseMode;
    ApplyBrushSettings();
}

void TelestratorSurface::ResetBrushImage() {
    brushImage.reset();
    SetColourSource();
}

void TelestratorSurface::LoadBrushImage(std::int32_t imageWidth, std::int32_t imageHeight, const std::uint8_t* pixels) {
    brushImage = NewSurfaceImage(imageWidth, imageHeight);
    if (brushImage->ByteSize() > 0) std::memcpy(brushImage->origin, pixels, brushImage->ByteSize());
}

// Size first: it alone makes the brush rebuild itself, so a changed source takes hold one pass later. Whoever
// configures a surface therefore ends with a pass more.
void TelestratorSurface::ApplyBrushSettings() {
    if (!brush) return;
    brush->SetSize(width);  // KEEP: the operator's width is the brush's radius, so a dab is 2 * width + 1 wide
    // A brush without memory for its source says nothing and paints nothing.
    if (brush->Source() == nullptr) throw std::bad_alloc();
    brush->SetColour(colour);
    brush->SetSpacing(spacing, KnownSpacing(spacingMode));
    brush->SetMatchPath(matchPath);
    // KEEP: the colour and erase sources hand the brush its image as a mere store, not for use. So a loaded brush image
    // is carried along and paints nothing; strokes stay in the plain colour.
    switch (sourceMode) {
        case eraseMode:
            brush->SetCutoutImage(brushImage.get(), false);
            brush->SetSourceType(SourceType::Eraser);
            break;
        case imageMode:
            brush->SetCutoutImage(brushImage.get(), brushImage != nullptr);
            brush->SetSourceType(brushImage ? SourceType::Cutout : SourceType::Colour);
            break;
        default:
            brush->SetCutoutImage(brushImage.get(), false);
            brush->SetSourceType(SourceType::Colour);
            break;
    }
    brush->SetBlendMode(blendMode >= 1 && blendMode <= lastBlendMode ? blendMode : 0);
}

Rect TelestratorSurface::Tell(StrokeStage stage, double x, double y, double pressure, const Rect& changed) const {
    if (listener != nullptr) listener->OnStep(*this, stage, x, y, pressure);
    return changed;
}

Rect TelestratorSurface::BeginStroke(double x, double y, double pressure) {
    return Tell(StrokeStage::Begin, x, y, pressure, brush->BeginStroke(x, y, pressure));
}

Rect TelestratorSurface::ContinueStroke(double x, double y, double pressure) {
    return Tell(StrokeStage::Continue, x, y, pressure, brush->ContinueStroke(x, y, pressure));
}

Rect TelestratorSurface::EndStroke(double x, double y, double pressure) {
    return Tell(StrokeStage::End, x, y, pressure, brush->EndStroke(x, y, pressure));
}

}  // namespace chalkpane
