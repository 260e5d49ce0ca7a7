#include "picture_io/row_reader.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "cli/error.h"
#include "picture_io/decoded.h"
#include "picture_io/picture_format.h"
#include "picture_io/png_chunks.h"

namespace picture_io {
namespace {

using FileBytes = std::vector<std::uint8_t>;

enum class Look { Colour, ColourAlpha, Grey, GreyAlpha };

template <typename Word>
BasicPicture<Word> Noise(Look look) {
    BasicPicture<Word> picture(37, 23);
    std::uint32_t state = 7;
    for (std::size_t i = 0; i < picture.rgba.size(); ++i) {
        state = state * 1664525U + 1013904223U;
        picture.rgba[i] = static_cast<Word>(state >> 16U);
        const bool isGrey = look == Look::Grey || look == Look::GreyAlpha;
        if (isGrey && (i % 4 == 1 || i % 4 == 2)) picture.rgba[i] = picture.rgba[i - 1];
        const bool isOpaque = look == Look::Colour || look == Look::Grey;
        if (isOpaque && i % 4 == 3) picture.rgba[i] = static_cast<Word>(~Word{0});
    }
    return picture;
}

FileBytes Encoded(const AnyPicture& picture, PictureFormat format) {
    WriteOptions options;
    options.followsInfo = true;
    options.info.isGrey = true;
    return EncodePictureFile(picture, RowOf(format), options);
}

// The file with a chunk behind its header.
FileBytes WithChunk(const FileBytes& png, std::string_view type, const FileBytes& data) {
    constexpr std::ptrdiff_t headerEnd = 33;
    FileBytes with(png.begin(), png.begin() + headerEnd);
    AppendChunk(with, type, data);
    with.insert(with.end(), png.begin() + headerEnd, png.end());
    return with;
}

FileBytes Gamma(std::uint32_t gamma) {
    FileBytes bytes;
    AppendWord(bytes, gamma);
    return bytes;
}

// Reads the file in pieces, of which the last is smaller, and compares it with what is decoded at once.
void CompareWithWhole(const FileBytes& file) {
    const PictureFile whole = DecodePictureFile(file, Depths::Any);
    RowReader reader(file, Depths::Any, "file");
    CHECK_EQ(reader.HasWords(), std::holds_alternative<Picture16>(whole.picture));
    CHECK_EQ(reader.Info().isGrey, whole.info.isGrey);
    std::visit(
        [&reader]<typename Word>(const BasicPicture<Word>& picture) {
            REQUIRE_EQ(reader.Width(), picture.width);
            REQUIRE_EQ(reader.Height(), picture.height);
            std::vector<Word> read;
            for (std::int32_t left = picture.height; left > 0; left -= 5) {
                const auto rows = std::get<BasicPicture<Word>>(reader.Read(5));
                CHECK_EQ(rows.height, std::min(left, 5));
                read.insert(read.end(), rows.rgba.begin(), rows.rgba.end());
            }
            CHECK(std::ranges::equal(read, picture.rgba));
        },
        whole.picture);
}

constexpr std::array looks{Look::Colour, Look::ColourAlpha, Look::Grey, Look::GreyAlpha};

}  // namespace

TEST_CASE("Rows of a PNG are those of the whole picture, whatever channels it has and whatever gamma it names") {
    for (const Look look : looks) {
        for (const AnyPicture& picture :
             {AnyPicture(Noise<std::uint8_t>(look)), AnyPicture(Noise<std::uint16_t>(look))}) {
            const FileBytes png = Encoded(picture, PictureFormat::Png);
            CompareWithWhole(png);
            for (const std::uint32_t gamma : {45455U, 45000U, 100000U})
                CompareWithWhole(WithChunk(png, "gAMA", Gamma(gamma)));
        }
        // The color 0, 0, 0 is clear.
        const FileBytes png = Encoded(AnyPicture(Noise<std::uint8_t>(look)), PictureFormat::Png);
        if (look == Look::Colour) CompareWithWhole(WithChunk(png, "tRNS", FileBytes(6)));
        if (look == Look::Grey) CompareWithWhole(WithChunk(png, "tRNS", FileBytes(2)));
    }
}

TEST_CASE("Rows of a JPEG are those of the whole picture") {
    CompareWithWhole(Encoded(AnyPicture(Noise<std::uint8_t>(Look::Colour)), PictureFormat::Jpeg));
}

TEST_CASE("Rows of a PNG that ends too early are refused where it ends, with the name of the file") {
    for (const AnyPicture& picture :
         {AnyPicture(Noise<std::uint8_t>(Look::Colour)), AnyPicture(Noise<std::uint16_t>(Look::Colour))}) {
        FileBytes png = Encoded(picture, PictureFormat::Png);
        png.resize(png.size() / 2);
        std::string refusal;
        try {
            RowReader reader(png, Depths::Any, "half.png");
            for (std::int32_t row = 0; row < reader.Height(); ++row) (void)reader.Read(1);
        } catch (const cli::Error& error) {
            refusal = error.what();
        }
        CHECK_EQ(refusal, "half.png: PNG: ends too early");
    }
}

}  // namespace picture_io
