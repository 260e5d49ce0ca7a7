#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/base/random.h"
#include "chalkpane/filters/filter_registry.h"
#include "chalkpane/parameters/shape_point_list.h"
#include "tests/chalkpane/filters/filter_pictures.h"
#include "tests/chalkpane/scoped_cpu_features.h"
#include "tests/reference/filter_references.h"

// Every filter of the registry on a whole picture: nanoseconds a pixel by the clock and by the processor, and the ratio
// to copying the picture, each from the shortest run. The time of an iteration holds a copy too.

namespace {

using namespace chalkpane;

struct Setting {
    std::string label;
    double value;
};

// What is measured: a filter with every parameter at that part of its range, and then these settings.
struct Case {
    const Filter* prototype;
    std::string name;
    double part;
    std::vector<Setting> settings;
};

// Settings besides, on which the cost of a filter depends in a way of its own, or which figures elsewhere are given
// for. What is not named here is measured all the same.
const std::vector<std::pair<std::string, std::vector<Setting>>>& Variants() {
    static const std::vector<std::pair<std::string, std::vector<Setting>>> variants{
        {"Brightness/Contrast", {{"Saturation", 0}}},
        {"Hue Rotate", {{"Shadow Hue Rotation", 0}, {"Midtone Hue Rotation", 0}, {"Highlight Hue Rotation", 0}}},
        {"Tint",
         {{"Tint Amount", 1}, {"Shadow Tint Amount", 0}, {"Midtone Tint Amount", 0}, {"Highlight Tint Amount", 0}}},
        {"Pixellate", {{"Size", 2}}},
        {"Oil", {{"Radius", 5}}},
        {"Oil", {{"Radius", 5}, {"Use Intensity", 0}}},
        {"Add Noise", {{"Channels", 1}}},
        {"Add Noise", {{"Distribution", 1}}},
        {"Film Grain", {{"Red Size", 1}, {"Green Size", 1}, {"Blue Size", 1}}},
        {"Stained Glass", {{"Spacing", 5}, {"Randomness", 1}, {"Edges", 0.2}}},
        {"Blur", {{"Softness", 10}}},
        {"Super Soften", {{"Softness", 30}, {"Quality", 2}}},
        {"Super Soften", {{"Softness", 30}, {"Quality", 3}}},
        {"Median", {{"Radius", 1}}},
        {"Median", {{"Radius", 2}}},
        {"Median", {{"Radius", 5}}},
        {"Median", {{"Radius", 20}}},
    };
    return variants;
}

// A quarter and three quarters: at the ends, and in the middle of a range around 0, a filter may have nothing to do.
constexpr double quarter = 0.25;

std::vector<Case> Cases() {
    std::vector<Case> cases;
    for (const Filter* filter : FilterRegistry::Instance().Filters()) {
        const std::string name(filter->Name());
        for (const double part : {quarter, 0.75})
            cases.push_back({filter, name + (part == quarter ? ",quarter" : ",three quarters"), part, {}});
        for (const auto& [label, settings] : Variants()) {
            if (label != filter->Label()) continue;
            Case variant{filter, name, quarter, settings};
            for (const Setting& setting : settings)
                variant.name += "," + setting.label + "=" + std::to_string(setting.value).substr(0, 4);
            cases.push_back(variant);
        }
    }
    return cases;
}

// Brings a parameter to that part of its range, a choice to the one there, a curve to one that is no identity.
void SetPart(Filter& filter, ParameterValue& value, double part) {
    const ParameterDef& definition = *value.getParameter();
    double from = 0.0;
    double to = 1.0;
    definition.getRange(from, to);
    if (definition.type == ParameterType::graph) {
        ShapePointList curve;
        curve[0].setOutHandle(0.2, 0.6);
        value.setGraph(curve);
    } else if (definition.type == ParameterType::enumeration) {
        value.setEnumeration(static_cast<std::uint8_t>(part * filter.EnumCount(definition)));
    } else if (definition.type == ParameterType::colour) {
        const auto component = static_cast<std::uint16_t>(part * 16383.0);
        value.setColour({component, 8000, static_cast<std::uint16_t>(16383 - component)});
    } else {
        const double number = from + (to - from) * part;
        value.setDouble(number);
        value.setFloat(static_cast<float>(number));
        value.setInteger(static_cast<std::int32_t>(number));
        value.setBoolean(part > 0.5);
    }
    filter.setParameter(&value);
}

std::unique_ptr<Filter> FilterOf(const Case& work) {
    auto filter = work.prototype->CreateNew();
    for (const auto& value : *filter->MakeValues(false, nullptr, nullptr)) SetPart(*filter, *value, work.part);
    for (const Setting& setting : work.settings) test::SetNumber(*filter, setting.label, setting.value);
    return filter;
}

const Image& Picture(std::int32_t width, std::int32_t height, Depth depth) {
    static std::map<std::tuple<std::int32_t, std::int32_t, Depth>, std::unique_ptr<Image>> pictures;
    auto& picture = pictures[{width, height, depth}];
    if (!picture) {
        picture = std::make_unique<Image>(
            test::NoisePicture({0, 0, width - 1, height - 1}, PixelType::Colour, depth, AlphaForm::Straight, 20261121));
        picture->FillChannel(1.0);
    }
    return *picture;
}

// The shortest of all times taken, which is what a machine shared with others comes closest to the truth with.
class Shortest {
public:
    void Add(double seconds) { m_seconds = std::min(m_seconds, seconds); }
    [[nodiscard]] double Seconds() const { return m_seconds; }

private:
    double m_seconds = 1e9;
};

// Seconds on the clock, and of processor time over all threads.
struct Times {
    double clock = std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    double processor = static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
};

constexpr std::int32_t frame = 1;

// Every run draws the same random numbers.
void StartOver(Filter& filter, const Image& source) {
    SeedRandom(11);
    filter.Advance(&source, frame, 0, 0, 0, 0);
}

std::unique_ptr<Image> Fresh(const Case& work, const Image& source) {
    const auto filter = FilterOf(work);  // a fresh object, since some keep what they drew
    StartOver(*filter, source);
    return test::Applied(*filter, source);
}

// True when the plain reference makes the same of a piece of the picture. It takes far longer than the filter, hence a
// piece, which is wider than the registers and the bands of the rows. A filter that has none is compared with its plain
// forms alone.
bool IsAsReference(const Case& work, const Image& source) {
    const auto piece = source.Convert(Rect(11, 7, 11 + 136, 7 + 70), source.GetDepth());
    const auto filter = FilterOf(work);
    const auto result = Fresh(work, *piece);
    SeedRandom(11);
    const std::optional<Image> wanted = reference::Filtered(*filter, *piece, frame);
    return !wanted || (result && test::SamePixels(*result, *wanted));
}

// True when the whole picture is the one that one worker makes without forms for wider registers.
bool IsAsPlainForms(const Case& work, const Image& source) {
    const auto result = Fresh(work, source);
    const test::ScopedCpuFeatures plain(CpuFeatures::Plain);
    MultiProcessor::Restart(1);
    const auto wanted = Fresh(work, source);
    return wanted && result ? test::SamePixels(*result, *wanted) : !wanted && !result;
}

void ApplyFilter(benchmark::State& state, const Case& work, std::int32_t width, std::int32_t height, Depth depth,
                 std::int32_t workers) {
    MultiProcessor::Restart(workers);
    const auto filter = FilterOf(work);
    const Image& picture = Picture(width, height, depth);
    const Image* source = &picture;
    std::unique_ptr<Image> converted;
    if (filter->WorkingDepth(depth) != depth) {
        converted = picture.Convert(Rect(), filter->WorkingDepth(depth));
        source = converted.get();
    }
    Shortest run;
    Shortest processor;
    Shortest copy;  // measured between the runs, so that both see the machine in the same mood
    std::unique_ptr<Image> result;
    for (auto _ : state) {
        result.reset();
        const Times start;
        benchmark::DoNotOptimize(result = source->Clone());
        const Times copied;
        result.reset();
        StartOver(*filter, *source);
        const Times cleared;
        filter->Apply(*source, result, false, nullptr, false);
        benchmark::DoNotOptimize(result.get());
        const Times end;
        copy.Add(copied.clock - start.clock);
        run.Add(end.clock - cleared.clock);
        processor.Add(end.processor - cleared.processor);
    }
    const double pixels = static_cast<double>(width) * height;
    state.counters["ns/px"] = run.Seconds() * 1e9 / pixels;
    state.counters["cpu ns/px"] = processor.Seconds() * 1e9 / pixels;
    state.counters["copy ratio"] = run.Seconds() / copy.Seconds();
    if (!IsAsReference(work, *source)) state.SkipWithError("differs from the plain reference");
    if (!IsAsPlainForms(work, *source)) state.SkipWithError("differs from its plain forms");
    MultiProcessor::Restart(0);
}

const bool registered = [] {
    for (const Case& work : Cases()) {
        for (const std::int32_t height : {1024, 2160}) {
            const std::int32_t width = height == 1024 ? 1024 : 3840;
            for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
                for (const std::int32_t workers : {1, 2}) {
                    const std::string name = "Filter/" + work.name + "/" + std::to_string(width) + "x" +
                                             std::to_string(height) + (depth == Depth::Eight ? "/8bit" : "/14bit") +
                                             "/workers:" + std::to_string(workers);
                    benchmark::RegisterBenchmark(
                        name.c_str(),
                        [=](benchmark::State& state) { ApplyFilter(state, work, width, height, depth, workers); })
                        ->UseRealTime()
                        ->Unit(benchmark::kMillisecond);
                }
            }
        }
    }
    return true;
}();

}  // namespace
