#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "image/image.h"
#include "image/rect.h"
#include "paint/matrix3.h"
#include "paint/spline_walk.h"
#include "parameters/colour.h"
#include "parameters/file_name.h"
#include "parameters/parameterised_object.h"

namespace chalkpane {

class BrushSource;
class DataSet;
class Filter;
class GraphValue;

// Turns a path of pointer samples into dabs on an image.
//
// Coordinates are doubles in the plane of the target, pressure is 0.0 .. 1.0. The setters store; what they store takes
// hold at the next `Update`, which belongs between strokes. A sample that is not a number, or beyond `farthest` in any
// of its three values, is ignored: it paints nothing and leaves the stroke where it was.
// Nothing here throws for want of memory but the constructor and the setters that store; a dab or a source that could
// not be made is not there. Thread: the plug-in's, one stroke at a time.
class BasicBrush : public ParameterisedObject {
public:
    // Beyond it a sample could not be placed in whole pixels.
    static constexpr double farthest = 1073741824.0;

    // The first one also builds the parameter list of the class and the registry of filters. Ends with `Update`.
    explicit BasicBrush(std::string_view brushName);
    BasicBrush(const BasicBrush&) = delete;
    BasicBrush& operator=(const BasicBrush&) = delete;

    // By code of the class's table; an unknown one does nothing.
    void setParameter(const ParameterValue* value) override;
    void valuesChanged() override {}
    virtual ~BasicBrush();
    virtual void ReservedHook1() {}
    // Rebuilds the source from what is stored.
    virtual void Update();
    virtual void ReservedHook2() {}
    virtual void ReservedHook3() {}

    // Not owned; null: strokes paint nothing. Of either depth, four channels.
    void SetTarget(Image* image) { target = image; }
    // The source's radius in pixels, a dab being 2 * radius + 1 wide. Runs `Update`, alone among the setters.
    void SetSize(std::int32_t radius);
    // 0 colour; 1 image that moves with the brush; 2, 6, 7 image that stays with the canvas; 3 cutout; 4, 8 a colour
    // sampled from the image; 5 eraser. 6 and 7 replace what they cover instead of lying over it.
    void SetSourceType(std::int32_t type);
    // Index of a blend mode, 0 .. 27.
    void SetBlendMode(std::int32_t mode);
    // `fraction` of the dab's diameter. spacingType: 0 keeps it; 1 shortens it to a short segment and thins the stroke
    // there; 2 shortens it only.
    void SetSpacing(double fraction, std::int32_t type);
    // Turns each dab along the path.
    void SetMatchPath(bool on);
    // Takes hold at once. A brush that was never given a colour paints nothing, whatever its source.
    void SetColour(const Colour& newColour);
    // A picture to paint with instead of the chosen source, while `use` is set. The pixels are shared, not copied; null
    // takes it away.
    void SetCutoutImage(const Image* image, bool use);

    // Each paints the dabs that this sample brings and returns the part of the target they lie on; empty when there
    // is no target, or nothing was painted. `ContinueStroke` follows the pointer, `EndStroke` leads the curve, which
    // trails behind the samples, to the last of them.
    Rect BeginStroke(double x, double y, double pressure);
    Rect ContinueStroke(double x, double y, double pressure);
    Rect EndStroke(double x, double y, double pressure);

    // The values of this brush, and those of its sources, which come and go with `Update` while these stay.
    [[nodiscard]] DataSet& Values() { return *values; }
    [[nodiscard]] DataSet& SourceValues() { return *sourceValues; }
    // Null when there was no memory for it. Lives until the next `Update`.
    [[nodiscard]] BrushSource* Source() { return source.get(); }
    // Run over the images of every dab, first to last. The owner adds to it between strokes.
    [[nodiscard]] std::vector<std::unique_ptr<Filter>>& Filters() { return filters; }

private:
    struct DabImages {
        std::unique_ptr<Image> colour;
        std::unique_ptr<Image> mask;  // null: full coverage
        [[nodiscard]] Rect Area() const;
    };

    [[nodiscard]] bool Accepts(double x, double y, double pressure) const;
    void StoreProfileType();
    [[nodiscard]] std::unique_ptr<BrushSource> MakeSource() const;
    void PrepareSource();
    Rect StepAlongPath(const StrokePoint& sample, bool& painted);
    Rect PaintDab(StrokePoint dab, bool repeat);
    double DabAngle(const StrokePoint& dab, bool repeat);
    void PaintOnTarget(const StrokePoint& dab, double angle, double dabOpacity, bool erases, DabImages& images,
                       Rect& changed);
    void PaintOnMask(const StrokePoint& dab, double angle, double dabOpacity, bool erases, DabImages& images);

    std::string name;
    std::unique_ptr<DataSet> values;
    std::vector<ParameterValue*> extraValues;  // handed to `values` by `Update`; nothing adds to it here
    GraphValue* profileGraph = nullptr;        // belongs to `values`
    Image* target = nullptr;                   // not owned
    Image* maskTarget = nullptr;               // not owned; one channel
    double spacing = 0.15;                     // fraction of the source's diameter
    bool adjustSpacing = false;
    std::uint8_t spacingType = 2;
    bool buildUp = false;
    bool matchPath = false;
    Matrix3 matrix;          // of the dab's position, handed to the source
    double lastAngle = 0.0;  // degrees
    std::uint8_t blendMode = 0;
    std::unique_ptr<Image> cutoutImage;
    bool useCutoutImage = false;
    Colour colour;
    bool paintEraserFlag = false;
    bool paintPlaneOn = false;  // KEEP: nothing but `SetColour` raises it, so without a colour nothing is painted
    bool maskPlaneOn = false;
    bool maskPlaneClips = false;
    bool straightSegments = false;
    std::uint8_t maskValue = 0;
    StrokePoint lastInput;
    SplineWalk history;
    float lastDabX = 0.0F;
    float lastDabY = 0.0F;
    float lastDabPressure = 0.0F;
    bool firstDabPending = false;  // the first dab waits until the path has a direction
    std::unique_ptr<BrushSource> source;
    std::vector<std::unique_ptr<Filter>> filters;
    std::uint8_t sourceType = 0;
    FileName cutoutFile;
    double opacity = 1.0;
    double decay = 0.0;  // each dab leaves sqrt(1 - decay) of the opacity
    double currentOpacity = 1.0;
    std::unique_ptr<DataSet> sourceValues;
};

}  // namespace chalkpane
