#include "chalkpane/filters/blurs/super_softener.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/blurs/float_line.h"
#include "chalkpane/filters/blurs/line_channels.h"
#include "chalkpane/filters/work_area.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {
namespace {

constexpr std::uint8_t qualityCode = 1;
constexpr std::array<std::string_view, 4> qualities{"Coarse", "Low", "High", "Best"};

// Far beyond what a control offers; keeps lines and grown pictures of a sane size.
constexpr double largestSoftness = 10000.0;

// Four channels at a time, which are a pixel or neighbours in a mask; as vectors, which every machine has of that size.
using FourFloats = float __attribute__((vector_size(16)));
using FourIntegers = std::int32_t __attribute__((vector_size(16)));
template <typename F>
struct FourChannels;
template <>
struct FourChannels<PixelFormat8> {
    using Type = std::uint8_t __attribute__((vector_size(4)));
};
template <>
struct FourChannels<PixelFormat14> {
    using Type = std::uint16_t __attribute__((vector_size(8)));
};

template <typename F>
void Load(const typename F::Channel* channels, float* lanes) {
    using Four = typename FourChannels<F>::Type;
    Four four;
    std::memcpy(&four, channels, sizeof four);
    const FourFloats floats = __builtin_convertvector(__builtin_convertvector(four, FourIntegers), FourFloats);
    std::memcpy(lanes, &floats, sizeof floats);
}
// Rounded and limited; NaN, as after very many passes, is 0.
template <typename F>
void Store(const float* lanes, float gain, typename F::Channel* channels) {
    using Four = typename FourChannels<F>::Type;
    const FourFloats zero{};
    const FourFloats fullScale = zero + static_cast<float>(F::fullScale);
    FourFloats floats;
    std::memcpy(&floats, lanes, sizeof floats);
    const FourFloats rounded = floats / gain + 0.5F;
    const FourFloats positive = rounded > zero ? rounded : zero;
    const FourFloats limited = positive < fullScale ? positive : fullScale;
    const Four four = __builtin_convertvector(__builtin_convertvector(limited, FourIntegers), Four);
    std::memcpy(channels, &four, sizeof four);
}

// One direction of the blur. Lines are handled in strips: as many as fill the lanes of a FloatLine.
template <typename F>
struct StripJob {
    using Channel = typename F::Channel;

    // Scratch of one worker.
    struct Lines {
        FloatLine line;
        FloatLine spare;
        std::vector<Channel> staged;  // columns of a picture, row by row
    };

    static constexpr std::size_t groupChannels = 64;  // of columns that are fetched together

    const Image& from;
    Image& to;
    double softness;
    std::int32_t passes;
    std::vector<Lines> workers =
        std::vector<Lines>(static_cast<std::size_t>(std::max(MultiProcessor::Instance().ProcessorCount(), 1)));

    [[nodiscard]] std::size_t Channels() const { return static_cast<std::size_t>(ChannelCount(from)); }
    [[nodiscard]] std::int32_t StripLines() const { return static_cast<std::int32_t>(FloatLine::lanes / Channels()); }

    // Positions in a line are counted from its first pixel, so that pictures at the end of the plane have some.
    Lines& Ready(std::int32_t worker, std::int32_t pixels) {
        const std::int32_t radius = SoftenSupportRadius(softness, passes);
        Lines& lines = workers[static_cast<std::size_t>(worker)];
        lines.line.Reset(-radius, pixels - 1 + radius);
        return lines;
    }

