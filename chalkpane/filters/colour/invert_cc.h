#pragma once

#include <cstring>

#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "Invert Color": every colour becomes full scale less itself.
class InvertCC final : public RowFilter<InvertCC> {
public:
    static constexpr FilterIdentity identity{"InvertColor", "Invert Color", "Color Correctors"};
    static constexpr auto Parameters() { return std::array<ParameterRow<InvertCC>, 0>{}; }

    // Full scale has all of its bits set, so that subtracting from it is flipping them; a pixel is one word.
    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        using Word = std::conditional_t<F::bits == 8, std::uint32_t, std::uint64_t>;
        constexpr auto colours = static_cast<Word>(F::bits == 8 ? 0x00ffffffULL : 0x00003fff3fff3fffULL);
        for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
            Word word;
            std::memcpy(&word, &pixels[i], sizeof(word));
            word ^= colours;
            std::memcpy(&pixels[i], &word, sizeof(word));
        }
    }
};

}  // namespace chalkpane
