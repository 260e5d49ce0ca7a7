#include "picture_io/heif_codec.h"

#include <libheif/heif.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>

#include "cli/error.h"
#include "picture_io/channels.h"
#include "picture_io/exif.h"
#include "picture_io/library_object.h"
#include "picture_io/silent_library.h"

namespace picture_io {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Free {
    void operator()(heif_context* context) const { heif_context_free(context); }
    void operator()(heif_image_handle* handle) const { heif_image_handle_release(handle); }
    void operator()(heif_image* image) const { heif_image_release(image); }
    void operator()(heif_encoder* encoder) const { heif_encoder_release(encoder); }
    void operator()(heif_decoding_options* options) const { heif_decoding_options_free(options); }
    void operator()(heif_encoding_options* options) const { heif_encoding_options_free(options); }
    void operator()(heif_color_profile_nclx* profile) const { heif_nclx_color_profile_free(profile); }
};
template <typename T>
using Owned = std::unique_ptr<T, Free>;

void Check(const heif_error& result, const FormatRow& format) {
    if (result.code == heif_error_Ok) return;
    if (result.code == heif_error_Memory_allocation_error && result.subcode != heif_suberror_Security_limit_exceeded)
        throw std::bad_alloc();
    std::string reason = result.message;
    reason.erase(reason.find_last_not_of(' ') + 1);
    throw cli::Error(std::string(format.name) + ": " + reason);
}

// What a block holds behind the four bytes that say how far behind them it begins.
Bytes BehindOffset(Bytes block) {
    if (block.size() < 4) return {};
    std::size_t offset = 0;
    for (std::size_t i = 0; i < 4; ++i) offset = offset << 8U | block[i];
    if (offset > block.size() - 4) return {};
    block.erase(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(offset + 4));
    return block;
}

void TakeBlock(const heif_image_handle& handle, heif_item_id block, PictureInfo& info) {
    Bytes data(heif_image_handle_get_metadata_size(&handle, block));
    if (data.empty() || heif_image_handle_get_metadata(&handle, block, data.data()).code != heif_error_Ok) return;
    if (std::string_view(heif_image_handle_get_metadata_type(&handle, block)) == "Exif")
        info.exif = BehindOffset(std::move(data));
    else if (std::string_view(heif_image_handle_get_metadata_content_type(&handle, block)) == "application/rdf+xml")
        info.xmp = std::move(data);
}

void TakeInfo(const heif_image_handle& handle, PictureInfo& info) {
    info.hasAlpha = heif_image_handle_has_alpha_channel(&handle) != 0;
    Bytes profile(heif_image_handle_get_raw_color_profile_size(&handle));
    if (!profile.empty() && heif_image_handle_get_raw_color_profile(&handle, profile.data()).code == heif_error_Ok)
        info.profile = std::move(profile);
    std::vector<heif_item_id> blocks(
        static_cast<std::size_t>(std::max(0, heif_image_handle_get_number_of_metadata_blocks(&handle, nullptr))));
    heif_image_handle_get_list_of_metadata_block_IDs(&handle, nullptr, blocks.data(), static_cast<int>(blocks.size()));
    for (const heif_item_id block : blocks) TakeBlock(handle, block, info);
    SetUpright(info.exif);
}

// Rows of channels of up to 16 bits, made as wide as the picture's.
template <typename Word>
BasicPicture<Word> ReadRows(const heif_image& image, int depth) {
    BasicPicture<Word> picture(heif_image_get_primary_width(&image), heif_image_get_primary_height(&image));
    int stride = 0;
    const std::uint8_t* const plane = heif_image_get_plane_readonly(&image, heif_channel_interleaved, &stride);
    if (plane == nullptr) throw cli::Error("has no pixels");
    const std::size_t rowWords = static_cast<std::size_t>(picture.width) * 4;
    const std::uint32_t most = (1U << static_cast<unsigned>(depth)) - 1U;
    for (std::int32_t y = 0; y < picture.height; ++y) {
        Word* const row = picture.rgba.data() + static_cast<std::size_t>(y) * rowWords;
        std::memcpy(row, plane + std::ptrdiff_t{y} * stride, rowWords * sizeof(Word));
        if constexpr (sizeof(Word) == 2)
            for (std::size_t i = 0; i < rowWords; ++i)
                row[i] = static_cast<Word>((std::min<std::uint32_t>(row[i], most) * 65535U + most / 2) / most);
    }
    return picture;
}

template <typename Word>
void DivideByAlpha(BasicPicture<Word>& picture) {
    constexpr std::uint64_t full = static_cast<Word>(~Word{0});
    for (std::size_t i = 0; i < picture.rgba.size(); i += 4) {
        const std::uint64_t alpha = picture.rgba[i + 3];
        for (std::size_t c = i; alpha != 0 && c < i + 3; ++c)
            picture.rgba[c] = static_cast<Word>(std::min(full, (picture.rgba[c] * full + alpha / 2) / alpha));
    }
}

constexpr heif_chroma wordOrder = std::endian::native == std::endian::little ? heif_chroma_interleaved_RRGGBBAA_LE
                                                                             : heif_chroma_interleaved_RRGGBBAA_BE;

AnyPicture DecodedPicture(const heif_image_handle& handle, const FormatRow& format, bool wantsWords) {
    const auto options = Taken<Free>(heif_decoding_options_alloc());
    options->convert_hdr_to_8bit = wantsWords ? 0 : 1;
    options->strict_decoding = 1;
    const bool hasWords = wantsWords && heif_image_handle_get_luma_bits_per_pixel(&handle) > 8;
    heif_image* decoded = nullptr;
    const heif_error result = [&] {
        const SilentLibrary silent;  // one of the decoders behind it tells what it thinks of damaged data
        return heif_decode_image(&handle, &decoded, heif_colorspace_RGB,
                                 hasWords ? wordOrder : heif_chroma_interleaved_RGBA, options.get());
    }();
    const Owned<heif_image> image(decoded);
    Check(result, format);
    if (!hasWords) return ReadRows<std::uint8_t>(*image, 8);
    const int depth = heif_image_get_bits_per_pixel_range(image.get(), heif_channel_interleaved);
    return ReadRows<std::uint16_t>(*image, std::clamp(depth, 1, 16));
}

// The matrix that keeps red, green and blue as they are loses nothing to rounding.
void LoseNothing(heif_encoder& encoder, heif_color_profile_nclx& colours, const FormatRow& format) {
    Check(heif_encoder_set_lossless(&encoder, 1), format);
    colours.matrix_coefficients = heif_matrix_coefficients_RGB_GBR;
}

// One plane for each channel: what is interleaved the library converts by the usual matrix, whatever it is told.
Owned<heif_image> ImageOf(const Picture& picture, Channels channels, const FormatRow& format) {
    heif_image* made = nullptr;
    Check(heif_image_create(picture.width, picture.height, heif_colorspace_RGB, heif_chroma_444, &made), format);
    Owned<heif_image> image(made);
    constexpr std::array planes{heif_channel_R, heif_channel_G, heif_channel_B, heif_channel_Alpha};
    for (std::size_t channel = 0; channel < (channels == Channels::RGBA ? 4U : 3U); ++channel) {
        Check(heif_image_add_plane(made, planes[channel], picture.width, picture.height, 8), format);
        int stride = 0;
        std::uint8_t* row = heif_image_get_plane(made, planes[channel], &stride);
        const std::uint8_t* from = picture.rgba.data() + channel;
        for (std::int32_t y = 0; y < picture.height; ++y, row += stride)
            for (std::int32_t x = 0; x < picture.width; ++x, from += 4) row[x] = *from;
    }
    return image;
}

void AddInfo(heif_context& context, const heif_image_handle& handle, const PictureInfo& info, const FormatRow& format) {
    if (!info.exif.empty())
        Check(heif_context_add_exif_metadata(&context, &handle, info.exif.data(), static_cast<int>(info.exif.size())),
              format);
    if (!info.xmp.empty())
        Check(heif_context_add_XMP_metadata(&context, &handle, info.xmp.data(), static_cast<int>(info.xmp.size())),
              format);
}

heif_error Append(heif_context*, const void* data, std::size_t size, void* target) {
    const auto* const bytes = static_cast<const std::uint8_t*>(data);
    try {
        static_cast<Bytes*>(target)->insert(static_cast<Bytes*>(target)->end(), bytes, bytes + size);
    } catch (const std::bad_alloc&) {
        return {heif_error_Memory_allocation_error, heif_suberror_Unspecified, "there is not enough memory"};
    }
    return {heif_error_Ok, heif_suberror_Unspecified, ""};
}

}  // namespace

