#include "telestrator/journal/ink_drawing.h"

#include <algorithm>
#include <utility>

#include "telestrator/journal/ink_distance.h"

namespace chalkpane {
namespace {

// False: all of the rectangle is further away than that.
bool IsNear(const Rect& bounds, const CanvasPosition& at, double distance) {
    return at.x >= bounds.x0 - distance && at.x <= bounds.x1 + distance && at.y >= bounds.y0 - distance &&
           at.y <= bounds.y1 + distance;
}

}  // namespace

Rect InkDrawing::BoundsOf(const Look& look) const {
    if (look.clears) return *canvas_;
    return look.ink ? InkBounds(*look.ink, *canvas_) : Rect();
}

// Numbers are in the order of the entries, among which clearings have none.
const InkDrawing::Entry* InkDrawing::FindEntry(std::uint32_t number) const {
    if (number == 0) return nullptr;
    const auto found = std::find_if(entries_.begin() + static_cast<std::ptrdiff_t>(FirstInSight()), entries_.end(),
                                    [&](const Entry& entry) { return entry.number == number; });
    return found != entries_.end() && found->look.ink ? &*found : nullptr;
}

// The first entry after the last clearing that is in force.
std::size_t InkDrawing::FirstInSight() const {
    for (std::size_t i = entries_.size(); i > 0; --i) {
        if (entries_[i - 1].look.clears) return i;
    }
    return 0;
}

SharedStroke InkDrawing::Find(std::uint32_t number) const {
    const Entry* const entry = FindEntry(number);
    return entry != nullptr ? entry->look.ink : nullptr;
}

// Entries after the last clearing are strokes or nothing.
bool InkDrawing::IsBlank() const {
    return std::none_of(entries_.begin() + static_cast<std::ptrdiff_t>(FirstInSight()), entries_.end(),
                        [](const Entry& entry) { return entry.look.IsThere(); });
}

std::vector<InkDrawing::Stroke> InkDrawing::Strokes() const {
    std::vector<Stroke> strokes;
    for (std::size_t i = FirstInSight(); i < entries_.size(); ++i) {
        if (entries_[i].look.ink) strokes.push_back({entries_[i].number, entries_[i].look.ink, entries_[i].bounds});
    }
    return strokes;
}

std::optional<std::uint32_t> InkDrawing::Nearest(const CanvasPosition& at, double within) const {
    std::optional<std::uint32_t> nearest;
    double least = within;
    for (std::size_t i = FirstInSight(); i < entries_.size(); ++i) {
        if (!entries_[i].look.ink || !IsNear(entries_[i].bounds, at, least)) continue;
        const double distance = InkDistance(*entries_[i].look.ink, at);
        if (!(distance <= least)) continue;
        least = distance;
        nearest = entries_[i].number;
    }
    return nearest;
}

// What was undone can be redone no more. The entries that it added are the last ones, in its order.
void InkDrawing::DropUndone() {
    for (std::size_t i = edits_.size(); i > done_; --i) {
        for (std::size_t last = edits_[i - 1].size(); last > 0; --last) {
            if (!edits_[i - 1][last - 1].before.IsThere()) entries_.pop_back();
        }
    }
    edits_.resize(done_);
    checkpoints_.DropBeyond(entries_.size());
}

InkDrawing::Look& InkDrawing::AppendTo(Edit& edit, std::uint32_t number) {
    edit.push_back({entries_.size(), {}, {}});
    entries_.push_back({number, {}, {}});
    return edit.back().after;
}

InkDrawing::Outcome InkDrawing::Add(SharedStroke stroke, OnCanvas onCanvas) {
    DropUndone();
    Edit edit;
    AppendTo(edit, nextNumber_).ink = std::move(stroke);
    Outcome outcome = Make(std::move(edit), onCanvas);
    outcome.number = nextNumber_++;
    return outcome;
}

InkDrawing::Outcome InkDrawing::Remove(std::uint32_t number) { return Replace(number, nullptr); }

InkDrawing::Outcome InkDrawing::Replace(std::uint32_t number, SharedStroke stroke) {
    const Entry* const entry = FindEntry(number);
    if (entry == nullptr) return {};
    const auto index = static_cast<std::size_t>(entry - entries_.data());
    const Look before = entry->look;
    DropUndone();  // leaves what is there
    Edit edit = {{index, before, {std::move(stroke), false}}};
    Outcome outcome = Make(std::move(edit), OnCanvas::NotYet);
    outcome.number = number;
    return outcome;
}

InkDrawing::Outcome InkDrawing::Clear() {
    DropUndone();
    Edit edit;
    AppendTo(edit, 0).clears = true;
    return Make(std::move(edit), OnCanvas::NotYet);
}

InkDrawing::Outcome InkDrawing::Insert(const std::vector<SharedStroke>& strokes, Recall recall) {
    DropUndone();
    Edit edit;
    const std::uint32_t first = nextNumber_;
    if (recall == Recall::InPlace) AppendTo(edit, 0).clears = true;
    for (const SharedStroke& stroke : strokes) AppendTo(edit, nextNumber_++).ink = stroke;
    if (edit.empty()) return {};
    Outcome outcome = Make(std::move(edit), OnCanvas::NotYet);
    outcome.number = first;
    return outcome;
}

InkDrawing::Outcome InkDrawing::Make(Edit edit, OnCanvas onCanvas) {
    edits_.push_back(std::move(edit));
    ++done_;
    if (onCanvas == OnCanvas::NotYet) return Show(edits_.back(), &Change::after);
    const Change& change = edits_.back().back();
    Entry& entry = entries_[change.entry];
    entry.look = change.after;
    entry.bounds = BoundsOf(entry.look);
    if (entries_.size() >= checkpoints_.Latest() + InkCheckpoints::interval) RenewCheckpoint(entries_.size(), *canvas_);
    return {true, entry.bounds, entry.number};
}

InkDrawing::Outcome InkDrawing::Undo() {
    if (!CanUndo()) return {};
    return Show(edits_[--done_], &Change::before);
}

InkDrawing::Outcome InkDrawing::Redo() {
    if (!CanRedo()) return {};
    return Show(edits_[done_++], &Change::after);
}

InkDrawing::Outcome InkDrawing::Show(const Edit& edit, Look Change::*look) {
    Rect region;
    for (const Change& change : edit) {
        Entry& entry = entries_[change.entry];
        region = region.Union(entry.bounds);
        entry.look = change.*look;
        entry.bounds = BoundsOf(entry.look);
        region = region.Union(entry.bounds);
    }
    RepaintFrom(edit.front().entry, region);
    return {true, region, entries_[edit.front().entry].number};
}

void InkDrawing::Repaint(const Rect& region) { RepaintFrom(entries_.size(), region.Intersection(*canvas_)); }

void InkDrawing::RepaintFrom(std::size_t firstChanged, const Rect& region) {
    if (!region.IsValid()) return;
    std::size_t start = checkpoints_.LatestUpTo(firstChanged);
    checkpoints_.Restore(start, *canvas_, region);
    for (std::size_t i = start; i < entries_.size(); ++i) {
        if (entries_[i].look.IsThere()) PaintEntry(entries_[i], region);
        const std::size_t behind = i + 1;
        const bool isDue = behind >= checkpoints_.Latest() + InkCheckpoints::interval;
        if (behind > firstChanged && (isDue || checkpoints_.Has(behind)))
            RenewCheckpoint(behind, isDue ? canvas_->Bounds() : region);
    }
}

void InkDrawing::PaintEntry(const Entry& entry, const Rect& region) {
    const Rect area = entry.bounds.Intersection(region);
    if (!area.IsValid()) return;
    if (entry.look.clears) {
        checkpoints_.Restore(0, *canvas_, area);
    } else {
        painter_.Paint(*entry.look.ink, *canvas_, area);
    }
}

void InkDrawing::RenewCheckpoint(std::size_t entries, const Rect& region) {
    checkpoints_.Store(entries, *canvas_, region, [this](std::size_t first, std::size_t last, const Rect& area) {
        return IsPainted(first, last, area);
    });
}

bool InkDrawing::IsPainted(std::size_t first, std::size_t last, const Rect& area) const {
    for (std::size_t i = first; i < last; ++i) {
        if (entries_[i].look.IsThere() && entries_[i].bounds.Intersects(area)) return true;
    }
    return false;
}

}  // namespace chalkpane
