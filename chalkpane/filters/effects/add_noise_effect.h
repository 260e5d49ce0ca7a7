#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "chalkpane/filters/filter_class.h"
#include "chalkpane/filters/noise/grain_lanes.h"
#include "chalkpane/filters/noise/grain_random.h"
#include "chalkpane/filters/noise/sparse_rows.h"
#include "chalkpane/filters/point_filter.h"

namespace chalkpane {

// "Add Noise": random numbers added to a share of the pixels. The same picture gets the same noise at every run.
class AddNoiseEffect final : public FilterClass<AddNoiseEffect, PointFilter> {
public:
    static constexpr FilterIdentity identity{"Add Noise", "Add Noise", "Effects"};
    static constexpr auto Parameters() {
        using Self = AddNoiseEffect;
        return std::to_array<ParameterRow<Self>>({
            // code label     unique name     default range   field
            {0, "Level", "Level", 0.0, {0, 1}, &Self::m_level},
            {1, "Distribution", "Distribution", 0, {}, &Self::m_distribution},
            {2, "Channels", "Channels", 0, {}, &Self::m_channels},
            {3, "Density %", "Density", 100, {0, 100}, &Self::m_density},
        });
    }
    static std::span<const std::string_view> Choices(std::uint8_t code);

    void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
               bool expand) override;
    void ProcessRow16(std::int32_t firstX, std::int32_t lastX, std::int32_t y,
                      std::span<std::uint16_t> pixels) override;
    void ProcessRow8(std::int32_t firstX, std::int32_t lastX, std::int32_t y, std::span<std::uint8_t> pixels) override;
    void Prepare() override { m_random.Seed(0); }
    // The sequence runs on from row to row: where every pixel draws the same, to any row at once, and elsewhere where
    // the rows' starts have been found.
    [[nodiscard]] bool CanRunInParallel() const override { return EveryPixelPasses() || !m_sparseRows.IsEmpty(); }

private:
    static constexpr std::int32_t wholeDensity = 99;  // the largest remainder that a pixel draws

    // The rows of the run under way, where every pixel passes.
    struct Rows {
        GrainJump each;   // draws of a row
        GrainJump piece;  // draws of a piece of a row
        std::size_t piecePixels = 0;
        GrainLanes lanes;  // of a piece
    };

    [[nodiscard]] bool EveryPixelPasses() const { return m_density >= wholeDensity; }
    void PrepareRows(const Rect& area);
    void FindSparseRows(const Rect& area);
    [[nodiscard]] GrainDraws Draws() const;
    template <typename F>
    void AddNoise(std::int32_t y, std::span<typename F::Channel> pixels);
    template <typename F>
    void AddInOrder(std::span<typename F::Channel> pixels, GrainRandom& random) const;

    float m_level = 0.0F;
    std::uint8_t m_distribution = 0;
    std::uint8_t m_channels = 0;
    std::int32_t m_density = 100;  // per cent
    GrainRandom m_random;
    std::int32_t m_firstRow = 0;  // of the run under way
    Rows m_rows;
    SparseRows m_sparseRows;
};

}  // namespace chalkpane
