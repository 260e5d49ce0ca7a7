#include "module/undo_history.h"

#include <algorithm>
#include <cstring>

#include "module/memory_guard.h"

namespace chalkpane {
namespace {

Snapshot NewSnapshot(const CanvasPixels& pixels) {
    auto snapshot = std::make_unique_for_overwrite<std::byte[]>(pixels.byteSize);
    std::memcpy(snapshot.get(), pixels.bytes, pixels.byteSize);
    return snapshot;
}

std::int32_t WantedRingSize(const PluginInstance& instance) { return std::clamp(instance.MaxUndos, 0, undoLimit); }

std::int32_t RingSize(const PluginInstance& instance) {
    return instance.undoRing ? static_cast<std::int32_t>(instance.undoRing->size()) : 0;
}

std::byte* RingEntry(const PluginInstance& instance, std::int32_t index) {
    return (*instance.undoRing)[static_cast<std::size_t>(index)].get();
}

// Moves on to the next entry, coming round at the end, and saves the state before the last change there.
void SaveIntoNextEntry(PluginInstance& instance, std::size_t byteSize) {
    if (++instance.undoIndex >= RingSize(instance)) instance.undoIndex = 0;
    if (RingSize(instance) == 0) return;
    std::memcpy(RingEntry(instance, instance.undoIndex), instance.currentSnapshot.get(), byteSize);
}

void DropOldestEntry(PluginInstance& instance) {
    const std::int32_t size = RingSize(instance);
    std::int32_t victim = size == 1 ? 0 : instance.undoIndex + 1;
    if (victim >= size) {
        victim = 0;
        --instance.undoIndex;
    }
    instance.undoRing->erase(instance.undoRing->begin() + victim);
}

void InsertNewestEntry(PluginInstance& instance, const CanvasPixels& pixels) {
    const std::int32_t position = std::min(instance.undoIndex + 1, RingSize(instance));
    auto snapshot = NewSnapshot(pixels);
    instance.undoRing->insert(instance.undoRing->begin() + position, std::move(snapshot));
}

}  // namespace

void FillUndoRing(PluginInstance& instance) {
    const CanvasPixels pixels = instance.canvasSurface->GetPixels();
    instance.currentSnapshot = std::make_unique_for_overwrite<std::byte[]>(pixels.byteSize);
    instance.undoRing = std::make_unique<UndoRing>();
    instance.undoRing->reserve(undoLimit);
    for (std::int32_t i = 0; i < WantedRingSize(instance); ++i) instance.undoRing->push_back(NewSnapshot(pixels));
    instance.undoIndex = 0;
    std::memcpy(instance.currentSnapshot.get(), pixels.bytes, pixels.byteSize);
}

bool AdjustUndoRing(PluginInstance& instance) noexcept {
    if (!instance.canvasSurface || !instance.undoRing) return true;
    const std::int32_t wanted = WantedRingSize(instance);
    while (RingSize(instance) > wanted) DropOldestEntry(instance);
    return WithinMemory([&] {
        const CanvasPixels pixels = instance.canvasSurface->GetPixels();
        while (RingSize(instance) < wanted) InsertNewestEntry(instance, pixels);
    });
}

void PushUndoSnapshot(PluginInstance& instance) {
    if (!instance.canvasSurface) return;
    const CanvasPixels pixels = instance.canvasSurface->GetPixels();
    if (RingSize(instance) > 0) SaveIntoNextEntry(instance, pixels.byteSize);
    std::memcpy(instance.currentSnapshot.get(), pixels.bytes, pixels.byteSize);
}

void RestoreUndoSnapshot(PluginInstance& instance) {
    if (!instance.canvasSurface || RingSize(instance) == 0) return;
    const CanvasPixels pixels = instance.canvasSurface->GetPixels();
    const std::byte* saved = RingEntry(instance, instance.undoIndex);
    std::memcpy(pixels.bytes, saved, pixels.byteSize);
    // Later shape commits must not bring back what was undone.
    std::memcpy(instance.shapeSurface->GetPixels().bytes, saved, pixels.byteSize);
    std::memcpy(instance.currentSnapshot.get(), pixels.bytes, pixels.byteSize);
    if (--instance.undoIndex < 0) instance.undoIndex = RingSize(instance) - 1;
    instance.fullUploadPending = true;
}

void ClearCanvas(PluginInstance& instance) {
    if (!instance.canvasSurface) return;
    instance.canvasSurface->ClearPixels();
    instance.shapeSurface->ClearPixels();
    const CanvasPixels pixels = instance.canvasSurface->GetPixels();
    SaveIntoNextEntry(instance, pixels.byteSize);
    std::memcpy(instance.currentSnapshot.get(), pixels.bytes, pixels.byteSize);
    instance.fullUploadPending = true;
}

}  // namespace chalkpane
