#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/filter_registry.h"
#include "chalkpane/parameters/shape_point_list.h"
#include "tests/chalkpane/filters/filter_pictures.h"

// Every filter of the registry on a whole picture: nanoseconds a pixel by the clock and by the processor, and the ratio
// to copying the picture, each from the shortest run. The time of an iteration holds a copy too.

namespace {

using namespace chalkpane;

struct Setting {
    const char* label;
    double value;
};

// What is measured: a filter, and the settings under which it has work to do. What is not named here works as it is
// made.
struct Case {
    const Filter* prototype;
    std::string name;
    std::vector<Setting> settings;
};

const std::map<std::string, std::vector<Setting>, std::less<>>& Settings() {
    static const std::map<std::string, std::vector<Setting>, std::less<>> settings{
        {"Chroma Scale", {{"Chroma Scale", 60}}},
        {"Component Correct", {{"Component", 0}}},
        {"RGB Channel Mixer", {{"Green Input", 0.4}}},
        {"Hue Rotate", {{"Hue Rotation", 50}, {"Midtone Hue Rotation", 20}}},
        {"Colour Jitter", {{"Hue Rotation", 50}}},
        {"Add/Subtract", {{"Add", 0.3}}},
        {"Tint", {{"Tint Amount", 0.5}}},
        {"Color Dodge", {{"Amount", 0.5}}},
        {"Pixellate", {{"Size", 8}}},
        {"Turbulence", {{"Amount", 5}}},
        {"Oil", {{"Radius", 5}}},
        {"Add Noise", {{"Level", 0.3}}},
        {"Film Grain", {{"Red Level", 0.3}, {"Green Level", 0.3}, {"Blue Level", 0.3}}},
        {"Random Jitter", {{"Max Angle", 10}, {"Max Move X", 5}}},
        {"Erode/Dilate", {{"Radius", 5}}},
        {"Blur", {{"Softness", 10}}},
        {"Super Soften", {{"Softness", 30}}},
        {"Smart Blur", {{"Softness", 5}}},
        {"Median", {{"Radius", 1}}},
        {"Edge Detect", {{"Brightness", 5}}},
        {"Remove Red-eye", {{"Sensitivity", 0.1}}},
    };
    return settings;
}

// Further settings that a filter's cost depends on; they come on top of those above.
const std::vector<std::pair<std::string, std::vector<Setting>>>& Variants() {
    static const std::vector<std::pair<std::string, std::vector<Setting>>> variants{
        {"Brightness/Contrast", {{"Saturation", 0}}},
        {"Hue Rotate", {{"Midtone Hue Rotation", 0}}},
        {"Tint", {{"Tint Amount", 1}}},
        {"Tint", {{"Shadow Tint Amount", 0.5}, {"Midtone Tint Amount", 0.5}, {"Highlight Tint Amount", 0.5}}},
        {"Pixellate", {{"Size", 2}}},
        {"Oil", {{"Radius", 1}}},
        {"Oil", {{"Use Intensity", 0}}},
        {"Add Noise", {{"Channels", 1}}},
        {"Add Noise", {{"Distribution", 1}}},
        {"Add Noise", {{"Distribution", 1}, {"Channels", 1}, {"Density %", 50}}},
        {"Film Grain", {{"Red Size", 3}, {"Green Size", 3}, {"Blue Size", 3}}},
        {"Stained Glass", {{"Spacing", 5}, {"Randomness", 1}, {"Edges", 0.2}}},
        {"Halftone", {{"Color", 1}, {"Shape", 1}, {"Red/Black Angle", 15}, {"Green Angle", 45}, {"Blue Angle", 75}}},
        {"Super Soften", {{"Softness", 2.5}}},
        {"Super Soften", {{"Quality", 3}}},
        {"Median", {{"Radius", 2}}},
        {"Median", {{"Radius", 5}}},
        {"Median", {{"Radius", 20}}},
    };
    return variants;
}

std::vector<Case> Cases() {
    std::vector<Case> cases;
    for (const Filter* filter : FilterRegistry::Instance().Filters()) {
        Case plain{filter, std::string(filter->Name()), {}};
        if (const auto found = Settings().find(filter->Label()); found != Settings().end())
            plain.settings = found->second;
        cases.push_back(plain);
        for (const auto& [label, settings] : Variants()) {
            if (label != filter->Label()) continue;
            Case variant = plain;
            for (const Setting& setting : settings) {
                variant.settings.push_back(setting);
                variant.name += std::string(",") + setting.label + "=" + std::to_string(setting.value).substr(0, 4);
            }
            cases.push_back(variant);
        }
    }
    return cases;
}

// A curve that is no identity, for the filters that have one.
void BendCurve(Filter& filter) {
    const DataSet* const values = filter.MakeValues(false, nullptr, nullptr);
    for (const auto& value : *values) {
        if (value->getParameter()->type != ParameterType::graph) continue;
        ShapePointList curve;
        curve[0].setOutHandle(0.2, 0.6);
        value->setGraph(curve);
        filter.setParameter(value.get());
    }
}

const Image& Picture(std::int32_t width, std::int32_t height, std::int32_t depth) {
    static std::map<std::vector<std::int32_t>, std::unique_ptr<Image>> pictures;
    auto& picture = pictures[{width, height, depth}];
    if (!picture) {
        picture = std::make_unique<Image>(
            test::NoisePicture({0, 0, width - 1, height - 1}, Image::colourType, depth, 0, 20261121));
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

void ApplyFilter(benchmark::State& state, const Case& work, std::int32_t width, std::int32_t height, std::int32_t depth,
                 std::int32_t workers) {
    MultiProcessor::Restart(workers);
    const auto filter = work.prototype->CreateNew();
    BendCurve(*filter);
    for (const Setting& setting : work.settings) test::SetNumber(*filter, setting.label, setting.value);
    const Image& picture = Picture(width, height, depth);
    const Image* source = &picture;
    std::unique_ptr<Image> converted;
    if (filter->PreferredDepth(depth) != depth) {
        converted = picture.Convert(Rect(), filter->PreferredDepth(depth));
        source = converted.get();
    }
    filter->Advance(source, 1, 0, 0, 0, 0);
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
    MultiProcessor::Restart(0);
}

const bool registered = [] {
    for (const Case& work : Cases()) {
        for (const std::int32_t height : {1024, 2160}) {
            const std::int32_t width = height == 1024 ? 1024 : 3840;
            for (const std::int32_t depth : {0, 1}) {
                for (const std::int32_t workers : {1, 2}) {
                    const std::string name = "Filter/" + work.name + "/" + std::to_string(width) + "x" +
                                             std::to_string(height) + (depth == 0 ? "/8bit" : "/14bit") +
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