    // The rows of a strip, lowest first, side by side in the lanes; `size` is that of a pixel.
    template <std::size_t size>
    static void LoadRows(std::span<const Channel* const> rows, std::size_t count, float* lanes) {
        if constexpr (builtWithAvx512 && size == 4)
            if (HasAvx512() && rows.size() == 4) return LoadFourRowsAvx512(rows.data(), count, lanes);
        for (std::size_t x = 0; x < count; ++x, lanes += FloatLine::lanes) {
            for (std::size_t row = 0; row < rows.size(); ++row) {
                if constexpr (size == 4)
                    Load<F>(rows[row] + x * size, lanes + row * size);
                else
                    lanes[row] = static_cast<float>(rows[row][x]);
            }
        }
    }
    template <std::size_t size>
    static void StoreRows(const float* lanes, float gain, std::size_t count, std::span<Channel* const> rows) {
        if constexpr (builtWithAvx512 && size == 4)
            if (HasAvx512() && rows.size() == 4) return StoreFourRowsAvx512(lanes, gain, count, rows.data());
        std::array<Channel, FloatLine::lanes> mask;
        for (std::size_t x = 0; x < count; ++x, lanes += FloatLine::lanes) {
            for (std::size_t i = 0; i < mask.size() && size == 1; i += 4) Store<F>(lanes + i, gain, &mask[i]);
            for (std::size_t row = 0; row < rows.size(); ++row) {
                if constexpr (size == 4)
                    Store<F>(lanes + row * size, gain, rows[row] + x * size);
                else
                    rows[row][x] = mask[row];
            }
        }
    }

    // Strip `strip` of rows, counted from the bottom of `to`.
    template <std::size_t size>
    void SoftenRowsOf(std::int32_t strip, std::int32_t worker) {
        const std::int32_t bottom = to.y0 + strip * StripLines();
        const auto count =
            static_cast<std::size_t>(std::min<std::int64_t>(StripLines(), std::int64_t{to.y1} - bottom + 1));
        std::array<const Channel*, FloatLine::lanes> sources;
        std::array<Channel*, FloatLine::lanes> targets;
        for (std::size_t i = 0; i < count; ++i) {
            const std::int32_t y = bottom + static_cast<std::int32_t>(i);
            sources[i] = ImageRow<F>(from, y).data();
            targets[i] = ImageRow<F>(to, y).data();
        }
        const Rect both = from.Union(to);
        auto& [line, spare, staged] = Ready(worker, both.Width());
        LoadRows<size>(std::span(sources).first(count), static_cast<std::size_t>(from.Width()),
                       line.At(from.x0 - both.x0));
        SoftenLine(line, spare, softness, passes);
        StoreRows<size>(line.At(to.x0 - both.x0), line.gain, static_cast<std::size_t>(to.Width()),
                        std::span(targets).first(count));
    }
    void SoftenRows(std::int32_t strip, std::int32_t worker) {
        from.IsMask() ? SoftenRowsOf<1>(strip, worker) : SoftenRowsOf<4>(strip, worker);
    }

    // The same of neighbouring columns, whose rows lie side by side.
    static void LoadColumns(const Channel* channels, std::size_t count, float* lanes) {
        if constexpr (builtWithAvx512)
            if (HasAvx512()) return LoadColumnsAvx512(channels, groupChannels, count, lanes);
        for (std::size_t y = 0; y < count; ++y, channels += groupChannels, lanes += FloatLine::lanes)
            for (std::size_t i = 0; i < FloatLine::lanes; i += 4) Load<F>(channels + i, lanes + i);
    }
    static void StoreColumns(const float* lanes, float gain, std::size_t count, Channel* channels) {
        if constexpr (builtWithAvx512)
            if (HasAvx512()) return StoreColumnsAvx512(lanes, gain, count, channels, groupChannels);
        for (std::size_t y = 0; y < count; ++y, channels += groupChannels, lanes += FloatLine::lanes)
            for (std::size_t i = 0; i < FloatLine::lanes; i += 4) Store<F>(lanes + i, gain, channels + i);
    }

