#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "apps/chalkpane/commands/commands.h"
#include "apps/chalkpane/commands/preset_options.h"
#include "apps/chalkpane/filtering/file_filtering.h"
#include "apps/chalkpane/filtering/filter_memory.h"
#include "apps/chalkpane/filtering/picture_filtering.h"
#include "apps/chalkpane/filtering/video_filtering.h"
#include "apps/chalkpane/filtering/video_output.h"
#include "apps/chalkpane/presets/preset.h"
#include "cli/error.h"
#include "cli/interrupt_guard.h"
#include "cli/memory_option.h"
#include "cli/progress_line.h"
#include "cli/worker_processes.h"
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
  color                    #rrggbb, #rgb, a name such as red, or
                           red,green,blue of 0 to 16383
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
  chalkpane filter *.jpg --out-dir out --apply 'Softener:Radius=4'
  chalkpane filter - - --apply 'Invert Color' <in.png >out.png
  chalkpane filter in.mp4 out.mov --apply 'Invert Color'
)";

struct FilterLine {
    std::vector<std::string> files;
    std::string folder;  // empty: one input and one output
    FilterOptions options;
    SavedPreset saved;
};

// Of the same name in the folder, but for formats that are read alone.
std::filesystem::path NameIn(const std::filesystem::path& folder, const std::filesystem::path& in) {
    if (in == "-") throw Error("-", {}, "standard input has no name to go by in a folder; name an output");
    std::filesystem::path out = folder / in.filename();
    if (!picture_io::IsPictureName(out)) out.replace_extension(".png");
    return out;
}

std::vector<FilePair> PairsOf(const FilterLine& line) {
    if (line.folder.empty()) {
        if (line.files.size() != 2)
            throw Error("filter takes one picture and the name of another; several pictures need --out-dir");
        return {{line.files[0], line.files[1]}};
    }
    std::vector<FilePair> pairs;
    for (const std::string& file : line.files) pairs.push_back({file, NameIn(line.folder, file)});
    return pairs;
}

// The folder of the outputs, which is made where it is missing and goes again when nothing comes into it.
class OutputFolder {
public:
    explicit OutputFolder(std::filesystem::path folder) : m_folder(std::move(folder)) {
        std::error_code failure;
        m_isNew = !m_folder.empty() && std::filesystem::create_directory(m_folder, failure);
        if (failure) throw Error(m_folder.string(), {}, "cannot be made: " + failure.message());
    }
    ~OutputFolder() {
        std::error_code ignored;
        if (m_isNew) std::filesystem::remove(m_folder, ignored);  // which fails as long as there is something in it
    }
    OutputFolder(const OutputFolder&) = delete;
    OutputFolder& operator=(const OutputFolder&) = delete;
    OutputFolder(OutputFolder&&) = delete;
    OutputFolder& operator=(OutputFolder&&) = delete;

private:
    std::filesystem::path m_folder;
    bool m_isNew = false;
};

void Announce(const FilterLine& line, const std::vector<FilePair>& pairs, picture_io::OutputFiles& outputs) {
    for (const std::string& input : {line.options.mask, line.options.preset})
        if (!input.empty()) outputs.AnnounceInput(input);
    for (const FilePair& pair : pairs) outputs.AnnounceInput(pair.in);
    for (const FilePair& pair : pairs) outputs.AnnounceOnto(pair.out, pair.in);
    AnnouncePreset(line.saved, outputs);
}

void StagePreset(const FilterLine& line, picture_io::OutputFiles& outputs) {
    const std::filesystem::path file = line.saved.file;
    if (file.empty()) return;
    const FrameRateClock clock(line.options.rate);
    outputs.StageText(TextForFile(ViewOf(FiltersOf(line.options, clock), file.stem().string()), file), file);
}

// Those that FilterMany works on at a time.
void CheckMemory(const std::vector<FilePair>& pairs, const FilterOptions& options) {
    CheckFilterMemory(pairs, std::max(1U, std::thread::hardware_concurrency()), options);
}

