#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <vector>

#include "picture_io/picture.h"
#include "telestrator/journal/ink_stroke.h"

namespace kel {

// Nine drawings that were kept, each in a text file beside the picture, video or session that is open: a journal
// (docs/journal.md), "match-slot-1.journal" for "match.mp4". They may come from anybody.
class InkSlots {
public:
    static constexpr int count = 9;
    static constexpr std::int32_t thumbnailSide = 64;  // pixels

    explicit InkSlots(const std::filesystem::path& opened);

    // Slots are numbered from 1. Both throw Error with the file and the reason.
    void Keep(int slot, const std::vector<chalkpane::SharedStroke>& strokes);
    [[nodiscard]] std::vector<chalkpane::SharedStroke> Read(int slot) const;

    // What the slot holds, small; colours multiplied by alpha. Null: nothing, or nothing that can be read. Reads the
    // file when it is asked for the first time.
    [[nodiscard]] const picture_io::Picture* Thumbnail(int slot);
    // Grows with each thumbnail that is another than before.
    [[nodiscard]] std::size_t Changes() const { return m_changes; }
    [[nodiscard]] std::filesystem::path FileOf(int slot) const;

private:
    struct Look {
        bool isKnown = false;
        std::optional<picture_io::Picture> thumbnail;
    };

    std::filesystem::path m_opened;
    std::array<Look, count> m_looks;
    std::size_t m_changes = 0;
};

}  // namespace kel
