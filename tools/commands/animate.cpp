#include <algorithm>
#include <memory>

#include "shared/error.h"
#include "shared/interrupt_guard.h"
#include "shared/output_files.h"
#include "shared/progress_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/preset_options.h"
#include "tools/picture_image.h"
#include "tools/preset_film.h"
#include "tools/preset_places.h"

namespace chalkpane::tools {
namespace {

using shared::Error;

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
    const shared::NumberedName name(options.pattern);
    FrameRateClock clock(options.rate);
    Preset preset = ReadPreset(options.preset, clock);
    const FrameRange frames = FramesToMake(options.frames, preset, clock);
    shared::OutputFiles outputs;
    for (std::int32_t frame = frames.first; frame <= frames.last; ++frame) outputs.Announce(name.At(frame));

    FilmSource source{options.in, options.preset, {}};
    if (options.bits != 0) source.depth = options.bits == 8 ? 0 : 1;
    const auto film = MakeFilm(std::move(preset), source, clock);
    const shared::InterruptGuard guard;
    {
        shared::ProgressLine progress("frame", frames.last - frames.first + 1);
        for (std::int32_t frame = frames.first; frame <= frames.last; ++frame) {
            if (shared::InterruptGuard::IsInterrupted())
                throw CLI::RuntimeError("interrupted", shared::InterruptGuard::exitCode);
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

}  // namespace chalkpane::tools
