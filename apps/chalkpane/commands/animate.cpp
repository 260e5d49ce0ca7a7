#include <algorithm>
#include <memory>

#include "apps/chalkpane/commands/commands.h"
#include "apps/chalkpane/commands/preset_options.h"
#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/presets/preset_film.h"
#include "apps/chalkpane/presets/preset_places.h"
#include "cli/error.h"
#include "cli/interrupt_guard.h"
#include "cli/progress_line.h"
#include "picture_io/output_files.h"

namespace chalkpane::app {
namespace {

using cli::Error;

constexpr std::int32_t mostFrames = 100'000;

struct AnimateOptions {
    std::string in;
    std::string pattern;
    std::string preset;
    std::string frames;
    double rate = FrameRateClock::usualRate;
    std::int32_t bits = 0;  // 0: as the source
};

// From frame 0 to the last key where nobody says more.
FrameRange FramesToMake(const std::string& text, const Preset& preset, const FrameRateClock& clock) {
    const FrameRange range =
        text.empty() ? FrameRange{0, std::max(0, FramesOfKeys(PlacesIn(preset), clock).last)} : ParseFrames(text);
    if (range.first < 0) throw Error("--frames", {}, "the first picture is that of frame 0");
    if (range.last - range.first >= mostFrames)
        throw Error("--frames", {}, "a film has at most " + std::to_string(mostFrames) + " pictures at a time");
    return range;
}

void Animate(const AnimateOptions& options) {
    const picture_io::NumberedName name(options.pattern);
    FrameRateClock clock(options.rate);
    Preset preset = ReadPreset(options.preset, clock);
    const FrameRange frames = FramesToMake(options.frames, preset, clock);
    picture_io::OutputFiles outputs;
    for (std::int32_t frame = frames.first; frame <= frames.last; ++frame) outputs.Announce(name.At(frame));

    VideoSource source{options.in, options.preset, {}};
    if (options.bits != 0) source.depth = options.bits == 8 ? 0 : 1;
    const auto film = MakeVideo(std::move(preset), source, clock);
    const cli::InterruptGuard guard;
    {
        cli::ProgressLine progress("frame", frames.last - frames.first + 1);
        for (std::int32_t frame = frames.first; frame <= frames.last; ++frame) {
            if (cli::InterruptGuard::IsInterrupted())
                throw CLI::RuntimeError("interrupted", cli::InterruptGuard::exitCode);
            clock.StandAt(frame);
            StageImage(*film->Make(frame), name.At(frame), outputs);
            progress.Show(frame - frames.first + 1);
        }
    }
    outputs.Commit();
}

}  // namespace

void AddAnimateCommand(CLI::App& program) {
    const auto options = std::make_shared<AnimateOptions>();
    CLI::App* command = program.add_subcommand("animate", "Makes a film from a preset whose parameters have keys");
    command->add_option("in", options->in, "A picture for filters, or a file of strokes for a brush")->required();
    command->add_option("out", options->pattern, "The pictures to write, such as f%04d.png")
        ->type_name("PATTERN")
        ->required();
    command->add_option("--preset", options->preset, "The preset (docs/presets.md)")->type_name("PRESET")->required();
    AddFrameOptions(*command, options->frames, options->rate, "from 0 to the last key");
    command->add_option("--depth", options->bits, "Bits a channel, 8 or 14 (default: as the source has)")
        ->type_name("BITS")
        ->check(CLI::IsMember({8, 14}));
    command->callback([options] { Animate(*options); });
}

}  // namespace chalkpane::app