    // Neighbouring strips of columns, counted from the left of `to`; both images have the same columns. The rows of a
    // picture lie far apart in memory, so what several strips need of them is fetched and brought back together.
    void SoftenColumns(std::int32_t group, std::int32_t worker) {
        const std::size_t first = static_cast<std::size_t>(group) * groupChannels;
        const std::size_t size = std::min(groupChannels, static_cast<std::size_t>(to.Width()) * Channels() - first);
        auto& [line, spare, stagedRows] = workers[static_cast<std::size_t>(worker)];
        auto& staged = stagedRows;
        const Rect both = from.Union(to);
        staged.resize(static_cast<std::size_t>(both.Height()) * groupChannels);
        const auto stagedRow = [&staged](std::int32_t position) {
            return staged.data() + static_cast<std::size_t>(position) * groupChannels;
        };
        const std::int32_t fromStart = from.y0 - both.y0;
        const std::int32_t toStart = to.y0 - both.y0;
        for (std::int32_t i = 0; i < from.Height(); ++i)
            std::copy_n(ImageRow<F>(from, from.y0 + i).data() + first, size, stagedRow(fromStart + i));
        for (std::size_t strip = 0; strip < size; strip += FloatLine::lanes) {
            Ready(worker, both.Height());
            LoadColumns(stagedRow(fromStart) + strip, static_cast<std::size_t>(from.Height()), line.At(fromStart));
            SoftenLine(line, spare, softness, passes);
            StoreColumns(line.At(toStart), line.gain, static_cast<std::size_t>(to.Height()),
                         stagedRow(toStart) + strip);
        }
        for (std::int32_t i = 0; i < to.Height(); ++i)
            std::copy_n(stagedRow(toStart + i), size, ImageRow<F>(to, to.y0 + i).data() + first);
    }

    // linesAtOnce: lines that one call of `direction` does, each of `lineLength` pixels.
    template <void (StripJob::*direction)(std::int32_t, std::int32_t)>
    void Run(std::int32_t lineCount, std::int32_t linesAtOnce, std::int32_t lineLength) {
        const auto strip = [](std::int32_t index, void* userData, std::int32_t worker) {
            (static_cast<StripJob*>(userData)->*direction)(index, worker);
        };
        RunInBands(0, (lineCount + linesAtOnce - 1) / linesAtOnce - 1, lineLength * linesAtOnce, strip, this);
    }
    void RunRows() { Run<&StripJob::SoftenRows>(to.Height(), StripLines(), to.Width()); }
    void RunColumns() {
        const auto groupLines = static_cast<std::int32_t>(groupChannels / Channels());
        Run<&StripJob::SoftenColumns>(to.Width(), groupLines, to.Height());
    }
};

template <typename F>
std::unique_ptr<Image> Softened(const Image& source, const Rect& work, double softness, std::int32_t passes) {
    // Columns are fetched before they are brought back, so what lies between the two directions lies in the memory of
    // the result, and no third picture is needed.
    const Rect softenedRows(work.x0, source.y0, work.x1, source.y1);
    const auto all = Image::Unwritten(softenedRows.Union(work), source);
    const auto between = all->Convert(softenedRows, all->GetDepth());
    auto result = all->Convert(work, all->GetDepth());
    StripJob<F>{source, *between, softness, passes}.RunRows();
    StripJob<F>{*between, *result, softness, passes}.RunColumns();
    return result;
}

}  // namespace

std::span<const std::string_view> SuperSoftener::Choices(std::uint8_t code) {
    return code == qualityCode ? std::span<const std::string_view>(qualities) : std::span<const std::string_view>();
}

void SuperSoftener::setParameter(ParameterValue* value) {
    FilterClass::setParameter(value);
    if (value != nullptr && value->getParameter() != nullptr && value->getParameter()->code == qualityCode) ++m_passes;
}

std::int32_t SuperSoftener::SupportRadius() const {
    const double softness = std::min(m_softness, largestSoftness);
    return softness > 0.0 ? static_cast<std::int32_t>(std::ceil(softness)) : 0;
}

void SuperSoftener::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                          bool expand) {
    const double softness = std::min(m_softness, largestSoftness);
    if (!(softness >= 0.01 && (m_passes > 2 || softness >= 1.0))) return ApplyAsCopy(source, result);
    ApplyInWorkArea(source, result, region, expand ? SupportRadius() : 0, [&](const Rect& work) {
        return WithFormatOf(source,
                            [&](auto format) { return Softened<decltype(format)>(source, work, softness, m_passes); });
    });
}

Rect SuperSoftener::InputRegion(const Rect& /*rect*/, const Rect& region) const {
    return Grown(region, SupportRadius());
}
Rect SuperSoftener::OutputRegion(const Rect& /*rect*/, const Rect& region) const {
    return Grown(region, SupportRadius());
}

}  // namespace chalkpane
