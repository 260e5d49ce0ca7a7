#include "kel/workspace/ink_slots.h"

#include <string>
#include <utility>

#include "cli/error.h"
#include "cli/file_bytes.h"
#include "kel/ink/ink_thumbnail.h"
#include "telestrator/journal/journal_file.h"

namespace kel {
namespace {

constexpr std::size_t largestSlot = std::size_t{64} << 20U;  // bytes

std::string TextOf(const std::vector<chalkpane::SharedStroke>& strokes) {
    std::string text(chalkpane::journalHeader);
    text += '\n';
    chalkpane::JournalRecord record;
    for (const chalkpane::SharedStroke& stroke : strokes) {
        ++record.number;
        record.strokes = {stroke};
        text += RecordText(record) + '\n';
    }
    return text;
}

}  // namespace

InkSlots::InkSlots(const std::filesystem::path& opened) : m_opened(std::filesystem::absolute(opened)) {}

std::filesystem::path InkSlots::FileOf(int slot) const {
    return m_opened.parent_path() / (m_opened.stem().string() + "-slot-" + std::to_string(slot) + ".journal");
}

void InkSlots::Keep(int slot, const std::vector<chalkpane::SharedStroke>& strokes) {
    cli::WriteFileWhole(FileOf(slot), std::string_view(TextOf(strokes)));
    m_looks[static_cast<std::size_t>(slot - 1)] = {true, InkThumbnail(strokes, thumbnailSide)};
    ++m_changes;
}

std::vector<chalkpane::SharedStroke> InkSlots::Read(int slot) const {
    const std::filesystem::path file = FileOf(slot);
    const auto bytes = cli::ReadFileBytes(file, largestSlot);
    chalkpane::KeptDrawing kept = chalkpane::ParseDrawing(std::string(bytes.begin(), bytes.end()));
    if (!kept.error.empty()) throw cli::Error(file.string(), {}, kept.error);
    return std::move(kept.strokes);
}

const picture_io::Picture* InkSlots::Thumbnail(int slot) {
    Look& look = m_looks[static_cast<std::size_t>(slot - 1)];
    if (!std::exchange(look.isKnown, true)) {
        try {
            if (std::filesystem::exists(FileOf(slot))) look.thumbnail = InkThumbnail(Read(slot), thumbnailSide);
        } catch (const cli::Error&) {
            look.thumbnail.reset();  // recalling it tells why
        } catch (const std::filesystem::filesystem_error&) {
            look.thumbnail.reset();
        }
        ++m_changes;
    }
    return look.thumbnail ? &*look.thumbnail : nullptr;
}

}  // namespace kel
