#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "apps/chalkpane/commands/commands.h"
#include "apps/chalkpane/commands/preset_options.h"
#include "apps/chalkpane/filtering/filter_memory.h"
#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/filtering/picture_look.h"
#include "apps/chalkpane/filtering/video_output.h"
#include "apps/chalkpane/presets/preset_places.h"
#include "apps/chalkpane/presets/preset_video.h"
#include "cli/error.h"
#include "cli/interrupt_guard.h"
#include "cli/memory_option.h"
#include "cli/progress_line.h"
#include "kel/video/video_reader.h"
#include "picture_io/output_files.h"

namespace chalkpane::app {
namespace {

using cli::Error;

constexpr std::int32_t mostFrames = 100'000;

struct AnimateOptions {
    std::string in;
    std::string out;  // a video, or the pattern of numbered pictures
    std::string preset;
    std::string frames;
    std::optional<double> rate;                                    // none: the video's, or the usual
    std::int32_t bits = 0;                                         // 0: as the source
    std::uint64_t memory = cli::MemoryBudget::HalfOfTheMachine();  // bytes
    PictureLook look;
};

// From frame 0 to the last key, or to the video's last frame, where nobody says more.
FrameRange FramesToMake(const std::string& text, const Preset& preset, const FrameRateClock& clock,
                        const kel::VideoReader* reader) {
    const std::int32_t usualLast =
        reader != nullptr ? static_cast<std::int32_t>(std::min<std::int64_t>(reader->FrameCount(), mostFrames)) - 1
                          : std::max(0, FramesOfKeys(PlacesIn(preset), clock).last);
    const FrameRange range = text.empty() ? FrameRange{0, usualLast} : ParseFrames(text);
    if (range.first < 0) throw Error("--frames", {}, "the first picture is that of frame 0");
    if (range.last - range.first >= mostFrames)
        throw Error("--frames", {}, "a film has at most " + std::to_string(mostFrames) + " pictures at a time");
    return range;
}

// Calls `take` with each frame and its image.
template <typename Take>
void MakeFrames(PresetVideo& video, const FrameRange& frames, FrameRateClock& clock, Take take) {
    const cli::InterruptGuard guard;
    cli::ProgressLine progress("frame", frames.last - frames.first + 1);
    for (std::int32_t frame = frames.first; frame <= frames.last; ++frame) {
        cli::InterruptGuard::ThrowIfInterrupted();
        clock.StandAt(frame);
        take(frame, video.Make(frame));
        progress.Show(frame - frames.first + 1);
    }
}

void MakePictures(PresetVideo& video, const FrameRange& frames, FrameRateClock& clock, const AnimateOptions& options,
                  picture_io::OutputFiles& outputs) {
    const picture_io::NumberedName name(options.out);
    for (std::int32_t frame = frames.first; frame <= frames.last; ++frame) outputs.Announce(name.At(frame));
    MakeFrames(video, frames, clock, [&](std::int32_t frame, std::unique_ptr<Image> image) {
        StageImage(std::move(image), name.At(frame), outputs, options.look);
    });
    outputs.Commit();
}

void WriteVideo(PresetVideo& video, const FrameRange& frames, FrameRateClock& clock, const AnimateOptions& options,
                double framesPerSecond, picture_io::OutputFiles& outputs) {
    outputs.AnnounceOther(options.out);
    VideoOutput output(options.out, framesPerSecond, true);
    MakeFrames(video, frames, clock,
               [&](std::int32_t, std::unique_ptr<Image> image) { output.Write(std::move(image)); });
    output.Commit();
}

void Animate(const AnimateOptions& options) {
    const bool makesVideo = IsVideoName(options.out);
    if (!makesVideo) (void)picture_io::NumberedName(options.out);
    picture_io::OutputFiles outputs;
    outputs.AnnounceInput(options.in);
    outputs.AnnounceInput(options.preset);
    const auto depth = options.bits == 0 ? std::nullopt : std::optional(DepthOfBits(options.bits));
    CheckAnimationMemory(options.in, depth, options.memory);
    auto reader = IsVideoName(options.in) ? std::make_unique<kel::VideoReader>(options.in) : nullptr;
    const double rate = options.rate.value_or(reader ? reader->FramesPerSecond() : FrameRateClock::usualRate);
    FrameRateClock clock(rate);
    Preset preset = ReadPreset(options.preset, clock);
    const FrameRange frames = FramesToMake(options.frames, preset, clock, reader.get());
    VideoSource source{.file = options.in, .presetFile = options.preset, .video = std::move(reader)};
    source.beforeReading = [&outputs](const auto& picture) { outputs.AnnounceInput(picture); };
    source.memory = options.memory;
    source.depth = depth;
    const auto video = MakeVideo(std::move(preset), std::move(source), clock);
    if (makesVideo)
        WriteVideo(*video, frames, clock, options, rate, outputs);
    else
        MakePictures(*video, frames, clock, options, outputs);
}

}  // namespace

void AddAnimateCommand(CLI::App& program) {
    const auto options = std::make_shared<AnimateOptions>();
    CLI::App* command = program.add_subcommand("animate", "Makes a film from a preset whose parameters have keys");
    command->add_option("in", options->in, "A picture or a film for filters, or a file of strokes for a brush")
        ->required();
    command->add_option("out", options->out, "The film to write, or pictures, such as f%04d.png")
        ->type_name("FILM or PATTERN")
        ->required();
    command->add_option("--preset", options->preset, "The preset (docs/presets.md)")->type_name("PRESET")->required();
    AddFramesOption(*command, options->frames, "from 0 to the last key, or all of the film");
    command->add_option("--rate", options->rate, "Frames to a second (default: the film's, or 25)")
        ->type_name("RATE")
        ->check(rateRange);
    command->add_option("--depth", options->bits, "Bits a channel, 8 or 14 (default: as the source has)")
        ->type_name("BITS")
        ->check(CLI::IsMember({8, 14}));
    cli::AddMemoryOption(*command, options->memory);
    AddLookOptions(*command, options->look);
    command->callback([options] { Animate(*options); });
}

}  // namespace chalkpane::app
