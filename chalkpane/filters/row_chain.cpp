#include "chalkpane/filters/row_chain.h"

#include <algorithm>
#include <new>
#include <span>

#include "chalkpane/filters/point_rows.h"

namespace chalkpane {
namespace {

const RowStepper* StepperOf(const Filter& filter) { return dynamic_cast<const RowStepper*>(&filter); }

bool IsOwn(const Image& picture) { return picture.buffer->references == 1 && !picture.buffer->isLent; }

// Filters between their `BeginRun` and their `EndRun`.
class Begun {
public:
    Begun(std::span<PointFilter* const> filters, const Image& source) : m_filters(filters) {
        try {
            for (; m_count < filters.size(); ++m_count) filters[m_count]->BeginRun(source);
        } catch (const std::bad_alloc&) {
            End();
            throw;
        }
    }
    ~Begun() { End(); }
    Begun(const Begun&) = delete;
    Begun& operator=(const Begun&) = delete;
    Begun(Begun&&) = delete;
    Begun& operator=(Begun&&) = delete;

private:
    void End() {
        for (PointFilter* const filter : m_filters.first(m_count)) filter->EndRun();
    }

    std::span<PointFilter* const> m_filters;
    std::size_t m_count = 0;
};

}  // namespace

bool RowChain::Takes(const Filter& filter, Depth depth) {
    const RowStepper* const stepper = StepperOf(filter);
    return stepper != nullptr && stepper->StepsByRows() && filter.WorkingDepth(depth) == depth &&
           !filter.NeedsStepHooks() && !filter.MovesPixels();
}

void RowChain::Add(Filter& filter) { m_filters[m_count++] = dynamic_cast<PointFilter*>(&filter); }

bool RowChain::Run(std::unique_ptr<Image>& picture) {
    const std::span added(m_filters.data(), m_count);
    m_count = 0;
    const auto idle = std::remove_if(added.begin(), added.end(), [&picture](const PointFilter* filter) {
        return StepperOf(*filter)->StepOver(*picture) == RowStep::Nothing;
    });
    const std::span<PointFilter* const> filters = added.first(static_cast<std::size_t>(idle - added.begin()));
    if (filters.empty() || picture->ByteSize() == 0) return true;
    try {
        auto made = IsOwn(*picture) ? nullptr : Image::Unwritten(picture->Bounds(), *picture);
        {
            const Begun begun(filters, *picture);
            RunPointRows(filters, *picture, made ? *made : *picture);
        }
        if (made) picture = std::move(made);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

}  // namespace chalkpane
