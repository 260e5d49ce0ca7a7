#include <cstdlib>
#include <fstream>

#include "kel/workspace/ink_slots.h"
#include "telestrator/journal/journaled_telestrator.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/small_journal.h"

namespace {

using namespace chalkpane;

// A file whose slots lie in a folder that no disk sees.
const std::filesystem::path& Opened() {
    static const std::filesystem::path opened = [] {
        std::string folder = "/dev/shm/fuzz-slot-XXXXXX";
        if (mkdtemp(folder.data()) == nullptr) std::abort();
        return std::filesystem::path(folder) / "match.mp4";
    }();
    return opened;
}

// What the operator does with a drawing from anybody.
void RecallAndEdit(const std::vector<SharedStroke>& strokes) {
    JournaledTelestrator telestrator;
    telestrator.Field({});
    if (!telestrator.Insert(strokes, InkDrawing::Recall::Over)) return;
    telestrator.MoveStroke(1, 30, -20);
    telestrator.Recolour(1, 0xFF20C040U);
    telestrator.Insert(strokes, InkDrawing::Recall::InPlace);
    while (telestrator.Undo()) continue;
    if (!telestrator.Drawing()->IsBlank()) std::abort();
}

}  // namespace

// A slot's file: its small picture, what is recalled of it, and the slot that it is kept in again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz::TakeOrRefuse([&] {
        kel::InkSlots slots(Opened());
        std::ofstream(slots.FileOf(1), std::ios::binary) << fuzz::TextOf(bytes, size);
        const std::vector<SharedStroke> strokes = slots.Read(1);
        if (!fuzz::IsSmall(strokes)) return;
        if (slots.Thumbnail(1) == nullptr) std::abort();
        RecallAndEdit(strokes);
        slots.Keep(2, strokes);
        if (slots.Read(2).size() != strokes.size()) std::abort();
    });
    return 0;
}
