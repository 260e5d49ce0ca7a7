#pragma once

#include <vector>

#include "filters/luma.h"
#include "filters/row_filter.h"

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
        const std::uint16_t* const table = m_table.data();
        const auto mapped = [table](typename F::Channel channel) -> std::int32_t {
            return table[channel & F::fullScale];
        };
        if (m_saturationFactor == 0) {
            for (std::size_t i = 0; i + 3 < pixels.size(); i += 4)
                for (std::size_t c = i; c < i + 3; ++c) pixels[c] = static_cast<typename F::Channel>(mapped(pixels[c]));
            return;
        }
        for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
            const std::int32_t blue = mapped(pixels[i]);
            const std::int32_t green = mapped(pixels[i + 1]);
            const std::int32_t red = mapped(pixels[i + 2]);
            // DIFFERS: 8 bits take the luma behind the table, 14 bits the luma before it.
            const std::int32_t luma =
                F::bits == 8 ? LumaByte(red, green, blue) : LumaWord(pixels[i + 2], pixels[i + 1], pixels[i]);
            pixels[i] = Saturated<F>(blue, luma);
            pixels[i + 1] = Saturated<F>(green, luma);
            pixels[i + 2] = Saturated<F>(red, luma);
        }
    }

private:
    // What the settings come to, in per cent of no change.
    struct Percents {
        std::int32_t brightness, contrast, saturation;
        double gamma;
    };
    [[nodiscard]] Percents Settings() const;

    template <typename F>
    [[nodiscard]] typename F::Channel Saturated(std::int32_t value, std::int32_t luma) const {
        const std::int64_t more = (std::int64_t{value - luma} * m_saturationFactor) >> F::bits;
        return LimitedChannel<F>(static_cast<std::int32_t>(std::clamp<std::int64_t>(value + more, 0, F::fullScale)));
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
