#include "picture_io/png16_codec.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <bit>
#include <csetjmp>
#include <cstddef>
#include <cstring>
#include <new>
#include <string>

#include "cli/error.h"
#include "picture_io/png_header.h"

namespace picture_io {
namespace {

constexpr bool swapsBytes = std::endian::native == std::endian::little;  // words in the file begin with the high byte

// The library's simplified interface offers words as linear light only, so this is its full one. It is left by a long
// jump, so between setjmp and the jump no C++ object may come to be: the functions that call setjmp work on what their
// callers own.
struct Failure {
    std::array<char, 128> reason{};
};

[[noreturn]] void LeaveLibrary(png_structp png, png_const_charp reason) {
    auto* failure = static_cast<Failure*>(png_get_error_ptr(png));
    std::strncpy(failure->reason.data(), reason, failure->reason.size() - 1);
    std::longjmp(*png_set_longjmp_fn(png, std::longjmp, sizeof(std::jmp_buf)), 1);
}

void IgnoreWarning(png_structp, png_const_charp) {}

[[noreturn]] void Refuse(const Failure& failure) { throw cli::Error("PNG: " + std::string(failure.reason.data())); }

struct Source {
    const std::uint8_t* next;
    std::size_t left;
};

void TakeBytes(png_structp png, png_bytep target, std::size_t count) {
    auto* source = static_cast<Source*>(png_get_io_ptr(png));
    if (count > source->left) png_error(png, "ends too early");
    std::memcpy(target, source->next, count);
    source->next += count;
    source->left -= count;
}

struct Reader {
    Failure failure;
    Source source;
    png_structp png;
    png_infop info;

    explicit Reader(const std::vector<std::uint8_t>& bytes)
        : source{bytes.data(), bytes.size()},
          png(png_create_read_struct(PNG_LIBPNG_VER_STRING, &failure, LeaveLibrary, IgnoreWarning)),
          info(png != nullptr ? png_create_info_struct(png) : nullptr) {}
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    Reader(Reader&&) = delete;
    Reader& operator=(Reader&&) = delete;
};

// Every pixel comes out as four words of this machine, whatever the file holds.
bool ReadHeader(Reader& reader) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    png_set_read_fn(reader.png, &reader.source, TakeBytes);
    png_read_info(reader.png, reader.info);
    png_set_alpha_mode_fixed(reader.png, PNG_ALPHA_PNG, PNG_DEFAULT_sRGB);
    png_set_expand_16(reader.png);
    png_set_gray_to_rgb(reader.png);
    png_set_add_alpha(reader.png, 0xFFFF, PNG_FILLER_AFTER);
    if (swapsBytes) png_set_swap(reader.png);
    png_set_interlace_handling(reader.png);
    png_read_update_info(reader.png, reader.info);
    return true;
}

bool ReadRows(Reader& reader, png_bytepp rows) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    png_read_image(reader.png, rows);
    png_read_end(reader.png, nullptr);
    return true;
}

std::vector<png_bytep> RowsOf(std::vector<std::uint16_t>& words, std::int32_t height) {
    std::vector<png_bytep> rows;
    rows.reserve(static_cast<std::size_t>(height));
    const std::size_t rowWords = words.size() / static_cast<std::size_t>(height);
    for (std::size_t at = 0; at < words.size(); at += rowWords)
        rows.push_back(reinterpret_cast<png_bytep>(words.data() + at));
    return rows;
}

}  // namespace

bool HasWords(const std::vector<std::uint8_t>& bytes) {
    const auto header = ReadPngHeader(bytes);
    return header && header->bits == 16;
}

Picture16 DecodePng16(const std::vector<std::uint8_t>& bytes) {
    RefuseTruncatedPng(bytes);
    Reader reader(bytes);
    if (reader.info == nullptr) throw std::bad_alloc();
    if (!ReadHeader(reader)) Refuse(reader.failure);
    constexpr png_uint_32 tooLarge = largestPictureSide + 1;
    Picture16 picture(static_cast<std::int32_t>(std::min(png_get_image_width(reader.png, reader.info), tooLarge)),
                      static_cast<std::int32_t>(std::min(png_get_image_height(reader.png, reader.info), tooLarge)));
    std::vector<png_bytep> rows = RowsOf(picture.rgba, picture.height);
    if (!ReadRows(reader, rows.data())) Refuse(reader.failure);
    return picture;
}

}  // namespace picture_io
