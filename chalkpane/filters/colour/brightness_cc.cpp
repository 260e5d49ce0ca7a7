#include "chalkpane/filters/colour/brightness_cc.h"

#include <algorithm>
#include <cmath>

#include "chalkpane/filters/colour/fill_table.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {

BrightnessCC::Percents BrightnessCC::Settings() const {
    // A hundred thousand times the colour is as good as any more, and keeps all products in range.
    const auto inPercent = [](double setting) {
        return std::clamp(Truncated((setting + 1) * 100 + 0.5), -10000000, 10000000);
    };
    return {inPercent(m_brightness), inPercent(m_contrast), inPercent(m_saturation),
            m_gamma > -1 ? m_gamma + 1 : 0.001};
}

bool BrightnessCC::IsIdentity(const Image& /*source*/) const {
    const Percents settings = Settings();
    return settings.brightness == 100 && settings.contrast == 100 && settings.saturation == 100 &&
           std::fabs(settings.gamma - 1) < 0.001;
}

void BrightnessCC::BeginRun(const Image& source) {
    const Percents settings = Settings();
    WithFormatOf(source, [this, &settings](auto format) {
        using F = decltype(format);
        m_saturationFactor =
            static_cast<std::int32_t>((std::int64_t{settings.saturation} - 100) * (F::fullScale + 1) / 100);
        m_table.resize(static_cast<std::size_t>(F::fullScale) + 1);
        FillTable(F::fullScale, [this, &settings](std::int32_t i) {
            const double part = static_cast<double>(i) / F::fullScale;
            double v = ((part * (settings.brightness / 100.0) - 0.5) * settings.contrast) / 100 + 0.5;
            v = v < 0 ? 0 : (v > 1 ? 1 : std::pow(v, 1 / settings.gamma));
            m_table[static_cast<std::size_t>(i)] = static_cast<std::uint16_t>(Truncated(v * F::fullScale + 0.5));
        });
    });
}

}  // namespace chalkpane
