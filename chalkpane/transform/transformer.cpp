#include "chalkpane/transform/transformer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/image/image_rows.h"
#include "chalkpane/image/plane.h"
#include "chalkpane/transform/resample_row.h"

namespace chalkpane {

namespace {

constexpr double tolerance = 0.0001;

bool IsNear(double a, double b) { return std::abs(a - b) < tolerance; }

// 16.16, truncated; clamped to where no picture lies any more.
std::int64_t ToFixed(double value) {
    constexpr double farAway = 4503599627370496.0;  // 2 to the 52
    return static_cast<std::int64_t>(std::clamp(value * 65536.0, -farAway, farAway));
}

// position + step * count, or false when that is too far to be of any picture.
bool Advance(std::int64_t& position, std::int64_t step, std::int64_t count) {
    constexpr std::int64_t limit = std::int64_t{1} << 60;
    std::int64_t distance = 0;
    if (__builtin_mul_overflow(step, count, &distance) || __builtin_add_overflow(position, distance, &position))
        return false;
    return position > -limit && position < limit;
}

template <typename F>
struct ResampleJob {
    ResampleSource<typename F::Channel> source;
    Plane<typename F::Channel> target;
    Rect rect;                   // of the target, what is written
    std::int64_t columnsBefore;  // from the beginning of the iteration to the first column and row written
    std::int64_t rowsBefore;
    ResampleIterator iterator;
    std::int64_t rowStepU;
    std::int64_t rowStepV;
    ResampleRowFunction<F> resample;
};

// Columns `first` .. `end` - 1 of row y, both counted from the lower left pixel written.
template <typename F>
void ResampleColumns(const ResampleJob<F>& job, std::int32_t y, std::int32_t first, std::int32_t end) {
    ResampleIterator iterator = job.iterator;
    const bool reachable = Advance(iterator.u, job.rowStepU, job.rowsBefore + y) &&
                           Advance(iterator.v, job.rowStepV, job.rowsBefore + y) &&
                           Advance(iterator.u, iterator.stepU, job.columnsBefore + first) &&
                           Advance(iterator.v, iterator.stepV, job.columnsBefore + first);
    if (!reachable) iterator = {.u = std::numeric_limits<std::int64_t>::min() / 4};
    job.resample(job.source, iterator, job.target.At(first, y), end - first);
}

// A rotated row crosses many rows of the source, whose pixels beside it the next row wants. So some rows are done
// together, piece by piece, while those pixels are at hand.
constexpr std::int32_t rowsTogether = 32;
constexpr std::int32_t pieceColumns = 128;

template <typename F>
void ResampleRows(std::int32_t group, void* userData, std::int32_t /*worker*/) {
    const auto& job = *static_cast<const ResampleJob<F>*>(userData);
    const std::int32_t width = job.rect.Width();
    const std::int32_t firstRow = group * rowsTogether;
    const std::int32_t endRow = firstRow + std::min(rowsTogether, job.rect.Height() - firstRow);
    const std::int32_t step = job.iterator.stepV == 0 ? width : pieceColumns;
    for (std::int64_t first = 0; first < width; first += step) {
        const auto end = static_cast<std::int32_t>(std::min<std::int64_t>(first + step, width));
        for (std::int32_t y = firstRow; y < endRow; ++y) ResampleColumns(job, y, static_cast<std::int32_t>(first), end);
    }
}

struct ResampleOrder {
    const Image* source;
    Image* target;
    Rect sourceArea;  // within the source, not empty
    Rect targetArea;  // where the iteration begins at the lower left pixel
    Matrix3 inverse;
};

template <typename F>
void ResampleAtDepth(const ResampleOrder& order) {
    using Channel = typename F::Channel;
    const Rect& wanted = order.targetArea;
    const Rect rect = wanted.Intersection(*order.target);
    if (!rect.IsValid()) return;
    const auto source = PlaneOf<const Channel>(*order.source, order.sourceArea);
    const Point2 start = order.inverse.Transform(wanted.x0 + 0.5, wanted.y0 + 0.5);
    const auto& linear = order.inverse.rows;
    ResampleJob<F> job{
        .source = {source.first, source.rowStep, order.sourceArea},
        .target = PlaneOf<Channel>(*order.target, rect),
        .rect = rect,
        .columnsBefore = std::int64_t{rect.x0} - wanted.x0,
        .rowsBefore = std::int64_t{rect.y0} - wanted.y0,
        .iterator = {ToFixed(start.x) - 0x8000, ToFixed(start.y) - 0x8000, ToFixed(linear[0][0]),
                     ToFixed(linear[0][1])},
        .rowStepU = ToFixed(linear[1][0]),
        .rowStepV = ToFixed(linear[1][1]),
        .resample = ResampleRowFor<F>(order.source->IsMask() ? 1 : 4).Fastest(),
    };
    const std::int64_t pixels = std::int64_t{rect.Width()} * std::min(rowsTogether, rect.Height());
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    RunInBands(0, (rect.Height() - 1) / rowsTogether, static_cast<std::int32_t>(std::min(pixels, most)),
               &ResampleRows<F>, &job);
}

void Resample(const ResampleOrder& order) {
    WithFormatOf(*order.source, [&]<typename F>(F) { ResampleAtDepth<F>(order); });
}

Rect Limited(const Rect& rect, const Rect& limit, bool isLimited) {
    const Rect limited = isLimited ? rect.Intersection(limit) : rect;
    return limited.Intersects(limited) ? limited : Rect();
}

// A limit of the source at another zoom: the pixels that it touches.
Rect Zoomed(const Rect& rect, double zoom) {
    const auto toInt = [](double value) {
        using Limits = std::numeric_limits<std::int32_t>;
        return static_cast<std::int32_t>(std::clamp<double>(value, Limits::min(), Limits::max()));
    };
    const auto first = [&](double value) { return toInt(std::floor(value * zoom)); };
    const auto last = [&](double value) { return toInt(std::ceil((value + 1.0) * zoom) - 1.0); };
    return {first(rect.x0), first(rect.y0), last(rect.x1), last(rect.y1)};
}

// How far down the pyramid a reduction reads: a quarter of the area is one level.
double LevelOf(const DoublePair& scale) {
    const double area = std::min(std::abs(scale.x), 1.0) * std::min(std::abs(scale.y), 1.0);
    const double level = -std::log(area) / std::log(4.0);
    return level > 0.0 ? std::min(level, 31.0) : 0.0;
}

// The pixel positions around one corner of the result whose centres come from the source or its faded edge.
void ExtendAroundCorner(const Rect& source, const Matrix3& inverse, const Point2& corner, Rect& bounds) {
    const auto column = static_cast<std::int32_t>(std::floor(corner.x));
    const auto row = static_cast<std::int32_t>(std::floor(corner.y));
    for (std::int32_t y = row - 2; y <= row + 2; ++y) {
        for (std::int32_t x = column - 2; x <= column + 2; ++x) {
            const Point2 at = inverse.Transform(x + 0.5, y + 0.5);
            if (at.x > source.x0 - 0.499 && at.x < source.x1 + 1.499 && at.y > source.y0 - 0.499 &&
                at.y < source.y1 + 1.499)
                bounds.ExtendTo(x, y);
        }
    }
}

// Of the transformed rectangle; empty when it has no pixels or lies beyond any canvas.
Rect BoundsOf(const Rect& source, const Matrix3& forward, const Matrix3& inverse) {
    constexpr double farthest = 1 << 30;
    Rect bounds;
    if (!source.Intersects(source)) return bounds;
    for (const double y : {source.y0 - 0.495, source.y1 + 1.495}) {
        for (const double x : {source.x0 - 0.495, source.x1 + 1.495}) {
            const Point2 corner = forward.Transform(x, y);
            if (!(std::abs(corner.x) < farthest && std::abs(corner.y) < farthest)) return {};
            ExtendAroundCorner(source, inverse, corner, bounds);
        }
    }
    return std::int64_t{bounds.Width()} * bounds.Height() <= Transformer::maximumPixels ? bounds : Rect();
}

std::unique_ptr<Image> ImageLike(const ImageDefinition& source, const Rect& rect) {
    return std::make_unique<Image>(rect, source);
}

const Image* WholeImage(const Image& source) { return &source; }
const Image* WholeImage(MRImage& source) { return source.GetWholeLevelImage(0.0, true, 0); }

// A copy whose rectangle is moved; of the empty rectangle when it would leave the plane.
std::unique_ptr<Image> MovedCopy(const Image& source, const Point2& offset) {
    constexpr double farthest = std::numeric_limits<std::int32_t>::max();
    if (!(std::abs(offset.x) < farthest && std::abs(offset.y) < farthest)) return ImageLike(source, {});
    const auto dx = static_cast<std::int32_t>(offset.x);
    const auto dy = static_cast<std::int32_t>(offset.y);
    Rect moved = source;
    moved.Translate(dx, dy);
    if (moved.Width() != source.Width() || moved.Height() != source.Height()) return ImageLike(source, {});
    auto copy = source.Clone();
    copy->Translate(dx, dy);
    return copy;
}

}  // namespace

void Transformer::SetTransform(double originX, double originY, double moveX, double moveY, double scaleX, double scaleY,
                               double turn) {
    origin = {originX, originY};
    move = {moveX, moveY};
    scale = {scaleX, scaleY};
    rotation = turn;
    Recompute();
}

void Transformer::SetMatrix(const Matrix3& matrix) {
    forward = matrix;
    inverse = matrix.Inverse();
}

void Transformer::Recompute() {
    SetMatrix(Matrix3::Translation(-origin.x, -origin.y) * Matrix3::Scaling(scale.x, scale.y) *
              Matrix3::Rotation(-rotation * std::numbers::pi / 180) * Matrix3::Translation(move.x, move.y));
}

void Transformer::LimitTarget(const Rect& limit) {
    targetLimit = limit;
    limitTarget = true;
}

void Transformer::LimitSource(const Rect& limit) {
    sourceLimit = limit;
    limitSource = true;
}

bool Transformer::IsUsable() const { return forward.IsFinite() && inverse.IsFinite(); }

std::optional<Point2> Transformer::WholeMove() const {
    const auto& m = forward.rows;
    const Point2 whole{std::floor(m[2][0] + 0.5), std::floor(m[2][1] + 0.5)};
    const bool isWhole = !limitTarget && IsNear(m[0][0], 1.0) && IsNear(m[0][1], 0.0) && IsNear(m[1][0], 0.0) &&
                         IsNear(m[1][1], 1.0) && IsNear(m[2][0], whole.x) && IsNear(m[2][1], whole.y);
    return isWhole ? std::optional(whole) : std::nullopt;
}

template <typename Source>
std::unique_ptr<Image> Transformer::ApplyTo(Source& source, Rect& outRect) {
    const auto wholeMove = WholeMove();
    std::unique_ptr<Image> result;
    if (!IsUsable()) {
        result = ImageLike(source, {});
    } else if (wholeMove) {
        const Image* whole = WholeImage(source);
        result = whole != nullptr ? MovedCopy(*whole, *wholeMove) : ImageLike(source, {});
    } else {
        result = ImageLike(source, BoundsOf(source, forward, inverse));
        ApplyInto(source, *result, *result);
    }
    outRect = *result;
    return result;
}

std::unique_ptr<Image> Transformer::Apply(const Image& source, Rect& outRect) { return ApplyTo(source, outRect); }
std::unique_ptr<Image> Transformer::Apply(MRImage& source, Rect& outRect) { return ApplyTo(source, outRect); }

void Transformer::ApplyInto(const Image& source, Image& target, const Rect& rect) {
    sourceArea = Limited(source, sourceLimit, limitSource);
    targetArea = Limited(rect, targetLimit, limitTarget);
    if (!IsUsable() || !source.HasFormatOf(target) || !sourceArea.IsValid() || !targetArea.IsValid()) return;
    Resample({&source, &target, sourceArea, targetArea, inverse});
}

void Transformer::ApplyInto(MRImage& source, Image& target, const Rect& rect) {
    const Image* level = source.GetWholeLevelImage(LevelOf(scale), false, 0);
    if (level == nullptr) return;
    const double zoom = source.GetScale();
    sourceArea = Limited(*level, zoom == 1.0 ? sourceLimit : Zoomed(sourceLimit, zoom), limitSource);
    targetArea = Limited(rect, targetLimit, limitTarget);
    if (!IsUsable() || !level->HasFormatOf(target) || !sourceArea.IsValid() || !targetArea.IsValid()) return;
    Resample({level, &target, sourceArea, targetArea,
              inverse * Matrix3::Scaling(zoom, zoom) * Matrix3::Translation(source.GetOffsetX(), source.GetOffsetY())});
}

}  // namespace chalkpane
