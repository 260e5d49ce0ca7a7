#include "apps/chalkpane/filtering/file_filtering.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "apps/chalkpane/filtering/band_run.h"
#include "apps/chalkpane/filtering/chain_progress.h"
#include "apps/chalkpane/filtering/filter_memory.h"
#include "apps/chalkpane/filtering/filter_run.h"
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

Bytes BytesOf(const std::filesystem::path& in, const std::filesystem::path& out, const FilterOptions& options) {
    if (in != "-") return cli::ReadFileBytes(in);
    Bytes bytes = cli::ReadStandardInput(options.memory);
    CheckStreamMemory(bytes, out, options);
    return bytes;
}

// One file through the filters.
class FileFilter {
public:
    FileFilter(const std::filesystem::path& in, std::filesystem::path out, const FilterOptions& options,
               const RowProgress& progress)
        : m_name(in == "-" ? "standard input" : in.string()),
          m_bytes(BytesOf(in, out, options)),
          m_out(std::move(out)),
          m_options(options),
          m_progress(progress),
          m_background(m_out, options.look) {}

    Bytes Run() {
        const auto filters = Filters();
        RowReader reader = Reader();
        m_depth = DepthAskedFor(m_options).value_or(reader.HasWords() ? Depth::Fourteen : Depth::Eight);
        RequireDepth(m_out, m_depth);
        const auto rowsAround = RowsAroundFor(filters, m_options);
        return rowsAround ? ByBands(reader, *rowsAround) : AsWhole(std::move(reader), filters);
    }

private:
    using FilterList = std::vector<std::unique_ptr<Filter>>;

    [[nodiscard]] RowReader Reader() const { return {m_bytes, picture_io::Depths::Any, m_name}; }

    [[nodiscard]] FilterList Filters() const {
        FrameRateClock clock(m_options.rate);
        return ActiveFiltersOf(m_options, clock);
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
            std::make_unique<Image>(Image::Colour(reader.Width(), reader.Height(), m_depth, AlphaForm::Straight));
        for (std::int32_t top = image->y1; top >= 0; top -= rowsAtOnce) {
            FillRows(*image, reader.Read(rowsAtOnce), top);
            Show(std::min(image->Height(), image->y1 - top + rowsAtOnce), all);
        }
        return image;
    }

    std::unique_ptr<Image> Run(std::unique_ptr<Image> source, const FilterList& filters, std::int64_t all) {
        const FilterRun run = RunOf(m_options, *source, m_options.frame);
        const std::int64_t height = source->Height();
        std::optional<ChainProgress> progress;
        if (m_progress) progress.emplace(filters, height, [&](std::int64_t rows) { Show(height + rows, all); });
        auto picture = RunFilters(filters, std::move(source), run, [&progress](std::int32_t done) {
            if (progress) progress->EndFilter(done);
        });
        RequireNoLoss();
        SetAlphaForm(*picture, AlphaForm::Straight);
        return picture;
    }

    // Rows of the result mixed with those of the input, which is read once more instead of being kept.
    static std::unique_ptr<Image> MixedRows(RowReader& input, const Image& picture, const Image& mask,
                                            const Rect& band) {
        auto before = std::make_unique<Image>(Image::Colour(band, picture.GetDepth(), AlphaForm::Straight));
        FillRows(*before, input.Read(band.Height()), band.y1);
        return MixByMask(std::move(before), picture, mask);
    }

    // The picture goes as soon as the writer has it.
    bool WritePicture(RowWriter& writer, std::unique_ptr<Image>& picture, const Image* mask, std::int64_t all) {
        std::optional<RowReader> input;
        if (mask != nullptr) input.emplace(Reader());
        const Rect area = mask != nullptr ? mask->Bounds() : picture->Bounds();
        for (std::int32_t top = area.y1; top >= area.y0; top -= rowsAtOnce) {
            const Rect band(area.x0, std::max(area.y0, top - rowsAtOnce + 1), area.x1, top);
            if (!WriteRows(writer, mask != nullptr ? *MixedRows(*input, *picture, *mask, band)
                                                   : *picture->Convert(band, m_depth)))
                return false;
            Show(all - m_height * (std::int64_t{band.y0} - area.y0) / area.Height(), all);
        }
        picture.reset();
        return true;
    }

    Bytes AsWhole(RowReader reader, const FilterList& filters) {
        m_height = reader.Height();
        const std::int64_t all = m_height * static_cast<std::int64_t>(filters.size() + 2);
        Show(0, all);
        const Rect bounds(0, 0, reader.Width() - 1, reader.Height() - 1);
        (void)RunOf(m_options, bounds, m_options.frame);  // what is wrong with a region is told first
        RequireImageSize(reader.Width(), reader.Height(), m_depth, m_name);
        const auto mask = ReadMask(m_options, bounds, m_depth);
        const picture_io::PictureInfo info = reader.Info();
        auto source = WholeImage(reader, all);
        { const RowReader done = std::move(reader); }  // with whatever it had decoded
        auto picture = Run(std::move(source), filters, all);
        const Rect area = mask ? mask->Bounds() : picture->Bounds();
        return Written(area.Width(), area.Height(), info,
                       [&](RowWriter& writer) { return WritePicture(writer, picture, mask.get(), all); });
    }

    std::string m_name;
    Bytes m_bytes;
    std::filesystem::path m_out;
    const FilterOptions& m_options;
    const RowProgress& m_progress;
    Background m_background;
    Depth m_depth = Depth::Eight;
    std::int64_t m_height = 0;  // of the input
};

}  // namespace

Bytes FilteredFile(const std::filesystem::path& in, const std::filesystem::path& out, const FilterOptions& options,
                   const RowProgress& progress) {
    return FileFilter(in, out, options, progress).Run();
}

}  // namespace chalkpane::app
