#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <type_traits>

#include "chalkpane/base/call_widest.h"
#include "chalkpane/filters/byte_scale.h"
#include "chalkpane/filters/colour_loop.h"
#include "chalkpane/filters/filter_class.h"
#include "chalkpane/filters/point_filter.h"
#include "chalkpane/filters/row_chain.h"
#include "chalkpane/filters/work_area.h"

namespace chalkpane {

// A point filter whose row is one template over the two pixel formats. A class gives
//     template <typename F> void Row(std::span<typename F::Channel> pixels) const;    rewrites B, G, R, A in place
//     bool IsIdentity(const Image& source) const;      optional: true where the settings change nothing of the source
// An identity is a plain copy of the source, whatever the region.
template <typename Self>
class RowFilter : public FilterClass<Self, PointFilter>, public RowStepper {
public:
    using FilterClass<Self, PointFilter>::FilterClass;

    // A class with an `Apply` of its own has something to do before the rows.
    [[nodiscard]] bool StepsByRows() const override {
        return std::is_same_v<decltype(&Self::Apply), decltype(&RowFilter::Apply)>;
    }
    [[nodiscard]] RowStep StepOver([[maybe_unused]] const Image& source) const override {
        if (!StepsByRows()) return RowStep::WholePicture;
        if constexpr (requires { AsSelf().IsIdentity(source); })
            if (AsSelf().IsIdentity(source)) return RowStep::Nothing;
        return RowStep::Rows;
    }

    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override {
        if constexpr (requires { AsSelf().IsIdentity(source); })
            if (AsSelf().IsIdentity(source)) return ApplyAsCopy(source, result);
        PointFilter::Apply(source, result, fast, region, expand);
    }
    void ProcessRow8(std::int32_t /*firstX*/, std::int32_t /*lastX*/, std::int32_t /*y*/,
                     std::span<std::uint8_t> pixels) override {
        RunRow<PixelFormat8>(pixels);
    }
    void ProcessRow16(std::int32_t /*firstX*/, std::int32_t /*lastX*/, std::int32_t /*y*/,
                      std::span<std::uint16_t> pixels) override {
        RunRow<PixelFormat14>(pixels);
    }

private:
    template <typename F>
    void RunRow(std::span<typename F::Channel> pixels) const {
        CallWidest([&] { AsSelf().template Row<F>(pixels); });
    }

    [[nodiscard]] const Self& AsSelf() const { return static_cast<const Self&>(*this); }
};

// Truncated and limited to the channel's range; NaN is 0.
template <typename F>
[[nodiscard]] inline std::int32_t Limited(float value) {
    constexpr auto fullScale = static_cast<float>(F::fullScale);
    const float positive = value > 0.0F ? value : 0.0F;
    return static_cast<std::int32_t>(positive < fullScale ? positive : fullScale);
}
template <typename F>
[[nodiscard]] inline std::int32_t Limited(std::int32_t value) {
    return value < 0 ? 0 : (value > F::fullScale ? F::fullScale : value);
}
template <typename F, typename Number>
[[nodiscard]] inline typename F::Channel LimitedChannel(Number value) {
    return static_cast<typename F::Channel>(Limited<F>(value));
}

// Every colour channel through a table of full scale + 1 entries; higher bits of a word are not looked at.
template <typename F>
inline void MapChannels(std::span<typename F::Channel> pixels, const std::uint16_t* table) {
    const auto mapped = [table](auto channel) {
        return static_cast<typename F::Channel>(table[channel & F::fullScale]);
    };
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
        const auto blue = mapped(pixels[i]);
        const auto green = mapped(pixels[i + 1]);
        const auto red = mapped(pixels[i + 2]);
        pixels[i] = blue;
        pixels[i + 1] = green;
        pixels[i + 2] = red;
    }
}

// Truncates towards zero; what an integer cannot hold becomes the nearest one that can, and NaN 0.
[[nodiscard]] inline std::int32_t Truncated(double value) {
    if (std::isnan(value)) return 0;
    constexpr double low = std::numeric_limits<std::int32_t>::min();
    constexpr double high = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(value < low ? low : (value > high ? high : value));
}

}  // namespace chalkpane
