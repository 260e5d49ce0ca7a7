#include "apps/chalkpane/filtering/picture_image.h"

#include <algorithm>
#include <array>
#include <new>
#include <span>
#include <string>
#include <type_traits>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/image/image_rows.h"
#include "chalkpane/image/pixel_format.h"
#include "cli/error.h"

namespace chalkpane::app {
namespace {

using picture_io::AnyPicture;
using picture_io::BasicPicture;
using picture_io::Picture;
using picture_io::Picture16;

// A channel of a file as one of an image, and back.
template <typename F, typename Word>
typename F::Channel ChannelOf(Word word) {
    if constexpr (std::is_same_v<F, PixelFormat8>)
        return sizeof(Word) == 1 ? static_cast<std::uint8_t>(word) : static_cast<std::uint8_t>(word >> 8);
    else
        return sizeof(Word) == 1 ? Widen(static_cast<std::uint8_t>(word)) : ChannelOf16(word);
}
std::uint8_t WordOf(std::uint8_t channel) { return channel; }
std::uint16_t WordOf(std::uint16_t channel) { return WordOf14(channel); }

constexpr std::array<std::size_t, 4> fileOrder{2, 1, 0, 3};  // red, green, blue, alpha among an image's channels

template <typename F, typename Word>
void FillFromPicture(Image& image, const BasicPicture<Word>& picture, std::int32_t topY) {
    const auto* word = picture.rgba.data();
    for (std::int32_t y = topY; y > topY - picture.height; --y) {
        const auto row = ImageRow<F>(image, y);
        for (std::size_t i = 0; i < row.size(); i += 4)
            for (std::size_t c = 0; c < 4; ++c) row[i + c] = ChannelOf<F>(word[i + fileOrder[c]]);
        word += row.size();
    }
}

template <typename F>
auto ToPicture(const Image& image) {
    BasicPicture<typename F::Channel> picture(image.Width(), image.Height());
    auto* word = picture.rgba.data();
    for (std::int32_t y = image.y1; y >= image.y0; --y) {
        const auto row = ImageRow<F>(image, y);
        for (std::size_t i = 0; i < row.size(); i += 4)
            for (std::size_t c = 0; c < 4; ++c) word[i + c] = WordOf(row[i + fileOrder[c]]);
        word += row.size();
    }
    return picture;
}

// The luma weights for bytes, at both depths: they add up to 256, so white is full scale.
std::int32_t Lightness(std::int32_t red, std::int32_t green, std::int32_t blue) {
    return (77 * red + 151 * green + 28 * blue) >> 8;
}

template <typename F>
void Multiply(std::span<typename F::Channel> row) {
    for (std::size_t i = 0; i < row.size(); i += 4)
        for (std::size_t c = i; c < i + 3; ++c) row[c] = static_cast<typename F::Channel>(F::Scale(row[c], row[i + 3]));
}

template <typename F>
void Divide(std::span<typename F::Channel> row) {
    for (std::size_t i = 0; i < row.size(); i += 4) {
        const std::int32_t alpha = row[i + 3];
        for (std::size_t c = i; c < i + 3; ++c) {
            const std::int32_t straight = alpha == 0 ? 0 : (row[c] * F::fullScale + alpha / 2) / alpha;
            row[c] = static_cast<typename F::Channel>(std::min(straight, F::fullScale));
        }
    }
}

Depth DepthIn(const AnyPicture& picture) {
    return std::holds_alternative<Picture16>(picture) ? Depth::Fourteen : Depth::Eight;
}

}  // namespace

std::unique_ptr<Image> ImageOf(const AnyPicture& picture, std::optional<Depth> depth, AlphaForm form) {
    const Depth imageDepth = depth.value_or(DepthIn(picture));
    auto image = std::visit(
        [imageDepth](const auto& file) {
            auto made =
                std::make_unique<Image>(Image::Colour(file.width, file.height, imageDepth, AlphaForm::Straight));
            WithFormatOf(*made, [&]<typename F>(F) { FillFromPicture<F>(*made, file, made->y1); });
            return made;
        },
        picture);
    SetAlphaForm(*image, form);
    return image;
}

std::unique_ptr<Image> ReadImage(const std::filesystem::path& file, std::optional<Depth> depth, AlphaForm form) {
    const AnyPicture picture = picture_io::ReadAnyPicture(file);
    std::visit(
        [&](const auto& any) {
            RequireImageSize(any.width, any.height, depth.value_or(DepthIn(picture)), file.string());
        },
        picture);
    return ImageOf(picture, depth, form);
}

void RequireImageSize(std::int32_t width, std::int32_t height, Depth depth, const std::string& name) {
    const std::int64_t bytes = std::int64_t{width} * height * (depth == Depth::Fourteen ? 8 : 4);
    if (bytes < std::int64_t{1} << 31) return;
    throw cli::Error(name, {},
                     std::to_string(width) + " x " + std::to_string(height) + " pixels of " +
                         (depth == Depth::Fourteen ? "14" : "8") +
                         " bits are too many: a picture that is worked on takes less than 2 GiB");
}

void FillRows(Image& image, const AnyPicture& rows, std::int32_t topY) {
    std::visit(
        [&](const auto& any) { WithFormatOf(image, [&]<typename F>(F) { FillFromPicture<F>(image, any, topY); }); },
        rows);
}

AnyPicture PictureOf(const Image& image) {
    const std::unique_ptr<Image> straight = image.IsPremultiplied() ? image.Clone() : nullptr;
    if (straight) SetAlphaForm(*straight, AlphaForm::Straight);
    const Image& source = straight ? *straight : image;
    return WithFormatOf(source, [&]<typename F>(F) -> AnyPicture { return ToPicture<F>(source); });
}

std::unique_ptr<Image> MaskOf(const AnyPicture& picture, Depth depth) {
    const auto colour = ImageOf(picture, depth, AlphaForm::Straight);
    auto mask = std::make_unique<Image>(Image::Mask(colour->Bounds(), depth));
    WithFormatOf(*mask, [&]<typename F>(F) {
        for (std::int32_t y = mask->y0; y <= mask->y1; ++y) {
            const auto from = ImageRow<F>(*colour, y);
            const auto to = ImageRow<F>(*mask, y);
            for (std::size_t x = 0; x < static_cast<std::size_t>(mask->Width()); ++x)
                to[x] = static_cast<typename F::Channel>(
                    F::Scale(Lightness(from[4 * x + 2], from[4 * x + 1], from[4 * x]), from[4 * x + 3]));
        }
    });
    return mask;
}

void SetAlphaForm(Image& image, AlphaForm form) {
    if (image.GetAlphaForm() == form) return;
    const bool wanted = form == AlphaForm::Premultiplied;
    WithFormatOf(image, [&]<typename F>(F) {
        for (std::int32_t y = image.y0; y <= image.y1; ++y)
            wanted ? Multiply<F>(ImageRow<F>(image, y)) : Divide<F>(ImageRow<F>(image, y));
    });
    image.DeclareAlphaForm(form);
}

void WriteImage(const Image& image, const std::filesystem::path& file) {
    std::visit([&file](const auto& picture) { picture_io::WritePicture(picture, file); }, PictureOf(image));
}

void RequireNoLoss() {
    if (MemoryLossCount() != 0) throw std::bad_alloc();
}

}  // namespace chalkpane::app