AnyPicture DecodeHeif(const Bytes& bytes, const FormatRow& format, bool wantsWords, PictureInfo& info) {
    const auto context = Taken<Free>(heif_context_alloc());
    heif_context_set_maximum_image_size_limit(context.get(), largestPictureSide);
    Check(heif_context_read_from_memory_without_copy(context.get(), bytes.data(), bytes.size(), nullptr), format);
    heif_image_handle* chief = nullptr;
    Check(heif_context_get_primary_image_handle(context.get(), &chief), format);
    const Owned<heif_image_handle> handle(chief);
    TakeInfo(*handle, info);
    AnyPicture picture = DecodedPicture(*handle, format, wantsWords);
    if (heif_image_handle_is_premultiplied_alpha(handle.get()) != 0)
        std::visit([](auto& any) { DivideByAlpha(any); }, picture);
    return picture;
}

Bytes EncodeHeif(const Picture& picture, const FormatRow& format, const WriteOptions& options) {
    const auto context = Taken<Free>(heif_context_alloc());
    heif_encoder* found = nullptr;
    Check(
        heif_context_get_encoder_for_format(
            context.get(), format.format == PictureFormat::Avif ? heif_compression_AV1 : heif_compression_HEVC, &found),
        format);
    const Owned<heif_encoder> encoder(found);
    const auto colours = Taken<Free>(heif_nclx_color_profile_alloc());
    Check(heif_encoder_set_lossy_quality(found, options.quality), format);
    if (options.quality == 100) LoseNothing(*found, *colours, format);
    const bool halvesColour = options.halvesColour && options.quality < 100;
    Check(heif_encoder_set_parameter_string(found, "chroma", halvesColour ? "420" : "444"), format);
    const auto image = ImageOf(picture, FittingChannels(picture, false, true), format);
    Check(heif_image_set_nclx_color_profile(image.get(), colours.get()), format);
    if (!options.info.profile.empty())
        Check(heif_image_set_raw_color_profile(image.get(), "prof", options.info.profile.data(),
                                               options.info.profile.size()),
              format);
    const auto writing = Taken<Free>(heif_encoding_options_alloc());
    writing->output_nclx_profile = colours.get();
    writing->macOS_compatibility_workaround_no_nclx_profile = 0;
    writing->save_two_colr_boxes_when_ICC_and_nclx_available = 1;
    heif_image_handle* written = nullptr;
    Check(heif_context_encode_image(context.get(), image.get(), found, writing.get(), &written), format);
    const Owned<heif_image_handle> handle(written);
    AddInfo(*context, *handle, options.info, format);
    Bytes bytes;
    heif_writer writer{1, Append};
    Check(heif_context_write(context.get(), &writer, &bytes), format);
    return bytes;
}

}  // namespace picture_io
