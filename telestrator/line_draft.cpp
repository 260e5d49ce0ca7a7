#include "telestrator/line_draft.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

#include "chalkpane/brush/sources/brush_source.h"
#include "telestrator/surface_pen.h"

namespace chalkpane {
namespace {

// What one event is worth, and what a line costs, in nanoseconds. No movement over the canvas brings as much, so a
// draft that had to begin anew catches up.
constexpr double worthOfEvent = 5e6;
constexpr double costOfPoint = 120;
constexpr double costOfStep = 20;  // of a curve that runs beside the canvas
constexpr double costOfDab = 60;
constexpr double costOfPixel = 0.35;

// What a brush has done so far.
class Cost {
public:
    explicit Cost(BasicBrush& brush) : brush_(brush), dabs_(brush.PaintedDabs()) {
        const double side = brush.Source()->GetSize();
        ofDab_ = costOfDab + costOfPixel * side * side;
    }
    // Call it after each point.
    void Count() {
        const std::int32_t stepsLeft = brush_.Stroke().stepsToPassOver;
        sum_ += costOfPoint + costOfStep * std::max(stepsLeft_ - stepsLeft, 0);
        stepsLeft_ = stepsLeft;
    }
    [[nodiscard]] bool IsSpent() const {
        return sum_ + static_cast<double>(brush_.PaintedDabs() - dabs_) * ofDab_ > worthOfEvent;
    }

private:
    const BasicBrush& brush_;
    std::uint64_t dabs_;
    std::int32_t stepsLeft_ = brush_.Stroke().stepsToPassOver;
    double ofDab_;
    double sum_ = 0;
};

constexpr double fullPressure = 1.0;

// The place at which a line's pen would draw the point.
CanvasPosition PlaceOf(const Vector3& point, float aspect) { return {double{point.x}, double{point.y} * aspect}; }

// False: a stroke cannot begin there, and a brush would go on with whatever it did before.
bool CanBegin(const CanvasPosition& at) {
    return IsPaintable(at.x, at.y) && std::abs(at.x) <= BasicBrush::farthest && std::abs(at.y) <= BasicBrush::farthest;
}

bool HaveOneFormat(const Image& a, const Image& b) {
    return static_cast<const Rect&>(a) == static_cast<const Rect&>(b) && a.rowBytes == b.rowBytes &&
           a.ByteSize() == b.ByteSize();
}

bool HaveOnePicture(const Image& a, const Image& b) {
    return HaveOneFormat(a, b) && std::memcmp(a.origin, b.origin, a.ByteSize()) == 0;
}

void CopyPicture(const Image& from, std::unique_ptr<Image>& to) {
    if (to && HaveOneFormat(from, *to))
        std::memcpy(to->origin, from.origin, from.ByteSize());
    else
        to = from.Clone();
}

// Has the brush paint on the draft, going on with the draft's stroke, and gives it its own back.
class LentBrush {
public:
    LentBrush(BasicBrush& brush, Image& draft, Image* canvas, BasicBrush::StrokeState& stroke)
        : brush_(brush), canvas_(canvas), stroke_(stroke), own_(brush.Stroke()) {
        brush_.SetTarget(&draft);
        brush_.GoOnWith(stroke_);
    }
    ~LentBrush() {
        stroke_ = brush_.Stroke();
        brush_.GoOnWith(own_);
        brush_.SetTarget(canvas_);
    }
    LentBrush(const LentBrush&) = delete;
    LentBrush& operator=(const LentBrush&) = delete;
    LentBrush(LentBrush&&) = delete;
    LentBrush& operator=(LentBrush&&) = delete;

private:
    BasicBrush& brush_;
    Image* canvas_;
    BasicBrush::StrokeState& stroke_;
    BasicBrush::StrokeState own_;
};

}  // namespace

// The last point drawn stands for those before it: a stroke that grows leaves them alone, and `Take` looks at all.
bool LineDraft::Continues(const TelestratorSurface& surface, std::span<const Vector3> stored, float aspect) const {
    return !drawn_.empty() && canvas_ == surface.canvas && revision_ == surface.brush->Revision() &&
           aspect_ == aspect && StoredIndex(drawn_.size() - 1) < stored.size() &&
           stored[StoredIndex(drawn_.size() - 1)] == drawn_.back();
}

bool LineDraft::Begin(const TelestratorSurface& surface, std::size_t room, float aspect) {
    Forget();
    drawn_.reserve(room);
    CopyPicture(*surface.canvas, pixels_);
    CopyPicture(*surface.canvas, below_);
    if (!closer_) closer_ = std::make_unique<SettledPixels>();
    canvas_ = surface.canvas;
    stroke_ = surface.brush->Stroke();
    aspect_ = aspect;
    return HaveOnePicture(*pixels_, *surface.canvas);
}

void LineDraft::Follow(TelestratorSurface& surface, std::span<const Vector3> stored, float aspect) noexcept {
    if (stored.size() < fewestStored || surface.canvas == nullptr || !surface.brush->PaintsPlainDabs() ||
        !CanBegin(PlaceOf(stored.front(), aspect)))
        return Forget();
    try {
        const std::size_t room = surface.canvas->ByteSize() / sizeof(std::uint32_t) / decimation + 2;
        if (!Continues(surface, stored, aspect) && !Begin(surface, room, aspect)) return Forget();
    } catch (const std::bad_alloc&) {
        return Release();
    }
    {
        const LentBrush lent(*surface.brush, *pixels_, surface.canvas, stroke_);
        const PaintingAlone alone(&surface, closer_.get());
        Draw(*surface.brush, stored);
    }
    revision_ = surface.brush->Revision();
}

// The stroke's last point may be no point of the line yet.
void LineDraft::Draw(BasicBrush& brush, std::span<const Vector3> stored) {
    for (Cost cost(brush); !cost.IsSpent() && drawn_.size() < drawn_.capacity(); cost.Count()) {
        const std::size_t next = StoredIndex(drawn_.size());
        if (next + 1 >= stored.size()) break;
        const CanvasPosition at = PlaceOf(stored[next], aspect_);
        if (drawn_.empty())
            brush.BeginStroke(at.x, at.y, fullPressure);
        else if (IsPaintable(at.x, at.y))
            brush.ContinueStroke(at.x, at.y, fullPressure);
        drawn_.push_back(stored[next]);
    }
}

bool LineDraft::StandsOn(const Image& canvas) const { return HaveOnePicture(*below_, canvas); }

std::size_t LineDraft::Take(TelestratorSurface& surface, std::span<const Vector3> line, float aspect) noexcept {
    const std::size_t count = drawn_.size();
    const bool isTheLine = count > 0 && count < line.size() && canvas_ == surface.canvas && aspect_ == aspect &&
                           revision_ == surface.brush->Revision() && surface.brush->PaintsPlainDabs() &&
                           std::equal(drawn_.begin(), drawn_.end(), line.begin()) && StandsOn(*surface.canvas);
    Forget();
    if (!isTheLine) return 0;
    std::memcpy(surface.canvas->origin, pixels_->origin, pixels_->ByteSize());
    surface.brush->GoOnWith(stroke_);
    for (std::size_t i = 0; i < count && surface.listener != nullptr; ++i) {
        const CanvasPosition at = PlaceOf(line[i], aspect);
        if (!IsPaintable(at.x, at.y)) continue;
        surface.listener->OnStep(surface, i == 0 ? StrokeStage::Begin : StrokeStage::Continue, at.x, at.y,
                                 fullPressure);
    }
    return count;
}

void LineDraft::Release() noexcept {
    drawn_ = {};
    pixels_.reset();
    below_.reset();
    closer_.reset();
}

}  // namespace chalkpane
