#include "filters/blurs/super_softener.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "filters/blurs/float_line.h"
#include "filters/image_rows.h"
#include "filters/multi_processor.h"
#include "filters/work_area.h"

namespace chalkpane {
namespace {

constexpr std::uint8_t qualityCode = 1;
constexpr std::array<std::string_view, 4> qualities{"Coarse", "Low", "High", "Best"};

// Far beyond what a control offers; keeps lines and grown pictures of a sane size.
constexpr double largestSoftness = 10000.0;

struct Lines {
    FloatLine line;
    FloatLine spare;
};

// One direction of the blur. Lines are handled in strips: as many as fill the lanes of a FloatLine.
template <typename F>
struct StripJob {
    const Image& from;
    Image& to;
    double softness;
    std::int32_t passes;
    std::vector<Lines> workers =
        std::vector<Lines>(static_cast<std::size_t>(std::max(MultiProcessor::Instance().ProcessorCount(), 1)));

    [[nodiscard]] std::size_t Channels() const { return static_cast<std::size_t>(ChannelCount(from)); }
    [[nodiscard]] std::int32_t StripLines() const { return static_cast<std::int32_t>(FloatLine::lanes / Channels()); }

    Lines& Ready(std::int32_t worker, std::int32_t first, std::int32_t last) {
        const std::int32_t reach = SoftenReach(softness, passes);
        Lines& lines = workers[static_cast<std::size_t>(worker)];
        lines.line.Reset(first - reach, last + reach);
        lines.spare.Reset(first - reach, last + reach);
        return lines;
    }

    static void Load(std::span<const typename F::Channel> pixels, float* lanes) {
        std::transform(pixels.begin(), pixels.end(), lanes, [](auto channel) { return static_cast<float>(channel); });
    }
    // Rounded and limited; what is not a number after endless passes is 0.
    static void Store(const float* lanes, float gain, std::span<typename F::Channel> pixels) {
        constexpr auto fullScale = static_cast<float>(F::fullScale);
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            const float rounded = lanes[i] / gain + 0.5F;
            const float limited = std::min(rounded > 0.0F ? rounded : 0.0F, fullScale);
            pixels[i] = static_cast<typename F::Channel>(static_cast<std::int32_t>(limited));
        }
    }

    // Strip `strip` of rows, counted from the bottom of `to`.
    void SoftenRows(std::int32_t strip, std::int32_t worker) {
        const std::size_t channels = Channels();
        const std::int32_t bottom = to.y0 + strip * StripLines();
        const std::int32_t top = std::min(bottom + StripLines() - 1, to.y1);
        auto& [line, spare] = Ready(worker, std::min(from.x0, to.x0), std::max(from.x1, to.x1));
        for (std::int32_t y = bottom; y <= top; ++y) {
            const auto row = ImageRow<F>(from, y);
            float* lanes = line.At(from.x0) + static_cast<std::size_t>(y - bottom) * channels;
            for (std::size_t i = 0; i < row.size(); i += channels, lanes += FloatLine::lanes)
                Load(row.subspan(i, channels), lanes);
        }
        SoftenLine(line, spare, softness, passes);
        for (std::int32_t y = bottom; y <= top; ++y) {
            const auto row = ImageRow<F>(to, y);
            const float* lanes = line.At(to.x0) + static_cast<std::size_t>(y - bottom) * channels;
            for (std::size_t i = 0; i < row.size(); i += channels, lanes += FloatLine::lanes)
                Store(lanes, line.gain, row.subspan(i, channels));
        }
    }

    // Strip `strip` of columns, counted from the left of `to`; both images have the same columns.
    void SoftenColumns(std::int32_t strip, std::int32_t worker) {
        const std::size_t channels = Channels();
        const std::int32_t left = strip * StripLines();
        const std::int32_t count = std::min(StripLines(), to.Width() - left);
        const std::size_t first = static_cast<std::size_t>(left) * channels;
        const std::size_t size = static_cast<std::size_t>(count) * channels;
        auto& [line, spare] = Ready(worker, std::min(from.y0, to.y0), std::max(from.y1, to.y1));
        for (std::int32_t y = from.y0; y <= from.y1; ++y) Load(ImageRow<F>(from, y).subspan(first, size), line.At(y));
        SoftenLine(line, spare, softness, passes);
        for (std::int32_t y = to.y0; y <= to.y1; ++y)
            Store(line.At(y), line.gain, ImageRow<F>(to, y).subspan(first, size));
    }

    template <void (StripJob::*direction)(std::int32_t, std::int32_t)>
    void Run(std::int32_t lineCount, std::int32_t lineLength) {
        const auto row = [](std::int32_t strip, void* userData, std::int32_t worker) {
            (static_cast<StripJob*>(userData)->*direction)(strip, worker);
        };
        const std::int32_t strips = (lineCount + StripLines() - 1) / StripLines();
        RunInBands(0, strips - 1, lineLength * StripLines(), row, this);
    }
};

template <typename F>
std::unique_ptr<Image> Softened(const Image& source, const Rect& work, double softness, std::int32_t passes) {
    Image between(Rect(work.x0, source.y0, work.x1, source.y1), source.type, source.depth, source.flag);
    auto result = NewImageLike(source, work);
    StripJob<F> rows{source, between, softness, passes};
    rows.template Run<&StripJob<F>::SoftenRows>(between.Height(), between.Width());
    StripJob<F> columns{between, *result, softness, passes};
    columns.template Run<&StripJob<F>::SoftenColumns>(result->Width(), result->Height());
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

std::int32_t SuperSoftener::Reach() const {
    const double softness = std::min(m_softness, largestSoftness);
    return softness > 0.0 ? static_cast<std::int32_t>(std::ceil(softness)) : 0;
}

void SuperSoftener::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                          bool expand) {
    const double softness = std::min(m_softness, largestSoftness);
    if (!(softness >= 0.01 && (m_passes > 2 || softness >= 1.0))) return ApplyAsCopy(source, result);
    ApplyInWorkArea(source, result, region, expand ? Reach() : 0, [&](const Rect& work) {
        return WithFormatOf(source,
                            [&](auto format) { return Softened<decltype(format)>(source, work, softness, m_passes); });
    });
}

Rect SuperSoftener::InputRegion(const Rect& /*rect*/, const Rect& region) const { return Grown(region, Reach()); }
Rect SuperSoftener::OutputRegion(const Rect& /*rect*/, const Rect& region) const { return Grown(region, Reach()); }

}  // namespace chalkpane
