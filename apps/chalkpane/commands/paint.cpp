#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "apps/chalkpane/commands/commands.h"
#include "apps/chalkpane/commands/preset_options.h"
#include "apps/chalkpane/curves/frame_rate_clock.h"
#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/filtering/picture_look.h"
#include "apps/chalkpane/strokes/preset_brush.h"
#include "apps/chalkpane/strokes/stroke_painter.h"
#include "apps/chalkpane/strokes/strokes_file.h"
#include "apps/chalkpane/strokes/strokes_memory.h"
#include "apps/chalkpane/values/value_parsing.h"
#include "cli/error.h"
#include "cli/memory_budget.h"
#include "cli/memory_option.h"
#include "cli/progress_line.h"
#include "picture_io/output_files.h"

namespace chalkpane::app {
namespace {

struct PaintArguments {
    std::string strokes;
    std::string output;
    std::string picture;
    std::optional<std::int32_t> bits;
    std::uint64_t memory = cli::MemoryBudget::HalfOfTheMachine();  // bytes
    std::int32_t frame = 0;
    double rate = FrameRateClock::usualRate;
    std::string preset;
    SavedPreset saved;
    PictureLook look;
};

// Keys of the preset are taken at the frame that is painted.
std::optional<PresetBrush> BrushOf(const PaintArguments& arguments, FrameRateClock& clock) {
    if (arguments.preset.empty()) return std::nullopt;
    clock.StandAt(arguments.frame);
    return std::optional<PresetBrush>(std::in_place, ReadPreset(arguments.preset, clock), arguments.preset);
}

// Empty when no preset is to be written.
std::string TextToSave(const PaintArguments& arguments, std::optional<PresetBrush>& brush, const StrokesFile& file,
                       Image& canvas, PictureFiles& pictures) {
    if (arguments.saved.file.empty()) return {};
    if (brush) return TextForFile(brush->View(), arguments.saved.file);
    const Preset preset = PresetOfStrokes(file, canvas, pictures);
    return TextForFile(ViewOf(preset), arguments.saved.file);
}

void Paint(const PaintArguments& arguments) {
    picture_io::OutputFiles outputs;
    for (const std::string& input : {arguments.strokes, arguments.picture, arguments.preset})
        if (!input.empty()) outputs.AnnounceInput(input);
    outputs.Announce(arguments.output);
    AnnouncePreset(arguments.saved, outputs);
    FrameRateClock clock(arguments.rate);
    auto brush = BrushOf(arguments, clock);
    StrokesFile file = ReadStrokes(arguments.strokes);
    std::optional<Depth> depth;
    if (arguments.bits) depth = DepthOfBits(*arguments.bits);
    StrokesMemory memory(arguments.memory, arguments.strokes);
    memory.Count(file, arguments.picture, depth);
    if (!file.canvas.picture.empty()) outputs.AnnounceInput(file.canvas.picture);
    auto canvas = MakeCanvas(file, arguments.picture, depth);
    RequireDepth(arguments.output, canvas->GetDepth());
    PictureFiles pictures(canvas->GetDepth(), [&](const auto& picture) {
        outputs.AnnounceInput(picture);
        memory.CountPicture(picture);
    });
    PaintOptions options;
    options.frame = arguments.frame;
    if (brush) {
        brush->ReadPictures(pictures);
        brush->TakeFrame(file, *canvas, arguments.frame);
        options.brush = &brush->Brush();
    }
    const std::string preset = TextToSave(arguments, brush, file, *canvas, pictures);
    {
        cli::ProgressLine line("point", PointCount(file));
        options.progress = [&line](std::int64_t points) { line.Show(points); };
        PaintStrokes(file, *canvas, pictures, options);
    }
    StageImage(std::move(canvas), arguments.output, outputs, arguments.look);
    if (!preset.empty()) outputs.StageText(preset, arguments.saved.file);
    outputs.Commit();
}

}  // namespace

void AddPaintCommand(CLI::App& program) {
    const auto arguments = std::make_shared<PaintArguments>();
    CLI::App* const command = program.add_subcommand("paint", "Paints the strokes of a file with the brush engine");
    command->add_option("strokes", arguments->strokes, "A file of strokes (JSON; see docs/strokes.md)")->required();
    command
        ->add_option("output", arguments->output, "The picture to write (docs/pictures.md), or - for standard output")
        ->required();
    command->add_option("--picture", arguments->picture, "A picture to paint on, instead of the file's canvas");
    command->add_option("--depth", arguments->bits, "Bits a channel, 8 or 14; otherwise what the file says")
        ->check(CLI::IsMember({8, 14}));
    cli::AddMemoryOption(*command, arguments->memory);
    command->add_option("--frame", arguments->frame, "The frame that filters with a course in time are at")
        ->check(CLI::Range(0, 1'000'000));
    command
        ->add_option("--preset", arguments->preset,
                     "A preset of a brush (docs/presets.md) to paint with, instead of the file's brushes")
        ->type_name("PRESET");
    AddRateOption(*command, arguments->rate);
    AddLookOptions(*command, arguments->look);
    AddSaveOption(*command, arguments->saved, "Writes the brush that paints as a preset");
    command->callback([arguments] { Paint(*arguments); });
}

}  // namespace chalkpane::app
