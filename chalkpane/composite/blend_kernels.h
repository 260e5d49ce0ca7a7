#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "chalkpane/base/call_widest.h"
#include "chalkpane/composite/blending_modes.h"

namespace chalkpane::blend {

// The loops over a row that make kernels of the formulas. The loop over channels is one body that the compiler
// vectorises, for the baseline and for wider registers; results are the same.

using ChannelFormula = std::int32_t (*)(std::int32_t s, std::int32_t d);
template <typename F>
using PixelFormula = void (*)(const typename F::Channel* s, const typename F::Channel* d, typename F::Channel* out);

// All ones where an index stands for alpha: tells colour and alpha of a block apart without a branch.
template <typename Channel, std::size_t pixels>
inline constexpr std::array<Channel, 4 * pixels> alphaLanes = [] {
    std::array<Channel, 4 * pixels> lanes{};
    for (std::size_t i = 3; i < lanes.size(); i += 4) lanes[i] = static_cast<Channel>(~Channel{0});
    return lanes;
}();

// Where a kernel stands in its three rows.
template <typename Channel>
struct RowCursor {
    const Channel* source;
    const Channel* destination;
    Channel* output;
    std::int32_t count;

    void Advance(std::int32_t pixels) {
        source += 4 * pixels;
        destination += 4 * pixels;
        output += 4 * pixels;
        count -= pixels;
    }
};

// Whole blocks of so many pixels. A block is gathered beside the row and stored at once: the output may be the
// destination itself, which would keep the compiler from working on several channels together.
template <std::size_t pixels, ChannelFormula formula, typename Channel>
[[gnu::always_inline]] inline void BlendBlocks(RowCursor<Channel>& row) {
    constexpr auto& lanes = alphaLanes<Channel, pixels>;
    for (; row.count >= static_cast<std::int32_t>(pixels); row.Advance(pixels)) {
        std::array<Channel, 4 * pixels> block;
        for (std::size_t i = 0; i < 4 * pixels; ++i) {
            const auto blended = static_cast<Channel>(formula(row.source[i], row.destination[i]));
            block[i] = static_cast<Channel>((blended & ~lanes[i]) | (row.source[i] & lanes[i]));
        }
        std::memcpy(row.output, block.data(), sizeof block);
    }
}

template <ChannelFormula formula, typename Channel>
[[gnu::always_inline]] inline void BlendEachChannel(RowCursor<Channel> row) {
    BlendBlocks<16, formula>(row);
    BlendBlocks<4, formula>(row);
    BlendBlocks<1, formula>(row);
}

template <typename F, ChannelFormula formula, typename Channel = typename F::Channel>
void EachChannel(const Channel* source, const Channel* destination, Channel* output, std::int32_t count) {
    CallWidest([=] { BlendEachChannel<formula, Channel>({source, destination, output, count}); });
}

template <typename F, PixelFormula<F> formula, typename Channel = typename F::Channel>
void EachPixel(const Channel* source, const Channel* destination, Channel* output, std::int32_t count) {
    for (; count > 0; --count, source += 4, destination += 4, output += 4) formula(source, destination, output);
}

// Modes that are one of their rows.
enum class From { source, destination };
template <typename F, From from, typename Channel = typename F::Channel>
void CopyRow(const Channel* source, const Channel* destination, Channel* output, std::int32_t count) {
    if (count < 1) return;
    std::memmove(output, from == From::source ? source : destination,
                 sizeof(Channel) * 4 * static_cast<std::size_t>(count));
}

template <typename F>
struct BlendMode {
    std::string_view name;
    BlendKernel<F> kernel;
};

}  // namespace chalkpane::blend
