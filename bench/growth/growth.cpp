#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/growth/plot.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/filter_registry.h"
#include "chalkpane/image/picture_pool.h"
#include "telestrator/telestrator.h"
#include "tests/chalkpane/filters/filter_pictures.h"

// How cost grows with size: filters from 1 to 64 megapixels, strokes from 100 to a million samples, and sessions from
// 100 to a million fields, in processor time of one thread.
//
//   growth folder [filters|strokes|sessions|brief]...
//
// Prints the figures of those, or of all, and writes growth_filters.svg and so on into the folder. brief: strokes and
// sessions end at a tenth of their largest size.
namespace {

using namespace chalkpane;
using growth::Point;
using growth::Series;

double ProcessorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// The shortest of some runs, of which long ones need fewer.
template <typename Run>
double SecondsOf(Run run) {
    double shortest = 1e9;
    const double begin = ProcessorSeconds();
    for (int i = 0; i < 20; ++i) {
        const double start = ProcessorSeconds();
        run();
        shortest = std::min(shortest, ProcessorSeconds() - start);
        if (ProcessorSeconds() - begin > 0.5) break;
    }
    return shortest;
}

using Settings = std::vector<std::pair<std::string_view, double>>;

Series FilterSeries(std::string_view label, const Settings& settings) {
    Series series{std::string(label), {}};
    const PicturePool pool;  // as along a chain
    for (const double megapixels : {1.0, 2.0, 4.0, 8.0, 16.0, 32.0, 64.0}) {
        const auto height = static_cast<std::int32_t>(std::sqrt(megapixels) * 1024);
        const auto width = static_cast<std::int32_t>(megapixels * 1024 * 1024 / height);
        Image picture = test::NoisePicture({0, 0, width - 1, height - 1}, PixelType::Colour, Depth::Eight,
                                           AlphaForm::Straight, 20261121);
        picture.FillChannel(1.0);
        for (const Filter* prototype : FilterRegistry::Instance().Filters()) {
            if (prototype->Label() != label) continue;
            const auto filter = prototype->CreateNew();
            for (const auto& [name, value] : settings) test::SetNumber(*filter, name, value);
            series.points.push_back(
                {double{1} * width * height, SecondsOf([&] { (void)test::Applied(*filter, picture); })});
        }
    }
    return series;
}

// A pen's way: round and round on a slowly moving curve, some pixels a sample.
CanvasPosition PenAt(int sample) {
    const double t = sample * 0.02;
    return {512.0 + 300.0 * std::cos(t) + 100.0 * std::sin(t * 0.013), 512.0 + 280.0 * std::sin(1.1 * t)};
}

// One stroke of so many samples, with its recognition where that is wanted.
double StrokeSeconds(const TelestratorSettings& settings, int samples) {
    return SecondsOf([&] {
        Telestrator telestrator;
        telestrator.Field(settings);
        telestrator.Press(settings, PenAt(0));
        for (int sample = 1; sample < samples; ++sample) telestrator.Move(settings, PenAt(sample));
        telestrator.Release(settings, PenAt(samples));
        for (int field = 0; field <= settings.shapeDelay; ++field) telestrator.Field(settings);
        telestrator.Commit();
    });
}

// Fields of which a third draws: a stroke of 30 samples in each 90.
double SessionSeconds(const TelestratorSettings& settings, int fields) {
    return SecondsOf([&] {
        Telestrator telestrator;
        for (int field = 0; field < fields; ++field) {
            const int part = field % 90;
            if (part == 0) telestrator.Press(settings, PenAt(field));
            if (part > 0 && part < 29) telestrator.Move(settings, PenAt(field));
            if (part == 29) telestrator.Release(settings, PenAt(field));
            telestrator.Field(settings);
            telestrator.Commit();
            (void)telestrator.TakeChange();
        }
    });
}

template <typename Seconds>
Series SeriesOf(std::string name, const TelestratorSettings& settings, int largest, Seconds seconds) {
    Series series{std::move(name), {}};
    for (int size = 100; size <= largest; size *= 10)
        series.points.push_back({static_cast<double>(size), seconds(settings, size)});
    return series;
}

void Print(const std::string& unit, const Series& series) {
    std::printf("%s, ns a %s:", series.name.c_str(), unit.c_str());
    for (const Point& point : series.points) std::printf(" %.4g", point.seconds * 1e9 / point.size);
    std::printf("; a %s of the largest takes %.2f of one of a tenth\n", unit.c_str(), growth::GrowthOfUnit(series));
    std::fflush(stdout);
}

bool Show(const std::string& path, const std::string& unit, const std::vector<Series>& all) {
    for (const Series& series : all) Print(unit, series);
    if (growth::WritePlot(path, unit + "s", all)) return true;
    std::fprintf(stderr, "growth: cannot write \"%s\"\n", path.c_str());
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    static constexpr std::array<std::string_view, 4> subjects{"filters", "strokes", "sessions", "brief"};
    for (std::size_t i = 1; i < words.size(); ++i) {
        if (std::find(subjects.begin(), subjects.end(), words[i]) != subjects.end()) continue;
        std::fprintf(stderr, "growth: \"%s\" is none of filters, strokes, sessions and brief\n", words[i].c_str());
        return 2;
    }
    if (words.empty()) {
        std::fprintf(stderr, "growth: please name a folder for the plots\n");
        return 2;
    }
    const auto isNamed = [&words](std::string_view word) {
        return std::find(words.begin() + 1, words.end(), word) != words.end();
    };
    const bool isSubjectNamed = isNamed("filters") || isNamed("strokes") || isNamed("sessions");
    const int largest = isNamed("brief") ? 100000 : 1000000;
    const auto isWanted = [&](std::string_view subject) { return !isSubjectNamed || isNamed(subject); };
    MultiProcessor::Restart(1);
    const TelestratorSettings plain;
    TelestratorSettings recognising;
    recognising.recogniseShapes = true;
    recognising.recogniseCircle = true;
    bool written = true;
    if (isWanted("filters"))
        written &= Show(words[0] + "/growth_filters.svg", "pixel",
                        {FilterSeries("Invert Color", {}), FilterSeries("Blur", {{"Softness", 10}}),
                         FilterSeries("Median", {{"Radius", 5}}), FilterSeries("Add Noise", {{"Level", 0.25}}),
                         FilterSeries("Edge Detect", {{"Brightness", 5}})});
    if (isWanted("strokes"))
        written &= Show(words[0] + "/growth_strokes.svg", "sample",
                        {SeriesOf("drawn", plain, largest, StrokeSeconds),
                         SeriesOf("and recognised", recognising, largest, StrokeSeconds)});
    if (isWanted("sessions"))
        written &= Show(words[0] + "/growth_sessions.svg", "field",
                        {SeriesOf("drawn", plain, largest, SessionSeconds),
                         SeriesOf("and recognised", recognising, largest, SessionSeconds)});
    return written ? 0 : 1;
}
