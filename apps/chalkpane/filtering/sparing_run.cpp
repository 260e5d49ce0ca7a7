#include "apps/chalkpane/filtering/sparing_run.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

#include "apps/chalkpane/filtering/band_run.h"
#include "chalkpane/base/multi_processor.h"

namespace chalkpane::app {
namespace {

// By their names.
constexpr std::array<std::string_view, 2> lavish{"Median Filter", "Oil Effect"};

// The loops of the bands are told as one of so many rows.
class OneLoop {
public:
    explicit OneLoop(std::int64_t rows) : m_listener(MultiProcessor::SetListener(nullptr)) {
        if (m_listener != nullptr) m_listener->BeginLoop(rows);
    }
    ~OneLoop() { MultiProcessor::SetListener(m_listener); }
    OneLoop(const OneLoop&) = delete;
    OneLoop& operator=(const OneLoop&) = delete;
    OneLoop(OneLoop&&) = delete;
    OneLoop& operator=(OneLoop&&) = delete;

    void RowDone() {
        if (m_listener != nullptr) m_listener->RowDone();
    }

private:
    RunListener* m_listener;
};

std::unique_ptr<Image> RowsOf(const Image& image, std::int32_t firstY, std::int32_t lastY) {
    const Rect rows(image.x0, std::max(image.y0, firstY), image.x1, std::min(image.y1, lastY));
    auto copy = Image::Unwritten(rows, image);
    copy->CopyRegion(image, rows);
    return copy;
}

Rect Grown(Rect rect, std::int32_t by) {
    rect.Inflate(by);
    return rect;
}

// From the top down, into the place of the source, or, where the picture grows, into another. What a band wants of the
// rows above it is kept as it was.
std::unique_ptr<Image> RunBands(Filter& filter, std::unique_ptr<Image> source, const FilterRun& run,
                                std::int32_t rowsAround, std::int32_t bandRows) {
    OneLoop loop((source->Height() + bandRows - 1) / bandRows);
    std::unique_ptr<Image> grown;
    std::unique_ptr<Image> kept;
    AlphaForm form = source->GetAlphaForm();
    for (std::int64_t top = source->y1; top >= source->y0; top -= bandRows) {
        const auto last = static_cast<std::int32_t>(top);
        const Rect band(source->x0, std::max(source->y0, last - bandRows + 1), source->x1, last);
        auto window = RowsOf(*source, band.y0 - rowsAround, last + rowsAround);
        if (kept) window->CopyRegion(*kept, *kept);
        kept = RowsOf(*window, band.y0, band.y0 + rowsAround - 1);
        const auto made = RunFilter(filter, std::move(window), run);
        form = made->GetAlphaForm();
        const std::int32_t growth = source->x0 - made->x0;
        if (growth > 0 && !grown) grown = std::make_unique<Image>(Grown(*source, growth), *made);
        Rect part = Grown(band, growth);
        if (band.y1 != source->y1) part.y1 = band.y1;
        if (band.y0 != source->y0) part.y0 = band.y0;
        (grown ? *grown : *source).CopyRegion(*made, part);
        loop.RowDone();
    }
    auto& picture = grown ? grown : source;
    picture->DeclareAlphaForm(form);
    return std::move(picture);
}

}  // namespace

std::unique_ptr<Image> RunSparingly(Filter& filter, std::unique_ptr<Image> source, const FilterRun& run) {
    const auto rowsAround = RowsAround(filter);
    const bool growsInPart = run.expand && run.region;
    if (!rowsAround || growsInPart || std::ranges::find(lavish, filter.Name()) == lavish.end())
        return RunFilter(filter, std::move(source), run);
    const std::int32_t bandRows = BandRows(source->Width(), *rowsAround);
    if (bandRows >= source->Height()) return RunFilter(filter, std::move(source), run);
    return RunBands(filter, Unshared(std::move(source)), run, *rowsAround, bandRows);
}

}  // namespace chalkpane::app
