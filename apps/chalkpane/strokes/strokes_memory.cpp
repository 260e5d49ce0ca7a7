#include "apps/chalkpane/strokes/strokes_memory.h"

#include <string>
#include <utility>

#include "cli/nearest_name.h"
#include "picture_io/picture_size.h"

namespace chalkpane::app {
namespace {

constexpr double channels = 4;
constexpr double copiesOfCanvas = 3;   // itself, what a stroke or a frame keeps of it, and the picture that is written
constexpr double copiesOfPicture = 3;  // as it was read, as colours, and as a mask with what is made of it

std::string Shown(const std::filesystem::path& picture) { return "the picture " + cli::Quoted(picture.string()); }

}  // namespace

StrokesMemory::StrokesMemory(std::uint64_t allowed, std::filesystem::path shownName)
    : m_allowed(allowed), m_shownName(std::move(shownName)) {}

void StrokesMemory::Count(const StrokesFile& file, const std::filesystem::path& picture, std::optional<Depth> depth) {
    const CanvasDescription& canvas = file.canvas;
    if (!depth) depth = file.depth;
    const std::filesystem::path& ground = picture.empty() ? canvas.picture : picture;
    if (ground.empty()) {
        m_hasWords = depth == Depth::Fourteen;
        const double pixels = static_cast<double>(canvas.width) * canvas.height;
        m_budget.Count(pixels * channels * (m_hasWords ? 2 : 1) * copiesOfCanvas, "the canvas");
    } else {
        m_hasWords = depth != Depth::Eight;  // where nobody has said the depth, a picture may bring the greater one
        m_budget.Count(picture_io::MemoryOfPicture(ground, copiesOfCanvas, depth == Depth::Fourteen), Shown(ground));
    }
    for (const BrushDescription& brush : file.brushes) {
        if (brush.picture) CountOnce(brush.picture->file);
        if (brush.mask) CountOnce(brush.mask->file);
        for (const Setting& setting : brush.settings) CountOnce(setting.text);
    }
    m_budget.Check(m_allowed, m_shownName.string());
}

void StrokesMemory::CountPicture(const std::filesystem::path& picture) {
    CountOnce(picture);
    m_budget.Check(m_allowed, m_shownName.string());
}

void StrokesMemory::CountOnce(const std::filesystem::path& picture) {
    if (picture.empty() || !m_pictures.insert(picture).second) return;
    m_budget.Count(picture_io::MemoryOfPicture(picture, copiesOfPicture, m_hasWords), Shown(picture));
}

}  // namespace chalkpane::app
