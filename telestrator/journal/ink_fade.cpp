#include "telestrator/journal/ink_fade.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace chalkpane {

bool InkFade::PassField(const FadeSettings& settings) {
    if (settings.waitFields < 0) return false;
    const std::int64_t gone = std::int64_t{settings.waitFields} + std::max(settings.overFields, 1);
    if (fields_ + std::int64_t{1} < gone) {
        ++fields_;
        return false;
    }
    fields_ = 0;
    return true;
}

double InkFade::Factor(const FadeSettings& settings) const {
    if (settings.waitFields < 0 || fields_ <= settings.waitFields) return 1.0;
    const double passed = static_cast<double>(fields_ - settings.waitFields) / std::max(settings.overFields, 1);
    return std::max(0.0, 1.0 - passed);
}

void WriteFaded(const CanvasPixels& canvas, double factor, std::span<std::byte> out) {
    std::array<std::byte, 256> faded{};
    for (std::size_t value = 0; value < faded.size(); ++value)
        faded[value] = static_cast<std::byte>(static_cast<int>(static_cast<double>(value) * factor + 0.5));
    const std::span<const std::byte> pixels(canvas.bytes, std::min(canvas.byteSize, out.size()));
    std::ranges::transform(pixels, out.begin(),
                           [&](std::byte value) { return faded[static_cast<std::size_t>(value)]; });
}

}  // namespace chalkpane
