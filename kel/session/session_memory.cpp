#include "kel/session/session_memory.h"

#include <algorithm>
#include <set>
#include <string>
#include <variant>

#include "cli/memory_budget.h"
#include "cli/nearest_name.h"
#include "kel/session/session_inputs.h"
#include "kel/video/video_size.h"
#include "picture_io/picture_size.h"
#include "telestrator/journal/ink_checkpoints.h"

namespace kel {
namespace {

constexpr double bytesOfPixel = 4;
constexpr double copiesOfPicture = 3;         // as it was read, on its way to the texture, and there
constexpr double copiesOfWindow = 8;          // colour and depth, twice for the overlay; as read and on its way out
constexpr double bytesOfPlugIn = 64U << 20U;  // canvas, strokes, texture and undos
// Canvases of the drawing, of shapes, and of ink that fades, and the checkpoints
// (telestrator/journal/ink_checkpoints.h).
constexpr double bytesOfCanvas = 4U << 20U;
constexpr double bytesOfKeptStrokes = bytesOfCanvas * (3 + chalkpane::InkCheckpoints::most);

void CountInput(const SessionInput& input, const std::filesystem::path& file, cli::MemoryBudget& budget) {
    if (input.use != SessionInput::Use::Video) {
        budget.Count(picture_io::MemoryOfPicture(file, copiesOfPicture, false),
                     "the picture " + cli::Quoted(input.path));
    } else if (const auto pixels = ReadVideoPixels(file)) {
        budget.Count(*pixels * (bytesOfVideoPixel + bytesOfPixel), "the film " + cli::Quoted(input.path));
    }
}

// True: what is drawn there is edited, so its strokes are kept beside the plug-in.
bool IsEdited(const Session& session, std::size_t container) {
    return std::ranges::any_of(session.events, [&](const SessionEvent& event) {
        const auto* const ink = std::get_if<InkEvent>(&event.what);
        return ink != nullptr && ink->container == container;
    });
}

void CountPlugIns(const Session& session, bool areStrokesKept, cli::MemoryBudget& budget) {
    for (std::size_t i = 0; i < session.containers.size(); ++i) {
        if (!session.containers[i].plugin) continue;
        budget.Count(bytesOfPlugIn, "a plug-in");
        if (areStrokesKept || IsEdited(session, i)) budget.Count(bytesOfKeptStrokes, "the strokes of a plug-in");
    }
}

}  // namespace

void CheckMemory(const Session& session, const SessionAccess& access, const SessionPermissions& permissions) {
    cli::MemoryBudget budget;
    budget.Count(bytesOfPixel * copiesOfWindow * session.window.width * session.window.height, "the window");
    CountPlugIns(session, permissions.keepsStrokes, budget);
    std::set<std::string> ofPlugins;
    for (const SessionInput& input : InputsOf(session))
        if (input.use != SessionInput::Use::PluginPicture || ofPlugins.insert(input.path).second)
            CountInput(input, access.InputFile(input.path, input.place), budget);
    budget.Check(permissions.memory, session.file.string());
}

void CheckPictureMemory(const std::filesystem::path& file, const SessionPermissions& permissions) {
    if (!picture_io::ReadPictureSize(file)) return;
    cli::MemoryBudget budget;
    budget.Count(picture_io::MemoryOfPicture(file, copiesOfPicture, false), "the picture");
    budget.Check(permissions.memory, file.string());
}

}  // namespace kel
