#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "chalkpane/filters/filter_class.h"

namespace chalkpane {

// "Film Grain": soft noise in each colour, another in every frame. `Advance` draws it for the rows of an image; before
// that there is none. A region limits nothing. Masks come back as they are.
class FilmGrainEffect final : public FilterClass<FilmGrainEffect, Filter> {
public:
    static constexpr FilterIdentity identity{"Film Grain", "Film Grain", "Grain"};
    static constexpr auto Parameters() {
        using Self = FilmGrainEffect;
        return std::to_array<ParameterRow<Self>>({
            // code label       unique name    default range  field
            {0, "Red Level", "Red Level", 0.0, {0, 1}, &Self::m_redLevel},
            {1, "Red Size", "Red Size", 1.0, {1, 5}, &Self::m_redSize},
            {2, "Green Level", "Green Level", 0.0, {0, 1}, &Self::m_greenLevel},
            {3, "Green Size", "Green Size", 1.0, {1, 5}, &Self::m_greenSize},
            {4, "Blue Level", "Blue Level", 0.0, {0, 1}, &Self::m_blueLevel},
            {5, "Blue Size", "Blue Size", 1.0, {1, 5}, &Self::m_blueSize},
            {6, "RandomSeed", "RandomSeed", -1, {0, 10000}, &Self::m_randomSeed},
        });
    }

    FilmGrainEffect() = default;
    // The grain that was drawn is not copied.
    FilmGrainEffect(const FilmGrainEffect& other);

    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;
    // Draws the grain of frame `frame` for the rows of `image`, which may be null: then nothing changes.
    void Advance(const Image* image, std::int32_t frame, std::int32_t c, std::int32_t d, std::int32_t e,
                 std::int32_t f) override;
    // Each set starts with a seed of its own, taken from the clock.
    DataSet* MakeValues(bool animated, const AnimationClock* clock, const LayerProvider* layers) override;

private:
    static constexpr std::size_t channelCount = 3;  // red, green, blue

    [[nodiscard]] std::array<float, channelCount> Levels() const { return {m_redLevel, m_greenLevel, m_blueLevel}; }
    [[nodiscard]] std::array<float, channelCount> Sizes() const { return {m_redSize, m_greenSize, m_blueSize}; }
    // Support radius of the blur that softens the grain: pixels by which it extends beyond the picture.
    [[nodiscard]] std::int32_t SupportRadius() const;
    template <typename F>
    void Grain(const Image& source, Image& result) const;

    float m_redLevel = 0.0F;
    float m_redSize = 1.0F;  // pixels
    float m_greenLevel = 0.0F;
    float m_greenSize = 1.0F;
    float m_blueLevel = 0.0F;
    float m_blueSize = 1.0F;
    std::int32_t m_randomSeed = -1;

    // Drawn by `Advance`. A row's grain is every `m_rowStep`-th number of the table from `m_rowStart` on.
    std::vector<std::int16_t> m_grainTable;  // 65536 numbers, or none yet
    std::int32_t m_firstRow = 0;
    std::array<std::vector<std::uint16_t>, channelCount> m_rowStart;
    std::array<std::vector<std::uint16_t>, channelCount> m_rowStep;
};

}  // namespace chalkpane
