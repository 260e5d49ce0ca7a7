#include <cstdio>
#include <memory>

#include "apps/chalkpane/commands/commands.h"
#include "apps/chalkpane/commands/preset_options.h"
#include "apps/chalkpane/curves/curve_plot.h"
#include "apps/chalkpane/curves/curve_series.h"
#include "cli/error.h"
#include "cli/nearest_name.h"
#include "picture_io/output_files.h"

namespace chalkpane::app {
namespace {

struct CurveOptions {
    std::string preset;
    std::string parameter;
    std::string frames;
    std::string png;
    double rate = FrameRateClock::usualRate;
};

void PrintCurve(const ParameterValue& value, const FrameRange& frames, FrameRateClock& clock) {
    std::printf("#  frame");
    for (const std::string& name : SeriesNames(value)) std::printf(" %15s", name.c_str());
    std::printf("\n");
    for (std::int64_t frame = frames.first; frame <= frames.last; ++frame) {
        clock.StandAt(static_cast<std::int32_t>(frame));
        std::printf("%8d", static_cast<int>(frame));
        for (const double number : SeriesAt(value, clock)) std::printf(" %15.6f", number);
        for (const std::string& text : TextsAt(value, clock)) std::printf("  \"%s\"", text.c_str());
        std::printf("\n");
    }
}

void Curve(const CurveOptions& options) {
    FrameRateClock clock(options.rate);
    picture_io::OutputFiles outputs;
    outputs.AnnounceInput(options.preset);
    if (!options.png.empty()) outputs.Announce(options.png);
    const Preset preset = ReadPreset(options.preset, clock);
    const PresetPlace place = FindPlace(preset, options.preset, options.parameter);
    const std::string& name = place.value->getParameter()->name;
    if (SeriesNames(*place.value).empty())
        throw cli::Error(options.preset, {}, cli::Quoted(name) + " has no curve, as it is not made of numbers");
    const FrameRange frames = options.frames.empty() ? FramesOfKeys({place}, clock) : ParseFrames(options.frames);
    if (options.png.empty()) {
        PrintCurve(*place.value, frames, clock);
        return;
    }
    outputs.Stage(PlotCurve(*place.value, name + ", " + place.object, frames, clock), options.png);
    outputs.Commit();
}

}  // namespace

void AddCurveCommand(CLI::App& program) {
    const auto options = std::make_shared<CurveOptions>();
    CLI::App* command =
        program.add_subcommand("curve", "Prints or plots the course of a preset's parameter over frames");
    command->add_option("preset", options->preset, "The preset (docs/presets.md)")->required();
    command->add_option("parameter", options->parameter, "The parameter, such as \"Softener Radius\"")->required();
    command->add_option("--png", options->png, "Plots the curve with its keys and handles")->type_name("PICTURE");
    AddFrameOptions(*command, options->frames, options->rate, "from the first key to the last");
    command->callback([options] { Curve(*options); });
}

}  // namespace chalkpane::app
