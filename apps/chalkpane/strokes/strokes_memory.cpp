#include "apps/chalkpane/strokes/strokes_memory.h"

#include <set>
#include <string>

#include "cli/memory_budget.h"
#include "cli/nearest_name.h"
#include "picture_io/picture_size.h"

namespace chalkpane::app {
namespace {

constexpr double channels = 4;
constexpr double copiesOfCanvas = 3;   // itself, what a stroke keeps of it, and the picture that is written
constexpr double copiesOfPicture = 3;  // as it was read, as colours, and as a mask with what is made of it

class Counter {
public:
    // Where nobody has said the depth, a picture may bring the greater one.
    explicit Counter(std::optional<std::int32_t> depth)
        : m_bytesOfPixel(depth.value_or(1) == 0 ? channels : 2 * channels) {}

    void CountCanvas(double pixels, const std::string& what) {
        m_budget.Count(pixels * m_bytesOfPixel * copiesOfCanvas, what);
    }
    void CountCanvas(const std::filesystem::path& picture) {
        if (const auto size = picture_io::ReadPictureSize(picture)) CountCanvas(size->Pixels(), Shown(picture));
    }
    void CountPicture(const std::filesystem::path& picture) {
        if (picture.empty() || !m_pictures.insert(picture).second) return;
        if (const auto size = picture_io::ReadPictureSize(picture))
            m_budget.Count(size->Pixels() * m_bytesOfPixel * copiesOfPicture, Shown(picture));
    }
    [[nodiscard]] const cli::MemoryBudget& Budget() const { return m_budget; }

private:
    static std::string Shown(const std::filesystem::path& picture) {
        return "the picture " + cli::Quoted(picture.string());
    }

    double m_bytesOfPixel;
    std::set<std::filesystem::path> m_pictures;
    cli::MemoryBudget m_budget;
};

}  // namespace

void CheckMemory(const StrokesFile& file, const std::filesystem::path& picture, std::optional<std::int32_t> depth,
                 std::uint64_t allowed, const std::filesystem::path& shownName) {
    const CanvasDescription& canvas = file.canvas;
    if (!depth) depth = file.depth;
    const bool isFilled = picture.empty() && canvas.picture.empty();
    Counter counter(isFilled ? depth.value_or(0) : depth);
    if (isFilled)
        counter.CountCanvas(static_cast<double>(canvas.width) * canvas.height, "the canvas");
    else
        counter.CountCanvas(picture.empty() ? canvas.picture : picture);
    for (const BrushDescription& brush : file.brushes) {
        if (brush.picture) counter.CountPicture(brush.picture->file);
        if (brush.mask) counter.CountPicture(brush.mask->file);
        for (const Setting& setting : brush.settings) counter.CountPicture(setting.text);
    }
    counter.Budget().Check(allowed, shownName.string());
}

}  // namespace chalkpane::app
