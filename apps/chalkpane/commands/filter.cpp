#include <memory>
#include <string>
#include <vector>

#include "apps/chalkpane/commands/commands.h"
#include "apps/chalkpane/commands/preset_options.h"
#include "apps/chalkpane/curves/frame_rate_clock.h"
#include "apps/chalkpane/filtering/filter_run.h"
#include "apps/chalkpane/filtering/filter_texts.h"
#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/presets/preset.h"
#include "apps/chalkpane/values/value_parsing.h"
#include "cli/error.h"
#include "cli/file_bytes.h"
#include "cli/nearest_name.h"
#include "cli/progress_line.h"
#include "picture_io/output_files.h"

namespace chalkpane::app {
namespace {

using cli::Error;

constexpr const char* grammar = R"(A FILTER is
  NAME[:PARAMETER=VALUE]...
NAME and PARAMETER are labels or keys as `chalkpane filters` lists them, in upper
or lower case. Parameters that are not named keep their defaults. A VALUE is
  number, angle, integer   0.25, within the range that the list shows
  boolean                  true, yes, on, 1, false, no, off, 0
  color                    #rrggbb, or red,green,blue of 0 to 16383
  choice                   one of the words of the list, or its number from 0
  graph                    points x,y of 0 to 1, x ascending: 0,0;0.3,0.6;1,1
                           with handles: x,y,inx,iny,outx,outy
In a parameter's name a colon may stand for a blank (LUT:Graph is LUT Graph); in a
value a colon is written \:

Examples:
  chalkpane filter in.png out.png --apply 'Median:Radius=3'
  chalkpane filter in.jpg out.png --depth 14 \
    --apply 'Brightness/Contrast:Brightness=0.2:Contrast=0.1' --apply 'Invert Color'
  chalkpane filter in.png out.png --apply 'Luma Graph:LUT Graph=0,0;0.3,0.6;1,1'
  chalkpane filter in.png out.png --apply 'Tint:Tint Color=#ff8000:Tint Amount=1'
)";

struct FilterOptions {
    std::string in;
    std::string out;
    std::vector<std::string> apply;
    std::int32_t depth = 0;  // bits; 0: as the picture
    std::string region;
    std::string mask;
    std::int32_t frame = 0;
    bool expand = false;
    bool fast = false;
    std::string preset;
    std::string savedPreset;
    double rate = FrameRateClock::usualRate;
};

// Those of the preset and behind them those that are applied, with their values as they are at the clock's frame.
std::vector<std::unique_ptr<Filter>> FiltersOf(const FilterOptions& options, const FrameRateClock& clock) {
    if (options.preset.empty() && options.apply.empty())
        throw Error("there is no filter to run; name one with --apply or give a --preset");
    auto filters =
        options.preset.empty() ? std::vector<std::unique_ptr<Filter>>() : FiltersOfPreset(options.preset, clock);
    for (const std::string& text : options.apply) filters.push_back(FilterFromText(text));
    for (const auto& filter : filters) TakeValues(*filter);
    return filters;
}

// Empty when no preset is to be written.
std::string TextToSave(const FilterOptions& options, const std::vector<std::unique_ptr<Filter>>& filters) {
    const std::filesystem::path file = options.savedPreset;
    return file.empty() ? "" : TextForFile(ViewOf(filters, file.stem().string()), file);
}

// From picture pixels, y downwards from the top row, to the plane.
Rect RegionFromText(const std::string& text, const Rect& picture) {
    std::vector<std::int32_t> numbers;
    try {
        numbers = ParseIntegers(text, 4);
    } catch (const Error& error) {
        throw Error("--region", {}, error.what());
    }
    const std::string size = std::to_string(picture.Width()) + " x " + std::to_string(picture.Height());
    if (numbers[0] > numbers[2] || numbers[1] > numbers[3])
        throw Error("--region", {}, cli::Quoted(text) + " ends before it begins; it goes x0,y0,x1,y1");
    const std::int64_t height = picture.Height();
    if (numbers[0] < 0 || numbers[1] < 0 || numbers[2] >= picture.Width() || numbers[3] >= height)
        throw Error("--region", {}, cli::Quoted(text) + " does not lie within the picture of " + size + " pixels");
    const auto fromBottom = [height](std::int32_t y) { return static_cast<std::int32_t>(height - 1 - y); };
    return {numbers[0], fromBottom(numbers[3]), numbers[2], fromBottom(numbers[1])};
}

std::unique_ptr<Image> ReadMask(const std::string& file, const Image& picture) {
    auto mask = MaskOf(picture_io::ReadAnyPicture(file), picture.depth);
    if (mask->Bounds() != picture.Bounds())
        throw Error(file, {},
                    "is " + std::to_string(mask->Width()) + " x " + std::to_string(mask->Height()) +
                        " pixels, but the picture is " + std::to_string(picture.Width()) + " x " +
                        std::to_string(picture.Height()));
    return mask;
}

void RunFilterCommand(const FilterOptions& options) {
    picture_io::OutputFiles outputs;
    outputs.Announce(options.out);
    FrameRateClock clock(options.rate);
    clock.StandAt(options.frame);
    auto filters = FiltersOf(options, clock);
    const std::string preset = TextToSave(options, filters);
    std::erase_if(filters, [](const auto& filter) { return !filter->m_active; });

    std::optional<std::int32_t> depth;
    if (options.depth != 0) depth = options.depth == 8 ? 0 : 1;
    const auto source = ReadImage(options.in, depth, AlphaForm::Straight);
    FilterRun run{.fast = options.fast, .expand = options.expand, .frame = options.frame};
    if (!options.region.empty()) run.region = RegionFromText(options.region, *source);
    const auto mask = options.mask.empty() ? nullptr : ReadMask(options.mask, *source);

    std::unique_ptr<Image> picture;
    {
        cli::ProgressLine progress("filter", static_cast<std::int64_t>(filters.size()));
        progress.Show(0);
        picture = RunFilters(filters, *source, run, [&progress](std::int32_t done) { progress.Show(done); });
    }
    if (mask) picture = MixByMask(*source, *picture, *mask);
    StageImage(*picture, options.out, outputs);
    if (!preset.empty()) cli::WriteFileWhole(options.savedPreset, {preset.begin(), preset.end()});
    outputs.Commit();
}

}  // namespace

