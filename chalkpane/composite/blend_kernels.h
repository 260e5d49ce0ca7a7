#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "chalkpane/base/call_widest.h"
#include "chalkpane/base/random.h"
#include "chalkpane/composite/blend_hsv_row.h"
#include "chalkpane/composite/blending_modes.h"

namespace chalkpane::blend {

// The loops over a row that make kernels of the formulas. The loop over channels is one body that the compiler
// vectorises, for the baseline and for wider registers; results are the same.

// A formula for channels takes and gives 32-bit integers, or the channel's own type, of which more fit a register.
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
template <std::size_t pixels, auto formula, typename Channel>
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

template <auto formula, typename Channel>
[[gnu::always_inline]] inline void BlendEachChannel(RowCursor<Channel> row) {
    BlendBlocks<16, formula>(row);
    BlendBlocks<4, formula>(row);
    BlendBlocks<1, formula>(row);
}

template <typename F, auto formula, typename Channel = typename F::Channel>
void EachChannel(const Channel* source, const Channel* destination, Channel* output, std::int32_t count) {
    CallWidest([=] { BlendEachChannel<formula, Channel>({source, destination, output, count}); });
}

// Sums that stop at full scale, which is an instruction for bytes. Returns the pixels done: whole blocks. Needs AVX2,
// and is there where `builtWithAvx2`.
std::int32_t AddRowAvx2(const std::uint8_t* source, const std::uint8_t* destination, std::uint8_t* output,
                        std::int32_t count);

template <typename F, auto formula, typename Channel = typename F::Channel>
void AddRow(const Channel* source, const Channel* destination, Channel* output, std::int32_t count) {
    RowCursor<Channel> row{source, destination, output, count};
    if constexpr (builtWithAvx2 && F::bits == 8)
        if (HasAvx2()) row.Advance(AddRowAvx2(source, destination, output, count));
    EachChannel<F, formula>(row.source, row.destination, row.output, row.count);
}

template <typename F, PixelFormula<F> formula, typename Channel = typename F::Channel>
void EachPixel(const Channel* source, const Channel* destination, Channel* output, std::int32_t count) {
    for (; count > 0; --count, source += 4, destination += 4, output += 4) formula(source, destination, output);
}

template <typename F, HsvMode mode, PixelFormula<F> formula, typename Channel = typename F::Channel>
void HsvRow(const Channel* source, const Channel* destination, Channel* output, std::int32_t count) {
    RowCursor<Channel> row{source, destination, output, count};
    if constexpr (builtWithAvx2)
        if (HasAvx2()) row.Advance(BlendHsvRowAvx2(mode, source, destination, output, count));
    EachPixel<F, formula>(row.source, row.destination, row.output, row.count);
}

// The source with its alpha thrown to all or nothing. No number is drawn where there is nothing to throw; all that a
// row needs are taken at once, so that rows drawn by several workers wait for each other once a row.
template <typename F, typename Channel = typename F::Channel>
void DissolveRow(const Channel* source, const Channel* /*destination*/, Channel* output, std::int32_t count) {
    std::uint32_t draws = 0;
    for (std::int32_t i = 0; i < count; ++i) draws += source[4 * i + 3] != 0 ? 1 : 0;
    std::uint32_t state = TakeRandom(draws);
    for (; count > 0; --count, source += 4, output += 4) {
        const std::int32_t alpha = source[3];
        const std::uint32_t next = detail::NextRandomState(state);
        const std::int32_t drawn = detail::RandomOfState(next) & F::randomMask;
        state = alpha != 0 ? next : state;
        const auto shown = static_cast<std::int32_t>(alpha != 0) & static_cast<std::int32_t>(alpha >= drawn);
        std::array<Channel, 4> pixel;
        std::memcpy(pixel.data(), source, sizeof pixel);
        pixel[3] = static_cast<Channel>(-shown & F::fullScale);
        std::memcpy(output, pixel.data(), sizeof pixel);
    }
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
