#include "chalkpane/filters/distort/sample_row.h"

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/image/sampling.h"

namespace chalkpane {

void SampleRow8(const Image& image, std::span<const float> x, std::span<const float> y, std::int32_t edgeMode,
                std::span<Pixel8> pixels) {
    std::size_t i = 0;
    if constexpr (builtWithAvx2)
        if (HasAvx2()) i = SampleRow8Avx2(image, x, y, edgeMode, pixels);
    for (; i < pixels.size(); ++i) pixels[i] = SampleBilinear8(image, x[i], y[i], edgeMode);
}

void SampleRow14(const Image& image, std::span<const float> x, std::span<const float> y, std::int32_t edgeMode,
                 std::span<Pixel14> pixels) {
    std::size_t i = 0;
    if constexpr (builtWithAvx2)
        if (HasAvx2()) i = SampleRow14Avx2(image, x, y, edgeMode, pixels);
    for (; i < pixels.size(); ++i) pixels[i] = SampleBilinear14(image, x[i], y[i], edgeMode);
}

}  // namespace chalkpane
