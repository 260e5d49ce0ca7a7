#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "chalkpane/brush/brush_choices.h"
#include "chalkpane/brush/spline_iterator.h"
#include "chalkpane/image/image.h"
#include "chalkpane/image/rect.h"
#include "chalkpane/parameters/colour.h"
#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/parameter_table.h"
#include "chalkpane/transform/matrix3.h"

namespace chalkpane {

class BrushSource;
class ColourBrushSource;
class Filter;
class ProfileCache;
class SettledTiles;
struct ColourDab;
struct DabProgress;
struct SmallDabTarget;

// Turns a path of pointer samples into dabs on an image.
//
// Coordinates are doubles in the plane of the target, pressure is 0.0 .. 1.0. The setters store; what they store takes
// hold at the next `Update`, which belongs between strokes. A sample that is NaN, or beyond `farthest` in any
// of its three values, is ignored: it paints nothing and leaves the stroke where it was.
// Nothing here throws for want of memory but the constructor and the setters that store; a dab or a source that could
// not be made is not there. Thread: a brush is used by one at a time, with all that it owns, for one stroke at a time;
// several threads may paint at once, each with brushes and targets of its own.
class BasicBrush : public WithParameters<BasicBrush, ParameterisedObject> {
public:
    static constexpr auto Parameters() {
        using Self = BasicBrush;
        using Code = BrushParameter;
        // clang-format off
        return std::to_array<ParameterRow<Self>>({
            //code                  label                unique name                default range    field                 kind
            {Code::Name,             "Name",              "Brush Name",              "",     {},     &Self::name},
            {Code::SourceType,       "Source Type",       "Brush Source Type",       0,      {},     &Self::sourceType},
            {Code::File,             "File",              "Cutout File",             {},     {},     &Self::cutoutFile},
            {Code::Opacity,          "Opacity",           "Brush Opacity",           1.0,    {0, 1}, &Self::opacity,        percent},
            {Code::Decay,            "Decay",             "Brush Decay",             0.0,    {0, 1}, &Self::decay,          percent},
            {Code::Spacing,          "Spacing",           "Brush Spacing",           0.15,   {},     &Self::spacing},
            {Code::AdjustSpacing,    "Adjust Spacing",    "Brush Adjust Spacing",    false,  {},     &Self::adjustSpacing},
            {Code::SpacingType,      "Spacing Type",      "Brush Space Type",        2,      {},     &Self::spacingType},
            {Code::MatchPath,        "Match Path",        "Brush Match Path",        false,  {},     &Self::matchPath},
            {Code::BuildUp,          "Build Up",          "Brush Build Up",          false,  {},     &Self::buildUp},
            {Code::ProfileGraph,     "Profile Graph",     "Profile Graph",           {},     {},     &Self::profileGraph},
            {Code::GlobalParameters, "Global Parameters", "Brush Global Parameters", false,  {},     nullptr,               {ParameterType::boolean}},
            {Code::BlendMode,        "Blend Mode",        "Brush Blend Mode",        0,      {},     &Self::blendMode},
            {Code::Group,            "Group",             "Brush Group",             "Other", {},    nullptr,               {ParameterType::string}},
        });
        // clang-format on
    }

    // Beyond it a sample could not be placed in whole pixels.
    static constexpr double farthest = 1073741824.0;

    // The first one also builds the parameter list of the class and the registry of filters. Ends with `Update`.
    explicit BasicBrush(std::string_view brushName);
    BasicBrush(const BasicBrush&) = delete;
    BasicBrush& operator=(const BasicBrush&) = delete;

    // `setParameter` and the hook `valuesChanged` stand in front of these.
    virtual ~BasicBrush();
    virtual void ReservedHook1() {}
    // Rebuilds the source from what is stored.
    virtual void Update();
    virtual void ReservedHook2() {}
    virtual void ReservedHook3() {}