void AddFilterCommand(CLI::App& program) {
    const auto options = std::make_shared<FilterOptions>();
    CLI::App* command = program.add_subcommand("filter", "Runs filters over a picture");
    command->add_option("in", options->in, "A PNG of 8 or 16 bits a channel, or a JPEG")->required();
    command->add_option("out", options->out, "The picture to write; a PNG, or at 8 bits a JPEG")->required();
    command->add_option("--apply", options->apply, "A filter to run; several run in the order given")
        ->type_name("FILTER")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    command
        ->add_option("--depth", options->depth,
                     "Bits a channel to work in and to write, 14 as a PNG of 16 (default: as the picture has)")
        ->type_name("BITS")
        ->check(CLI::IsMember({8, 14}));
    command
        ->add_option("--region", options->region,
                     "Changes this part alone: pixels from the top left corner, both ends included")
        ->type_name("x0,y0,x1,y1");
    command
        ->add_option("--mask", options->mask,
                     "Shows the filters where this picture is white, the original where it is black")
        ->type_name("PICTURE");
    command->add_option("--frame", options->frame, "Number of the picture in a sequence, which grain and jitter follow")
        ->type_name("NUMBER");
    command->add_flag("--expand", options->expand, "Lets the picture grow by what blurs and distortions spread");
    command->add_flag("--fast", options->fast, "Lets distortions take the nearest pixel");
    command
        ->add_option("--preset", options->preset, "A preset of filters (docs/presets.md), which run before --apply's")
        ->type_name("PRESET");
    AddRateOption(*command, options->rate);
    AddSaveOption(*command, options->savedPreset, "Writes the filters that run as a preset");
    command->footer(grammar);
    command->callback([options] { RunFilterCommand(*options); });
}

}  // namespace chalkpane::app
