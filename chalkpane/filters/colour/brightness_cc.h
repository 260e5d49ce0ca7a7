#pragma once

#include <algorithm>
#include <array>
#include <vector>

#include "chalkpane/filters/luma.h"
#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "Brightness/Contrast": one table for brightness, contrast and gamma, and a saturation around the luma.
class BrightnessCC final : public RowFilter<BrightnessCC> {
public:
    static constexpr FilterIdentity identity{"BrightnessContrast", "Brightness/Contrast", "Color Correctors"};
    static constexpr auto Parameters() {
        using Self = BrightnessCC;
        return std::to_array<ParameterRow<Self>>({
            {0, "Brightness", "Brightness", 0.0, {-1, 1}, &Self::m_brightness, percent},
            {1, "Contrast", "Contrast", 0.0, {-1, 1}, &Self::m_contrast, percent},
            {2, "Gamma", "Gamma", 0.0, {-1, 1}, &Self::m_gamma, percent},
            {3, "Saturation", "Saturation", 0.0, {-1, 1}, &Self::m_saturation, percent},
        });
    }

    [[nodiscard]] bool IsIdentity(const Image& source) const;
    void BeginRun(const Image& source) override;
    void EndRun() override { m_table = {}; }

    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        if (m_saturationFactor == 0) return MapChannels<F>(pixels, m_table.data());
        // So far the products with any difference of channels stay within 32 bits.
        const bool narrow = m_saturationFactor >= -32767 && m_saturationFactor <= 32767;
        narrow ? MapAndSaturate<F, std::int32_t>(pixels) : MapAndSaturate<F, std::int64_t>(pixels);
    }

private:
    // What the settings come to, in per cent of no change.
    struct Percents {
        std::int32_t brightness, contrast, saturation;
        double gamma;
    };
    [[nodiscard]] Percents Settings() const;

    // Blocks of pixels take each step together, so that only the look-ups go pixel by pixel.
    template <typename F, typename Product>
    void MapAndSaturate(std::span<typename F::Channel> pixels) const {
        constexpr std::size_t block = 256;
        std::array<std::int32_t, block> lumas;
        const Product factor = m_saturationFactor;
        for (; pixels.size() >= 4; pixels = pixels.subspan(std::min(4 * block, pixels.size()))) {
            const auto part = pixels.first(std::min(4 * block, pixels.size()));
            // DIFFERS: 8 bits take the luma behind the table, 14 bits the luma before it.
            if constexpr (F::bits == 8) MapChannels<F>(part, m_table.data());
            MeasureLumas<F>(part, lumas.data());
            if constexpr (F::bits != 8) MapChannels<F>(part, m_table.data());
            const std::int32_t* luma = lumas.data();
            ForEachColour<F>(part, [&luma, factor](auto& blue, auto& green, auto& red, auto& /*alpha*/) {
                const auto saturated = [factor, grey = *luma](std::int32_t value) {
                    const Product more = ((value - grey) * factor) >> F::bits;
                    return static_cast<std::int32_t>(std::clamp<Product>(value + more, 0, F::fullScale));
                };
                blue = saturated(blue);
                green = saturated(green);
                red = saturated(red);
                ++luma;
            });
        }
    }
    template <typename F>
    static void MeasureLumas(std::span<const typename F::Channel> pixels, std::int32_t* lumas) {
        for (std::size_t i = 0; i < pixels.size() / 4; ++i) {
            const auto pixel = detail::PixelWords<F>::Load(pixels.data() + 4 * i);
            lumas[i] = LumaOf<F>(pixel.Red(), pixel.Green(), pixel.Blue());
        }
    }

    // DIFFERS from the defaults, which are 0: a fresh object is no identity.
    double m_brightness = 0.5;
    double m_contrast = 0.5;
    double m_gamma = 0.5;
    double m_saturation = 0.5;
    std::vector<std::uint16_t> m_table;
    std::int32_t m_saturationFactor = 0;  // of 256 or 16384
};

}  // namespace chalkpane