    // Not owned; null: strokes paint nothing. Four channels of either depth; a target of the other depth than the one
    // before has the source made anew.
    void SetTarget(Image* image);
    // The radius of a dab in canvas pixels: it is 2 * radius + 1 wide. Above `BrushProfile::maximumRadius`, or below 0,
    // there are no dabs. Runs `Update`, alone among the setters.
    void SetSize(std::int32_t radius);
    // A stored value; one without a row in `SourceTypes` paints colour.
    void SetSourceType(std::int32_t type);
    void SetSourceType(SourceType type) { SetSourceType(static_cast<std::int32_t>(type)); }
    // Index of a blend mode, 0 .. 27.
    void SetBlendMode(std::int32_t mode);
    // `fraction` of the dab's diameter, 2 * radius + 1; a type other than these three shortens as the last one does.
    void SetSpacing(double fraction, std::int32_t type);
    void SetSpacing(double fraction, SpacingType type) { SetSpacing(fraction, static_cast<std::int32_t>(type)); }
    // Rotates each dab along the path.
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

    // What a stroke has come to so far, but for its pixels: it can be laid aside while the brush paints another, and
    // gone on with.
    struct StrokeState {
        StrokePoint lastInput;
        SplineIterator history;
        float lastDabX = 0.0F;
        float lastDabY = 0.0F;
        float lastDabPressure = 0.0F;
        bool firstDabPending = false;
        std::int32_t stepsToPassOver = 0;
        double currentOpacity = 1.0;
        double lastAngle = 0.0;
    };
    [[nodiscard]] StrokeState Stroke() const;
    void GoOnWith(const StrokeState& stroke);
    // True: each dab is one colour through a mask, not rotated, onto the target, and leaves nothing else behind.
    [[nodiscard]] bool PaintsPlainDabs() const;
    // Differs after whatever may change what the brush paints, and after each step of a stroke.
    [[nodiscard]] std::uint64_t Revision() const { return revision; }
    // Until null is set again nobody but the brush writes to its target, so that it may pass over dabs that change no
    // more; borrowed.
    void PaintAlone(SettledTiles* tiles) { settledTiles = tiles; }
    // A part of the plane, ends included.
    struct PlaneArea {
        double minX = 0.0;
        double minY = 0.0;
        double maxX = 0.0;
        double maxY = 0.0;
    };
    // True: as long as the samples of the stroke lie in there, it changes nothing of the target, and passes over its
    // dabs without having made them. Once a stroke has begun.
    [[nodiscard]] bool SurelyMisses(const PlaneArea& samples) const;
    // How many dabs a brush of plain ones has painted on its targets, ever.
    [[nodiscard]] std::uint64_t PaintedDabs() const { return paintedDabs; }

    // The values of this brush, and those of its sources, which come and go with `Update` while these stay.
    [[nodiscard]] DataSet& Values() { return *values; }
    [[nodiscard]] DataSet& SourceValues() { return *sourceValues; }
    // One of them; null when an owner has taken it out of the set. What is set takes hold at the next `Update`.
    [[nodiscard]] ParameterValue* Value(BrushParameter code) const;
    [[nodiscard]] ParameterValue* SourceValue(SourceParameter code) const;
    // Null when there was no memory for it. Lives until the next `Update`.
    [[nodiscard]] BrushSource* Source() { return source.get(); }
    // Run over the images of every dab, first to last. The owner adds to it between strokes.
    [[nodiscard]] std::vector<std::unique_ptr<Filter>>& Filters() { return filters; }

protected:
    // The planes of a dab. Painting goes to the target; the mask plane, a second image of one channel that can also
    // limit painting, is for brushes built on this one.
    bool paintEraserFlag = false;
    bool paintPlaneOn = false;  // KEEP: nothing but `SetColour` raises it, so without a colour nothing is painted
    bool maskPlaneOn = false;
    bool maskPlaneClips = false;
    bool straightSegments = false;
    std::uint8_t maskValue = 0;             // in the channel range of `maskTarget`
    Image* maskTarget = nullptr;            // not owned; one channel
    std::vector<ValuePointer> extraValues;  // handed to `values` by the next `Update`

private:
    // One dab on its way to the planes.
    struct Dab {
        StrokePoint place;  // with the pressure
        double angle = 0.0;
        double opacity = 0.0;
        bool erases = false;
        std::unique_ptr<Image> colour;
        std::unique_ptr<Image> mask;  // null: full coverage

        [[nodiscard]] Rect Area() const;
    };

