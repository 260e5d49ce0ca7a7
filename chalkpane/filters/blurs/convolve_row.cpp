#include "chalkpane/filters/blurs/convolve_row.h"

#include <algorithm>
#include <array>
#include <type_traits>

#include "chalkpane/base/cpu_features.h"

namespace chalkpane {

namespace {

// Channels whose sums are in the first level of the cache while all taps pass over them.
constexpr std::size_t chunk = 512;

template <typename Channel>
struct Sums;
template <>
struct Sums<std::uint8_t> {
    using Type = std::uint16_t;
    static constexpr int shift = 8;
};
template <>
struct Sums<std::uint16_t> {
    using Type = std::uint32_t;
    static constexpr int shift = 14;
};

template <typename Channel>
void ConvolvePlain(std::span<const Channel* const> sources, std::span<const Channel> taps, Channel* out,
                   std::size_t start, std::size_t count) {
    using Sum = typename Sums<Channel>::Type;
    constexpr int shift = Sums<Channel>::shift;
    std::array<Sum, chunk> sums;
    const std::size_t middle = taps.size() / 2;
    for (; start < count; start += chunk) {
        const std::size_t n = std::min(chunk, count - start);
        std::fill_n(sums.begin(), n, static_cast<Sum>(1U << (shift - 1)));
        for (std::size_t k = 0; k <= middle; ++k) {
            const std::uint32_t tap = taps[k];
            const Channel* before = sources[k] + start;
            const Channel* behind = sources[taps.size() - 1 - k] + start;
            const std::uint32_t twice = k == middle ? 0 : 1;  // the middle one stands alone
            for (std::size_t i = 0; i < n; ++i)
                sums[i] = static_cast<Sum>(sums[i] + tap * (before[i] + twice * behind[i]));
        }
        for (std::size_t i = 0; i < n; ++i) out[start + i] = static_cast<Channel>(sums[i] >> shift);
    }
}

template <typename Channel>
void ConvolveFastest(std::span<const Channel* const> sources, std::span<const Channel> taps, std::span<Channel> out) {
    std::size_t done = 0;
    if constexpr (builtWithAvx512 && std::is_same_v<Channel, std::uint16_t>)
        if (HasAvx512()) done = ConvolveRowAvx512(sources, taps, out);
    if constexpr (builtWithAvx2)
        if (done == 0 && HasAvx2()) done = ConvolveRowAvx2(sources, taps, out);
    ConvolvePlain(sources, taps, out.data(), done, out.size());
}

}  // namespace

void ConvolveRow(std::span<const std::uint8_t* const> sources, std::span<const std::uint8_t> taps,
                 std::span<std::uint8_t> out) {
    ConvolveFastest(sources, taps, out);
}
void ConvolveRow(std::span<const std::uint16_t* const> sources, std::span<const std::uint16_t> taps,
                 std::span<std::uint16_t> out) {
    ConvolveFastest(sources, taps, out);
}
void ConvolveRowPlain(std::span<const std::uint8_t* const> sources, std::span<const std::uint8_t> taps,
                      std::span<std::uint8_t> out) {
    ConvolvePlain(sources, taps, out.data(), 0, out.size());
}
void ConvolveRowPlain(std::span<const std::uint16_t* const> sources, std::span<const std::uint16_t> taps,
                      std::span<std::uint16_t> out) {
    ConvolvePlain(sources, taps, out.data(), 0, out.size());
}

}  // namespace chalkpane
