#include "apps/chalkpane/filtering/file_filtering.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "apps/chalkpane/filtering/band_run.h"
#include "apps/chalkpane/filtering/filter_memory.h"
#include "apps/chalkpane/filtering/picture_filtering.h"
#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/filtering/picture_look.h"
#include "cli/error.h"
#include "cli/file_bytes.h"
#include "picture_io/row_reader.h"
#include "picture_io/row_writer.h"

namespace chalkpane::app {
namespace {

using Bytes = std::vector<std::uint8_t>;
using picture_io::RowReader;
using picture_io::RowWriter;

constexpr std::int32_t rowsAtOnce = 64;

Bytes BytesOf(const std::filesystem::path& in, const FilterOptions& options) {
    if (in != "-") return cli::ReadFileBytes(in);
    Bytes bytes = cli::ReadStandardInput(options.memory);
    CheckStreamMemory(bytes, options);
    return bytes;
}

// One file through the filters.
class FileFilter {
public:
    FileFilter(const std::filesystem::path& in, std::filesystem::path out, const FilterOptions& options,
               const RowProgress& progress)
        : m_name(in == "-" ? "standard input" : in.string()),
          m_bytes(BytesOf(in, options)),
          m_out(std::move(out)),
          m_options(options),
          m_progress(progress),
          m_background(m_out, options.look) {}

    Bytes Run() {
        const auto filters = Filters();
        RowReader reader = Reader();
        m_depth = DepthOf(m_options).value_or(reader.HasWords() ? 1 : 0);
        RequireDepth(m_out, m_depth);
        const bool isPlain = m_options.region.empty() && m_options.mask.empty() && !m_options.expand;
        const auto rowsAround = isPlain ? RowsAround(filters) : std::nullopt;
        return rowsAround ? ByBands(reader, *rowsAround) : AsWhole(reader, filters);
    }

private:
    using FilterList = std::vector<std::unique_ptr<Filter>>;

    [[nodiscard]] RowReader Reader() const { return {m_bytes, picture_io::Depths::Any, m_name}; }

    [[nodiscard]] FilterList Filters() const {
        FrameRateClock clock(m_options.rate);
        clock.StandAt(m_options.frame);
        auto filters = FiltersOf(m_options, clock);
        std::erase_if(filters, [](const auto& filter) { return !filter->m_active; });
        return filters;
    }

    // Calls `write` with one writer after the other until one of them was content, and finishes that.
    template <typename Write>
    Bytes Written(std::int32_t width, std::int32_t height, const picture_io::PictureInfo& info, Write write) {
        const picture_io::FormatRow& format = FormatFor(m_out);
        const picture_io::WriteOptions options = OptionsFor(m_options.look, &info);
        for (auto guess = RowWriter::FirstGuess(format, options);;) {
            RowWriter writer(format, width, height, options, guess);
            if (write(writer)) {
                m_background.Tell();
                return Naming([&] { return writer.Finish(); });
            }
            guess = writer.WidenedGuess();
        }
    }

    // Straight rows of the picture.
    bool WriteRows(RowWriter& writer, const Image& rows) {
        auto picture = m_background.Behind(PictureOf(rows));
        return Naming([&] { return writer.Write(picture); });
    }

    template <typename Do>
    auto Naming(Do action) -> decltype(action()) {
        try {
            return action();
        } catch (const cli::Error& error) {
            throw cli::Error(m_out.string(), {}, error.what());
        }
    }

    void Show(std::int64_t done, std::int64_t all) const {
        if (m_progress) m_progress(done, all);
    }

    Bytes ByBands(RowReader& first, std::int32_t rowsAround) {
        const std::int32_t height = first.Height();
        bool isFirst = true;
        return Written(first.Width(), height, first.Info(), [&](RowWriter& writer) {
            std::optional<RowReader> again;
            if (!std::exchange(isFirst, false)) again.emplace(m_bytes, picture_io::Depths::Any, m_name);
            Show(0, height);
            const FilterRun run{.fast = m_options.fast, .frame = m_options.frame};
            return RunByBands(again ? *again : first, Filters(), run, m_depth, rowsAround, [&](const Image& band) {
                if (!WriteRows(writer, band)) return false;
                Show(height - band.y0, height);
                return true;
            });
        });
    }

    std::unique_ptr<Image> WholeImage(RowReader& reader, std::int64_t all) {
        auto image =
            std::make_unique<Image>(reader.Width(), reader.Height(), Image::colourType, m_depth, std::uint8_t{0});
        for (std::int32_t top = image->y1; top >= 0; top -= rowsAtOnce) {
            FillRows(*image, reader.Read(rowsAtOnce), top);
            Show(std::min(image->Height(), image->y1 - top + rowsAtOnce), all);
        }
        return image;
    }

    Bytes AsWhole(RowReader& reader, const FilterList& filters) {
        const std::int64_t height = reader.Height();
        const std::int64_t all = height * static_cast<std::int64_t>(filters.size() + 2);
        Show(0, all);
        auto source = WholeImage(reader, all);
        const auto image = Filtered(std::move(source), filters, m_options, m_options.frame,
                                    [&](std::int32_t done) { Show(height * (done + 1), all); });
        RequireNoLoss();
        SetAlphaForm(*image, AlphaForm::Straight);
        return Written(image->Width(), image->Height(), reader.Info(), [&](RowWriter& writer) {
            for (std::int32_t top = image->y1; top >= image->y0; top -= rowsAtOnce) {
                const Rect band(image->x0, std::max(image->y0, top - rowsAtOnce + 1), image->x1, top);
                if (!WriteRows(writer, *image->Convert(band, m_depth))) return false;
                Show(all - height * (band.y0 - image->y0) / image->Height(), all);
            }
            return true;
        });
    }

    std::string m_name;
    Bytes m_bytes;
    std::filesystem::path m_out;
    const FilterOptions& m_options;
    const RowProgress& m_progress;
    Background m_background;
    std::int32_t m_depth = 0;
};

}  // namespace

Bytes FilteredFile(const std::filesystem::path& in, const std::filesystem::path& out, const FilterOptions& options,
                   const RowProgress& progress) {
    return FileFilter(in, out, options, progress).Run();
}

}  // namespace chalkpane::app