void FilterOne(const FilePair& pair, const FilterOptions& options, picture_io::OutputFiles& outputs) {
    std::vector<std::uint8_t> bytes;
    {
        std::optional<cli::ProgressLine> progress;  // which is wiped before anything else is told
        bytes = FilteredFile(pair.in, pair.out, options, [&progress](std::int64_t done, std::int64_t all) {
            if (!progress) progress.emplace("row", all);
            progress->Show(done);
        });
    }
    outputs.StageBytes(std::move(bytes), pair.out);
}

// Each picture in a process of its own, on all processors: filters run on one of them at a time by rows, but reading
// and packing a file takes longer than most.
void FilterMany(const std::vector<FilePair>& pairs, const FilterOptions& options, picture_io::OutputFiles& outputs) {
    const cli::InterruptGuard guard;
    for (const FilePair& pair : pairs) outputs.Reserve(pair.out);
    cli::ProgressLine progress("picture", static_cast<std::int64_t>(pairs.size()));
    cli::RunInProcesses(
        pairs.size(), [&](std::size_t i) { outputs.Fill(i, FilteredFile(pairs[i].in, pairs[i].out, options)); },
        [&](std::size_t finished) {
            cli::InterruptGuard::ThrowIfInterrupted();
            progress.Show(static_cast<std::int64_t>(finished));
        });
}

void RunFilterCommand(const FilterLine& line) {
    const std::vector<FilePair> pairs = PairsOf(line);
    // What is wrong with them is told once, and first.
    (void)FiltersOf(line.options, FrameRateClock(line.options.rate));
    if (line.folder.empty() && IsVideoName(pairs[0].in)) {
        FilterVideoFile(pairs[0].in, pairs[0].out, line.options);
        return;
    }
    const OutputFolder folder(line.folder);
    picture_io::OutputFiles outputs;
    Announce(line, pairs, outputs);
    CheckMemory(pairs, line.options);
    if (line.folder.empty())
        FilterOne(pairs[0], line.options, outputs);
    else
        FilterMany(pairs, line.options, outputs);
    StagePreset(line, outputs);
    outputs.Commit();
}

}  // namespace

void AddFilterCommand(CLI::App& program) {
    const auto line = std::make_shared<FilterLine>();
    FilterOptions& options = line->options;
    CLI::App* command = program.add_subcommand("filter", "Runs filters over pictures or a film");
    command
        ->add_option("files", line->files,
                     "IN OUT: a picture or a film to read and one to write, - for standard "
                     "input and output; with --out-dir, pictures to read")
        ->required();
    command->add_option("--out-dir", line->folder, "Writes each picture into this folder, under its own name")
        ->type_name("FOLDER");
    command->add_option("--apply", options.apply, "A filter to run; several run in the order given")
        ->type_name("FILTER")
        ->expected(1)
        ->allow_extra_args(false)  // what follows is a file
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    command
        ->add_option("--depth", options.bits,
                     "Bits a channel to work in and to write, 14 as a PNG of 16 (default: as the picture has)")
        ->type_name("BITS")
        ->check(CLI::IsMember({8, 14}));
    command
        ->add_option("--region", options.region,
                     "Changes this part alone: pixels from the top left corner, both ends included")
        ->type_name("x0,y0,x1,y1");
    command
        ->add_option("--mask", options.mask,
                     "Shows the filters where this picture is white, the original where it is black")
        ->type_name("PICTURE");
    command->add_option("--frame", options.frame, "Number of the picture in a sequence, which grain and jitter follow")
        ->type_name("NUMBER");
    command->add_flag("--expand", options.expand, "Lets the picture grow by what blurs and distortions spread");
    command->add_flag("--fast", options.fast, "Lets distortions take the nearest pixel");
    command->add_option("--preset", options.preset, "A preset of filters (docs/presets.md), which run before --apply's")
        ->type_name("PRESET");
    AddRateOption(*command, options.rate);
    cli::AddMemoryOption(*command, options.memory);
    AddLookOptions(*command, options.look);
    AddSaveOption(*command, line->saved, "Writes the filters that run as a preset");
    command->footer(grammar);
    command->callback([line] { RunFilterCommand(*line); });
}

}  // namespace chalkpane::app
