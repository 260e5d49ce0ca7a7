#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "chalkpane/filters/point_filter.h"
#include "chalkpane/image/image.h"

namespace chalkpane {

// What a filter has to do to a picture that goes through a chain row by row.
enum class RowStep : std::uint8_t {
    Nothing,       // its settings change nothing
    Rows,          // each row by itself
    WholePicture,  // it looks at all of it first
};

// A point filter that says so of itself.
class RowStepper {
public:
    RowStepper() = default;
    // True: never `WholePicture`, whatever the settings.
    [[nodiscard]] virtual bool StepsByRows() const = 0;
    [[nodiscard]] virtual RowStep StepOver(const Image& source) const = 0;

protected:
    RowStepper(const RowStepper&) = default;
    RowStepper& operator=(const RowStepper&) = default;
    ~RowStepper() = default;
};

// Point filters, one behind the other, over a picture in one pass: each row goes through all of them while it is close
// to the processor, and the workers are woken once. The pixels are those that one filter after the other makes.
class RowChain {
public:
    // False: the filter has to be applied by itself to a picture of that depth.
    [[nodiscard]] static bool Takes(const Filter& filter, Depth depth);

    [[nodiscard]] bool IsEmpty() const { return m_count == 0; }
    [[nodiscard]] bool IsFull() const { return m_count == m_filters.size(); }
    // One that it takes; not owned. The caller sees to what is left before another when it is full.
    void Add(Filter& filter);
    // Runs what was added over the picture, in place where nobody else has its pixels, else into new ones, and is
    // empty then. False: there was no memory, and the picture is as it was.
    [[nodiscard]] bool Run(std::unique_ptr<Image>& picture);

private:
    std::array<PointFilter*, 16> m_filters{};
    std::size_t m_count = 0;
};

}  // namespace chalkpane
