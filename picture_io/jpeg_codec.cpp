#include "picture_io/jpeg_codec.h"

#include <array>
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <jerror.h>
#include <jpeglib.h>

#include "cli/error.h"

namespace picture_io {
namespace {

constexpr int quality = 95;

// The library is left by a long jump, so between setjmp and the jump no C++ object may come to be: the functions that
// call setjmp work on what their callers own.
struct Failure {
    jpeg_error_mgr manager;  // first, so that its address is the failure's
    std::jmp_buf way;
    std::array<char, JMSG_LENGTH_MAX> reason;
};

[[noreturn]] void LeaveLibrary(j_common_ptr codec) {
    auto* failure = reinterpret_cast<Failure*>(codec->err);
    codec->err->format_message(codec, failure->reason.data());
    std::longjmp(failure->way, 1);
}

// Warnings go by in silence, but half a picture is none.
void HearWarning(j_common_ptr codec, int level) {
    if (level < 0 && codec->err->msg_code == JWRN_JPEG_EOF) LeaveLibrary(codec);
}

jpeg_error_mgr* Prepare(Failure& failure) {
    jpeg_error_mgr* manager = jpeg_std_error(&failure.manager);
    manager->error_exit = LeaveLibrary;
    manager->emit_message = HearWarning;
    return manager;
}

[[noreturn]] void Refuse(const Failure& failure) { throw cli::Error("JPEG: " + std::string(failure.reason.data())); }

struct Reader {
    jpeg_decompress_struct codec{};
    Failure failure{};

    Reader() { codec.err = Prepare(failure); }
    ~Reader() { jpeg_destroy_decompress(&codec); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    Reader(Reader&&) = delete;
    Reader& operator=(Reader&&) = delete;
};

bool ReadHeader(Reader& reader, const std::uint8_t* bytes, std::size_t size) {
    if (setjmp(reader.failure.way) != 0) return false;
    jpeg_create_decompress(&reader.codec);
    jpeg_mem_src(&reader.codec, bytes, size);
    jpeg_read_header(&reader.codec, TRUE);
    return true;
}

bool ReadRows(Reader& reader, std::uint8_t* rgba) {
    if (setjmp(reader.failure.way) != 0) return false;
    reader.codec.out_color_space = JCS_EXT_RGBA;
    jpeg_start_decompress(&reader.codec);
    while (reader.codec.output_scanline < reader.codec.output_height) {
        JSAMPROW row = rgba + std::size_t{4} * reader.codec.output_width * reader.codec.output_scanline;
        jpeg_read_scanlines(&reader.codec, &row, 1);
    }
    jpeg_finish_decompress(&reader.codec);
    return true;
}

struct Writer {
    jpeg_compress_struct codec{};
    Failure failure{};
    unsigned char* bytes = nullptr;  // the library's, by malloc
    unsigned long size = 0;

    Writer() { codec.err = Prepare(failure); }
    ~Writer() {
        jpeg_destroy_compress(&codec);
        std::free(bytes);
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    Writer(Writer&&) = delete;
    Writer& operator=(Writer&&) = delete;
};

bool WriteRows(Writer& writer, const Picture& picture) {
    if (setjmp(writer.failure.way) != 0) return false;
    jpeg_compress_struct& codec = writer.codec;
    jpeg_create_compress(&codec);
    jpeg_mem_dest(&codec, &writer.bytes, &writer.size);
    codec.image_width = static_cast<JDIMENSION>(picture.width);
    codec.image_height = static_cast<JDIMENSION>(picture.height);
    codec.input_components = 4;
    codec.in_color_space = JCS_EXT_RGBX;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, quality, TRUE);
    codec.comp_info[0].h_samp_factor = codec.comp_info[0].v_samp_factor = 1;  // strokes are thin: keep all their colour
    jpeg_start_compress(&codec, TRUE);
    while (codec.next_scanline < codec.image_height) {
        // The library only reads from the row, whatever its type says.
        auto* row =
            const_cast<JSAMPROW>(picture.rgba.data() + std::size_t{4} * codec.image_width * codec.next_scanline);
        jpeg_write_scanlines(&codec, &row, 1);
    }
    jpeg_finish_compress(&codec);
    return true;
}

}  // namespace

Picture DecodeJpeg(const std::vector<std::uint8_t>& bytes) {
    Reader reader;
    if (!ReadHeader(reader, bytes.data(), bytes.size())) Refuse(reader.failure);
    Picture picture(static_cast<std::int32_t>(reader.codec.image_width),
                    static_cast<std::int32_t>(reader.codec.image_height));
    if (!ReadRows(reader, picture.rgba.data())) Refuse(reader.failure);
    return picture;
}

std::vector<std::uint8_t> EncodeJpeg(const Picture& picture) {
    Writer writer;
    if (!WriteRows(writer, picture)) Refuse(writer.failure);
    return {writer.bytes, writer.bytes + writer.size};
}

}  // namespace picture_io
