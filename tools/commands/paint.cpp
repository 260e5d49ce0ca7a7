#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "shared/error.h"
#include "shared/output_files.h"
#include "shared/progress_line.h"
#include "tools/commands/commands.h"
#include "tools/paint/stroke_painter.h"
#include "tools/paint/strokes_file.h"
#include "tools/picture_image.h"
#include "tools/value_parsing.h"

namespace chalkpane::tools {
namespace {

struct PaintArguments {
    std::string strokes;
    std::string output;
    std::string picture;
    std::optional<std::int32_t> bits;
    std::int32_t frame = 0;
};

void Paint(const PaintArguments& arguments) {
    shared::OutputFiles outputs;
    outputs.Announce(arguments.output);
    const StrokesFile file = ReadStrokes(arguments.strokes);
    std::optional<std::int32_t> depth;
    if (arguments.bits) depth = *arguments.bits == 8 ? 0 : 1;
    const auto canvas = MakeCanvas(file, arguments.picture, depth);
    if (canvas->depth != 0 && !SameName(std::filesystem::path(arguments.output).extension().string(), ".png"))
        throw shared::Error(arguments.output, {}, "a JPEG has 8 bits a channel; 16 bits need a name in .png");
    PictureFiles pictures(canvas->depth);
    {
        shared::ProgressLine line("point", PointCount(file));
        PaintOptions options;
        options.frame = arguments.frame;
        options.progress = [&line](std::int64_t points) { line.Show(points); };
        PaintStrokes(file, *canvas, pictures, options);
    }
    StageImage(*canvas, arguments.output, outputs);
    outputs.Commit();
}

}  // namespace

void AddPaintCommand(CLI::App& program) {
    const auto arguments = std::make_shared<PaintArguments>();
    CLI::App* const command = program.add_subcommand("paint", "Paints the strokes of a file with the brush engine");
    command->add_option("strokes", arguments->strokes, "A file of strokes (JSON; see docs/strokes.md)")->required();
    command->add_option("output", arguments->output, "The picture to write: PNG, or JPEG at 8 bits")->required();
    command->add_option("--picture", arguments->picture, "A picture to paint on, instead of the file's canvas");
    command->add_option("--depth", arguments->bits, "Bits a channel, 8 or 14; otherwise what the file says")
        ->check(CLI::IsMember({8, 14}));
    command->add_option("--frame", arguments->frame, "The frame that filters with a course in time are at")
        ->check(CLI::Range(0, 1'000'000));
    command->callback([arguments] { Paint(*arguments); });
}

}  // namespace chalkpane::tools
