#include "apps/chalkpane/filtering/video_filtering.h"

#include "apps/chalkpane/filtering/filter_memory.h"
#include "apps/chalkpane/filtering/filter_texts.h"
#include "apps/chalkpane/filtering/picture_filtering.h"
#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/filtering/video_output.h"
#include "chalkpane/image/picture_pool.h"
#include "cli/interrupt_guard.h"
#include "cli/progress_line.h"
#include "kel/video/video_reader.h"
#include "picture_io/output_files.h"

namespace chalkpane::app {
void FilterVideoFile(const std::filesystem::path& in, const std::filesystem::path& out, const FilterOptions& options) {
    RequireVideoName(out);
    picture_io::OutputFiles files;
    files.AnnounceInput(in);
    for (const std::string& input : {options.mask, options.preset})
        if (!input.empty()) files.AnnounceInput(input);
    files.AnnounceOther(out);
    CheckFilterMemory({{in, out}}, 1, options);
    FrameRateClock clock(options.rate);
    auto filters = FiltersOf(options, clock);
    std::erase_if(filters, [](const auto& filter) { return !filter->m_active; });
    kel::VideoReader reader(in);
    VideoOutput output(out, reader.FramesPerSecond(), reader.HasAlpha());
    const cli::InterruptGuard guard;
    const PicturePool pool;
    {
        cli::ProgressLine progress("frame", reader.FrameCount());
        for (std::int64_t frame = 0; frame < reader.FrameCount(); ++frame) {
            cli::InterruptGuard::ThrowIfInterrupted();
            const std::int32_t number = options.frame + static_cast<std::int32_t>(frame);
            clock.StandAt(number);
            for (const auto& filter : filters) TakeValues(*filter);
            auto source = ImageOf(reader.ReadFrame(frame), DepthAskedFor(options), AlphaForm::Straight);
            output.Write(Filtered(std::move(source), filters, options, number));
            progress.Show(frame + 1);
        }
    }
    output.Commit();
}

}  // namespace chalkpane::app
