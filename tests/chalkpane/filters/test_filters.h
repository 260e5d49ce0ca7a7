#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "chalkpane/filters/filter_class.h"
#include "chalkpane/filters/point_filter.h"
#include "chalkpane/image/image.h"

// Filters that exist for tests alone.
namespace chalkpane::test {

template <typename Self>
constexpr std::array<ParameterRow<Self>, 0> noParameters{};

// A point filter that inverts colour. Below zero the threshold is inert; at or above it only that row is worked on.
class InvertForTest final : public FilterClass<InvertForTest, PointFilter> {
public:
    static constexpr FilterIdentity identity{"Invert For Test", "invert", "Test"};
    static constexpr std::uint8_t amountCode = 0;
    static constexpr std::uint8_t rowCode = 1;
    static constexpr auto Parameters() {
        using Self = InvertForTest;
        return std::to_array<ParameterRow<Self>>({
            {amountCode, "Amount", "Amount", 1.0, {0, 1}, &Self::m_amount},
            {rowCode, "Row", "Row", 3, {0, 9}, &Self::m_row},
        });
    }
    void ProcessRow8(std::int32_t /*firstX*/, std::int32_t /*lastX*/, std::int32_t /*y*/,
                     std::span<std::uint8_t> pixels) override {
        for (std::size_t i = 0; i < pixels.size(); ++i)
            if (i % 4 != 3) pixels[i] = static_cast<std::uint8_t>(255 - pixels[i]);
    }
    void ProcessRow16(std::int32_t /*firstX*/, std::int32_t /*lastX*/, std::int32_t /*y*/,
                      std::span<std::uint16_t> pixels) override {
        for (std::size_t i = 0; i < pixels.size(); ++i)
            if (i % 4 != 3) pixels[i] = static_cast<std::uint16_t>(16383 - pixels[i]);
    }
    double m_amount = 1.0;
    std::int32_t m_row = -1;
};

// A spatial filter: moves the picture, and its mask, by a number of pixels to the right.
class ShiftForTest final : public FilterClass<ShiftForTest, Filter> {
public:
    static constexpr FilterIdentity identity{"Shift For Test", "Shift", "Test"};
    static constexpr auto Parameters() {
        using Self = ShiftForTest;
        return std::to_array<ParameterRow<Self>>({{0, "Distance", "Distance", 10, {0, 99}, &Self::m_distance}});
    }
    void Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* /*region*/,
               bool expand) override {
        depths.push_back(source.depth);
        expands.push_back(expand);
        result = source.Clone();
        result->Translate(m_distance, 0);
    }
    [[nodiscard]] bool MovesPixels() const override { return true; }
    [[nodiscard]] bool FiltersMask() const override { return m_filtersMask; }
    [[nodiscard]] std::int32_t PreferredDepth(std::int32_t depth) const override {
        return m_bytesOnly ? static_cast<std::int32_t>(Depth::Eight) : depth;
    }
    void BeginStep() override { ++begun; }
    void EndStep() override { ++ended; }
    [[nodiscard]] Rect InputRegion(const Rect& /*rect*/, const Rect& region) const override {
        Rect moved = region;
        moved.Inflate(m_distance);
        return moved;
    }
    [[nodiscard]] Rect OutputRegion(const Rect& /*rect*/, const Rect& region) const override {
        Rect moved = region;
        moved.Translate(m_distance, 0);
        return moved;
    }

    std::int32_t m_distance = 10;
    bool m_filtersMask = true;
    bool m_bytesOnly = false;
    std::vector<std::int32_t> depths;
    std::vector<bool> expands;
    int begun = 0;
    int ended = 0;
};

// Keeps what its rows were given, and does with each pixel what the test says.
class ProbeForTest final : public FilterClass<ProbeForTest, PointFilter> {
public:
    static constexpr FilterIdentity identity{"Probe For Test", "Probe", ""};
    static constexpr auto Parameters() { return noParameters<ProbeForTest>; }

    void ProcessRow8(std::int32_t firstX, std::int32_t lastX, std::int32_t y, std::span<std::uint8_t> pixels) override {
        Keep(firstX, lastX, y, pixels);
        if (change != nullptr) PointFilter::ProcessRow8(firstX, lastX, y, pixels);
    }
    void ProcessRow16(std::int32_t firstX, std::int32_t lastX, std::int32_t y,
                      std::span<std::uint16_t> pixels) override {
        Keep(firstX, lastX, y, pixels);
        if (change != nullptr) PointFilter::ProcessRow16(firstX, lastX, y, pixels);
    }
    void ProcessMaskRow8(std::int32_t firstX, std::int32_t lastX, std::int32_t y,
                         std::span<std::uint8_t> pixels) override {
        Keep(firstX, lastX, y, pixels);
    }
    void ProcessPixel(std::int32_t x, std::int32_t y, float& a, float& r, float& g, float& b) override {
        change(x, y, a, r, g, b);
    }
    bool RowSpan(std::int32_t y, std::int32_t& first, std::int32_t& last) const override {
        return span != nullptr && span(y, first, last);
    }
    void Prepare() override { ++prepared; }
    void EndRun() override { ++ended; }
    [[nodiscard]] bool CanRunInParallel() const override { return false; }

    void (*change)(std::int32_t x, std::int32_t y, float& a, float& r, float& g, float& b) = nullptr;
    bool (*span)(std::int32_t y, std::int32_t& first, std::int32_t& last) = nullptr;

    struct Call {
        std::int32_t firstX, lastX, y;
        std::vector<int> channels;
    };
    std::vector<Call> calls;
    int prepared = 0;
    int ended = 0;

private:
    template <typename Row>
    void Keep(std::int32_t firstX, std::int32_t lastX, std::int32_t y, Row pixels) {
        calls.push_back({firstX, lastX, y, {pixels.begin(), pixels.end()}});
    }
};

}  // namespace chalkpane::test
