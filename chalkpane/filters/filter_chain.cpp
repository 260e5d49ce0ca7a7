#include "chalkpane/filters/filter_chain.h"

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/filters/row_chain.h"

namespace chalkpane {
namespace {

bool Runs(const Filter& filter, ChainScope scope) {
    // KEEP: a filter that moves pixels runs whether it is active or not.
    return filter.MovesPixels() || (filter.m_active && scope == ChainScope::EveryFilter);
}

// Gives the image this depth; one that has it already is left alone.
void Convert(std::unique_ptr<Image>& image, Depth depth) {
    if (image->GetDepth() == depth) return;
    if (auto converted = image->Convert(Rect(), depth)) image = std::move(converted);
}

void RunFilter(Filter& filter, std::unique_ptr<Image>& image, bool expand) {
    if (!image) return;
    Convert(image, filter.WorkingDepth(image->GetDepth()));
    std::unique_ptr<Image> made;
    filter.Apply(*image, made, false, nullptr, expand);
    if (made) image = std::move(made);
}

}  // namespace

void RunFilterChain(FilterChain chain, std::unique_ptr<Image>& colour, std::unique_ptr<Image>& mask, ChainScope scope) {
    if (chain.empty()) return;
    const Depth colourDepth = colour ? colour->GetDepth() : Depth::Eight;
    const Depth maskDepth = mask ? mask->GetDepth() : Depth::Eight;
    RowChain rows;
    // What there is no memory for leaves the dab as it was, as any filter does.
    const auto runRows = [&] {
        if (!rows.IsEmpty() && !rows.Run(colour)) CountMemoryLoss();
    };
    for (const auto& filter : chain) {
        if (!Runs(*filter, scope)) continue;
        if (colour && RowChain::Takes(*filter, colour->GetDepth())) {
            if (rows.IsFull()) runRows();
            rows.Add(*filter);
            continue;
        }
        runRows();
        filter->BeginStep();
        RunFilter(*filter, colour, true);
        // The mask keeps its bounds: a dab does not grow beyond its coverage.
        if (filter->FiltersMask() && filter->MovesPixels()) RunFilter(*filter, mask, false);
        filter->EndStep();
    }
    runRows();
    if (colour) Convert(colour, colourDepth);
    if (mask) Convert(mask, maskDepth);
}

Rect FilteredArea(FilterChain chain, const Rect& area) {
    Rect filtered = area;
    for (const auto& filter : chain) filtered = filter->InputRegion(area, filtered);
    for (auto filter = chain.rbegin(); filter != chain.rend(); ++filter)
        filtered = (*filter)->OutputRegion(area, filtered);
    return filtered;
}

void AdvanceFilters(FilterChain chain, const Image* target) {
    for (const auto& filter : chain)
        if (filter->m_active) filter->Advance(target, filter->m_frame, 0, 0, 0, 0);
}

}  // namespace chalkpane
