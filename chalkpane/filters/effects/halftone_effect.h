#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "chalkpane/filters/filter_class.h"
#include "chalkpane/filters/point_filter.h"

namespace chalkpane {

// "Halftone": a rotated screen of dots or lines, thicker where the picture is darker; one screen in black, or one for
// each colour.
class HalftoneEffect final : public FilterClass<HalftoneEffect, PointFilter> {
public:
    static constexpr FilterIdentity identity{"Halftone", "Halftone", "Effects"};
    static constexpr auto Parameters() {
        using Self = HalftoneEffect;
        return std::to_array<ParameterRow<Self>>({
            // code label           unique name    default range     field
            {0, "Size", "Size", 10, {2, 100}, &Self::m_size},
            {1, "Softness", "Softness", 0.3, {0, 1}, &Self::m_softness},
            {2, "Shape", "Shape", 0, {}, &Self::m_shape},
            {3, "Color", "Colour", false, {}, &Self::m_colour},
            {4, "Red/Black Angle", "Red Angle", 0.0, {0, 360}, &Self::m_redAngle, angle0To360},
            {5, "Green Angle", "Green Angle", 0.0, {0, 360}, &Self::m_greenAngle, angle0To360},
            {6, "Blue Angle", "Blue Angle", 0.0, {0, 360}, &Self::m_blueAngle, angle0To360},
        });
    }
    static std::span<const std::string_view> Choices(std::uint8_t code);

    HalftoneEffect() = default;
    HalftoneEffect(const HalftoneEffect&) = default;

    // The angles of green and blue mean something in colour only.
    void valuesChanged() override;
    void BeginRun(const Image& source) override;
    void EndRun() override {
        m_tile = {};
        m_shades = {};
    }
    void ProcessRow16(std::int32_t firstX, std::int32_t lastX, std::int32_t y,
                      std::span<std::uint16_t> pixels) override;
    void ProcessRow8(std::int32_t firstX, std::int32_t lastX, std::int32_t y, std::span<std::uint8_t> pixels) override;

private:
    struct Turn {
        float sine = 0.0F;
        float cosine = 1.0F;
    };

    // So many pixels of a row are worked on together.
    static constexpr std::size_t block = 256;
    using Block = std::array<std::int32_t, block>;

    // A level of 0 to 255 by a threshold; not clamped, and NaN where it is 0 / 0.
    [[nodiscard]] float Screened(float level, std::int32_t threshold) const;
    // The thresholds of a rotated screen for `count` pixels of row y from x on.
    template <bool far>
    void Places(std::int32_t x, std::int32_t y, std::size_t count, const Turn& turn, Block& places) const;
    void Thresholds(std::int32_t x, std::int32_t y, std::size_t count, const Turn& turn, Block& thresholds) const;
    template <typename F>
    void Row(std::int64_t x, std::int32_t y, std::span<typename F::Channel> pixels) const;
    template <typename F>
    void GreyBlock(std::int32_t x, std::int32_t y, std::span<typename F::Channel> pixels) const;
    template <typename F>
    void ColourBlock(std::int32_t x, std::int32_t y, std::span<typename F::Channel> pixels) const;

    std::int32_t m_size = 10;  // pixels
    float m_softness = 0.3F;
    std::uint8_t m_shape = 0;
    bool m_colour = false;
    float m_redAngle = 0.0F;  // degrees
    float m_greenAngle = 0.0F;
    float m_blueAngle = 0.0F;

    // Of the run.
    std::vector<std::uint8_t> m_tile;  // thresholds, rows of `m_tileSize`
    std::int32_t m_tileSize = 1;
    std::vector<std::uint16_t> m_shades;  // channels by whole level less threshold, from `lowestDifference` on
    std::int32_t m_greyRadius = 0;        // on both sides of a threshold, within which levels are grey
    Turn m_red;
    Turn m_green;
    Turn m_blue;
};

}  // namespace chalkpane
