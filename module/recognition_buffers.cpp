#include <memory>

#include "module/memory_guard.h"
#include "module/shape_recognition.h"

namespace chalkpane {

void SizeRecognitionBuffers(PluginInstance& instance, bool wanted) noexcept {
    if (!wanted) {
        instance.strokePoints.reset();
        instance.houghAccumulator.reset();
        instance.recognitionBuffersReady = false;
        return;
    }
    if (instance.recognitionBuffersReady) return;
    instance.recognitionBuffersReady = WithinMemory([&] {
        const std::int32_t room = instance.canvasWidth * instance.canvasHeight;
        instance.strokePoints = std::make_unique<Vector3[]>(static_cast<std::size_t>(room));
        // Not zeroed here: each search clears what it counts in.
        instance.houghAccumulator = std::make_unique_for_overwrite<std::uint32_t[]>(houghCounters);
    });
    if (!instance.recognitionBuffersReady) instance.strokePoints.reset();
}

}  // namespace chalkpane
