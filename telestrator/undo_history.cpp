#include <algorithm>
#include <cstring>

#include "telestrator/telestrator.h"

namespace chalkpane {

// The undo of the telestrator: a ring of whole-canvas copies, no command log. There is no count of valid entries, so
// after as many undos as the ring has entries it comes round to newer states again; and no redo.

namespace {

Snapshot NewSnapshot(const CanvasPixels& pixels) {
    auto snapshot = std::make_unique_for_overwrite<std::byte[]>(pixels.byteSize);
    std::memcpy(snapshot.get(), pixels.bytes, pixels.byteSize);
    return snapshot;
}

std::int32_t ClampedRingSize(std::int32_t wanted) { return std::clamp(wanted, 0, undoLimit); }

void DropOldestEntry(UndoRing& ring, std::int32_t& newest) {
    const auto size = static_cast<std::int32_t>(ring.size());
    std::int32_t victim = size == 1 ? 0 : newest + 1;
    if (victim >= size) {
        victim = 0;
        --newest;
    }
    ring.erase(ring.begin() + victim);
}

void InsertNewestEntry(UndoRing& ring, std::int32_t newest, const CanvasPixels& pixels) {
    const std::int32_t position = std::min(newest + 1, static_cast<std::int32_t>(ring.size()));
    auto snapshot = NewSnapshot(pixels);
    ring.insert(ring.begin() + position, std::move(snapshot));
}

}  // namespace

std::int32_t Telestrator::RingSize() const { return undoRing ? static_cast<std::int32_t>(undoRing->size()) : 0; }

void Telestrator::FillUndoRing(std::int32_t size) {
    const CanvasPixels pixels = canvasSurface->GetPixels();
    currentSnapshot = std::make_unique_for_overwrite<std::byte[]>(pixels.byteSize);
    undoRing = std::make_unique<UndoRing>();
    undoRing->reserve(undoLimit);
    for (std::int32_t i = 0; i < ClampedRingSize(size); ++i) undoRing->push_back(NewSnapshot(pixels));
    undoIndex = 0;
    std::memcpy(currentSnapshot.get(), pixels.bytes, pixels.byteSize);
}

bool Telestrator::AdjustUndoRing(const TelestratorSettings& settings) noexcept {
    if (!canvasSurface || !undoRing) return true;
    const std::int32_t wanted = ClampedRingSize(settings.maxUndos);
    while (RingSize() > wanted) DropOldestEntry(*undoRing, undoIndex);
    return memory.Run([&] {
        const CanvasPixels pixels = canvasSurface->GetPixels();
        while (RingSize() < wanted) InsertNewestEntry(*undoRing, undoIndex, pixels);
    });
}

// Moves on to the next entry, coming round at the end, and saves the state before the last change there.
void Telestrator::SaveIntoNextEntry() {
    if (++undoIndex >= RingSize()) undoIndex = 0;
    if (RingSize() == 0) return;
    std::byte* entry = (*undoRing)[static_cast<std::size_t>(undoIndex)].get();
    std::memcpy(entry, currentSnapshot.get(), canvasSurface->GetPixels().byteSize);
}

void Telestrator::PushUndoSnapshot() noexcept {
    if (!canvasSurface) return;
    const CanvasPixels pixels = canvasSurface->GetPixels();
    if (RingSize() > 0) SaveIntoNextEntry();
    std::memcpy(currentSnapshot.get(), pixels.bytes, pixels.byteSize);
}

void Telestrator::RestoreUndoSnapshot() noexcept {
    if (!canvasSurface || RingSize() == 0) return;
    ForgetDraft();
    const CanvasPixels pixels = canvasSurface->GetPixels();
    const std::byte* saved = (*undoRing)[static_cast<std::size_t>(undoIndex)].get();
    std::memcpy(pixels.bytes, saved, pixels.byteSize);
    // Later shape commits must not bring back what was undone.
    std::memcpy(shapeSurface->GetPixels().bytes, saved, pixels.byteSize);
    std::memcpy(currentSnapshot.get(), pixels.bytes, pixels.byteSize);
    if (--undoIndex < 0) undoIndex = RingSize() - 1;
    fullUploadPending = true;
}

void Telestrator::ClearCanvas() noexcept {
    if (!canvasSurface) return;
    ForgetDraft();
    canvasSurface->ClearPixels();
    shapeSurface->ClearPixels();
    const CanvasPixels pixels = canvasSurface->GetPixels();
    SaveIntoNextEntry();
    std::memcpy(currentSnapshot.get(), pixels.bytes, pixels.byteSize);
    fullUploadPending = true;
}

}  // namespace chalkpane
