#include <benchmark/benchmark.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "filters/filter_registry.h"
#include "filters/multi_processor.h"
#include "parameters/shape_point_list.h"
#include "tests/filters/filter_pictures.h"

// Every filter of the registry on a whole picture, in nanoseconds a pixel and as a ratio to copying the picture.

namespace {

using namespace chalkpane;

struct Setting {
    const char* label;
    double value;
};

// Settings under which a filter has work to do; what is not named here works as it is made.
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

// Seconds that copying the picture takes, the best of a few.
double CopySeconds(const Image& picture) {
    double best = 1e9;
    for (int round = 0; round < 5; ++round) {
        const auto start = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(picture.Clone());
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        best = std::min(best, taken.count());
    }
    return best;
}

void ApplyFilter(benchmark::State& state, const Filter& prototype, std::int32_t width, std::int32_t height,
                 std::int32_t depth, std::int32_t workers) {
    MultiProcessor::Restart(workers);
    const auto filter = prototype.CreateNew();
    BendCurve(*filter);
    if (const auto found = Settings().find(filter->Label()); found != Settings().end())
        for (const Setting& setting : found->second) test::SetNumber(*filter, setting.label, setting.value);
    const Image& picture = Picture(width, height, depth);
    const Image* source = &picture;
    std::unique_ptr<Image> converted;
    if (filter->PreferredDepth(depth) != depth) {
        converted = picture.Convert(Rect(), filter->PreferredDepth(depth));
        source = converted.get();
    }
    filter->Advance(source, 1, 0, 0, 0, 0);
    std::unique_ptr<Image> result;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        filter->Apply(*source, result, false, nullptr, false);
        benchmark::DoNotOptimize(result.get());
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    const double seconds = taken.count() / static_cast<double>(state.iterations());
    state.counters["ns/pixel"] = seconds * 1e9 / (static_cast<double>(width) * height);
    state.counters["copies"] = seconds / CopySeconds(*source);
    MultiProcessor::Restart(0);
}

const bool registered = [] {
    for (const Filter* filter : FilterRegistry::Instance().Filters()) {
        for (const auto& [width, height] : {std::pair{1024, 1024}, std::pair{3840, 2160}}) {
            for (const std::int32_t depth : {0, 1}) {
                for (const std::int32_t workers : {1, 2}) {
                    const std::string name = "Filter/" + std::string(filter->Name()) + "/" + std::to_string(width) +
                                             "x" + std::to_string(height) + (depth == 0 ? "/8bit" : "/14bit") +
                                             "/workers:" + std::to_string(workers);
                    benchmark::RegisterBenchmark(
                        name.c_str(),
                        [=](benchmark::State& state) { ApplyFilter(state, *filter, width, height, depth, workers); })
                        ->UseRealTime()
                        ->Unit(benchmark::kMillisecond);
                }
            }
        }
    }
    return true;
}();

}  // namespace