    void StoreProfile();
    void RebuildSource();
    [[nodiscard]] double BaseSpacing(const StrokePoint& sample) const;
    Rect StepAlongPath(const StrokePoint& sample, bool& painted);
    Rect PaintEvenStretch(double squaredSpacing, double pressureFactor, bool& painted);
    [[nodiscard]] std::int32_t NextCandidate(std::int32_t step, double squaredSpacing) const;
    Rect PaintDab(StrokePoint place, bool repeat);
    void MeasureTouchingArea();
    // True: a dab there touches nothing of the target and leaves nothing else behind, so it need not be made.
    [[nodiscard]] bool Misses(const StrokePoint& place) const {
        return place.x < touching.minX || place.x > touching.maxX || place.y < touching.minY || place.y > touching.maxY;
    }
    // Passes over a stretch of the path all of whose dabs miss. True: that was one, and the last dab is where it would
    // be; `painted` tells whether there was one.
    bool PassStretchOver(double squaredSpacing, double pressureFactor, bool& painted);
    // Passes over the dabs from `step` on that surely miss, where the last of them is known whatever came before.
    // Returns the step to go on with; before `tryAgainAt` there is nothing more to pass over.
    std::int32_t PassMissesOver(std::int32_t step, double squaredSpacing, double pressureFactor, bool& painted,
                                std::int32_t& tryAgainAt);
    void PlaceUnpaintedDab(const StrokePoint& place, double pressureFactor);
    double AngleAlongPath(const StrokePoint& place, bool repeat);
    Rect PaintPlainDab(const Dab& dab);
    template <typename Paint>
    static void PaintRestless(SettledTiles& tiles, const ColourDab& dab, Paint&& paint);
    [[nodiscard]] SettledTiles* TilesOfPlainDabs(bool erases) const;
    [[nodiscard]] SmallDabTarget TargetOfSmallDabs() const;
    bool PaintSmallDab(const SmallDabTarget& canvas, const StrokePoint& place, Rect& changed) const;
    [[nodiscard]] std::int32_t OpacityOfStretch(double pressureFactor) const;
    template <typename Follow>
    std::int32_t FollowDabsFrom(std::int32_t step, bool followsDab, double pressureFactor, Rect& changed, bool& painted,
                                Follow&& follow);
    void LookWhereHeld(SettledTiles& tiles, const DabProgress& progress) const;
    void PaintNextPlainDab(const StrokePoint& place, Rect& changed);
    void FadeOpacity();
    Rect PaintOnTarget(Dab& dab);
    void PaintOnMask(Dab& dab);

    std::string name;
    std::unique_ptr<DataSet> values;
    GraphValue* profileGraph = nullptr;  // belongs to `values`
    Image* target = nullptr;             // not owned
    double spacing = 0.15;               // fraction of the source's diameter
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
    StrokePoint lastInput;
    SplineIterator history;
    float lastDabX = 0.0F;
    float lastDabY = 0.0F;
    float lastDabPressure = 0.0F;
    bool firstDabPending = false;  // the first dab waits until the path has a direction
    // Where a dab's middle may lie to touch the target; everywhere when each dab has to be made.
    PlaneArea touching;
    static constexpr std::int32_t mostStepsPassedOver = 2000000;
    std::int32_t stepsToPassOver = mostStepsPassedOver;  // before the stroke touches the target again
    std::shared_ptr<ProfileCache> profileCache;          // keeps masks from one source to the next
    std::unique_ptr<BrushSource> source;
    ColourBrushSource* colourSource = nullptr;  // the source, where it is one of those
    std::vector<std::unique_ptr<Filter>> filters;
    std::uint8_t sourceType = 0;
    FileName cutoutFile;
    double opacity = 1.0;
    double decay = 0.0;  // each dab leaves sqrt(1 - decay) of the opacity
    double currentOpacity = 1.0;
    std::unique_ptr<DataSet> sourceValues;  // outlive the sources, which are made from them
    Depth sourceDepth = Depth::Eight;       // of the target that the source was made for
    std::uint64_t revision = 0;
    std::uint64_t paintedDabs = 0;
    SettledTiles* settledTiles = nullptr;  // not owned
};

}  // namespace chalkpane
