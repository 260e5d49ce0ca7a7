#include "picture_io/jpeg_codec.h"

#include <array>
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <jerror.h>
#include <jpeglib.h>

#include "cli/error.h"
#include "picture_io/png_info.h"

namespace picture_io {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int exifMarker = JPEG_APP0 + 1;
constexpr int profileMarker = JPEG_APP0 + 2;
constexpr unsigned longestMarker = 65533;  // bytes of data
constexpr std::string_view exifStart{"Exif\0\0", 6};
constexpr std::string_view xmpStart{"http://ns.adobe.com/xap/1.0/\0", 29};

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

// Warnings go by in silence, but half a picture is none: the file ends, or its data do.
void HearWarning(j_common_ptr codec, int level) {
    const int code = codec->err->msg_code;
    if (level < 0 && (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER)) LeaveLibrary(codec);
}

jpeg_error_mgr* Prepare(Failure& failure) {
    jpeg_error_mgr* manager = jpeg_std_error(&failure.manager);
    manager->error_exit = LeaveLibrary;
    manager->emit_message = HearWarning;
    return manager;
}

[[noreturn]] void Refuse(const Failure& failure) {
    if (failure.manager.msg_code == JERR_OUT_OF_MEMORY) throw std::bad_alloc();
    throw cli::Error("JPEG: " + std::string(failure.reason.data()));
}

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
    for (const int marker : {exifMarker, profileMarker, JPEG_COM})
        jpeg_save_markers(&reader.codec, marker, longestMarker + 2);
    jpeg_read_header(&reader.codec, TRUE);
    return true;
}

bool StartRows(Reader& reader) {
    if (setjmp(reader.failure.way) != 0) return false;
    reader.codec.out_color_space = JCS_EXT_RGBA;
    jpeg_start_decompress(&reader.codec);
    return true;
}

// Behind the last row the file must end.
bool ReadRows(Reader& reader, std::uint8_t* rgba, JDIMENSION count) {
    if (setjmp(reader.failure.way) != 0) return false;
    const JDIMENSION first = reader.codec.output_scanline;
    while (reader.codec.output_scanline < first + count) {
        JSAMPROW row = rgba + std::size_t{4} * reader.codec.output_width * (reader.codec.output_scanline - first);
        jpeg_read_scanlines(&reader.codec, &row, 1);
    }
    if (reader.codec.output_scanline == reader.codec.output_height) jpeg_finish_decompress(&reader.codec);
    return true;
}

// Where the library's bytes go: into a vector, through a buffer that it fills.
struct Target {
    jpeg_destination_mgr manager{};  // first, so that its address is the target's
    std::array<JOCTET, 65536> buffer{};
    Bytes bytes;
};

Target& TargetOf(j_compress_ptr codec) { return *reinterpret_cast<Target*>(codec->dest); }

void BeginBuffer(j_compress_ptr codec) {
    Target& target = TargetOf(codec);
    target.manager.next_output_byte = target.buffer.data();
    target.manager.free_in_buffer = target.buffer.size();
}

void TakeBuffer(j_compress_ptr codec, std::size_t size) {
    Target& target = TargetOf(codec);
    bool taken = true;
    try {
        target.bytes.insert(target.bytes.end(), target.buffer.data(), target.buffer.data() + size);
    } catch (const std::bad_alloc&) {
        taken = false;
    }
    if (!taken) ERREXIT1(codec, JERR_OUT_OF_MEMORY, 0);
    BeginBuffer(codec);
}

boolean TakeFullBuffer(j_compress_ptr codec) {
    TakeBuffer(codec, TargetOf(codec).buffer.size());
    return TRUE;
}

void TakeLastBuffer(j_compress_ptr codec) {
    TakeBuffer(codec, TargetOf(codec).buffer.size() - TargetOf(codec).manager.free_in_buffer);
}

struct Writer {
    jpeg_compress_struct codec{};
    Failure failure{};
    Target target;

    Writer() {
        codec.err = Prepare(failure);
        target.manager.init_destination = BeginBuffer;
        target.manager.empty_output_buffer = TakeFullBuffer;
        target.manager.term_destination = TakeLastBuffer;
    }
    ~Writer() { jpeg_destroy_compress(&codec); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    Writer(Writer&&) = delete;
    Writer& operator=(Writer&&) = delete;
};

// Dots to the inch or the centimetre fit words of 16 bits; what does not is left out.
void PutResolution(jpeg_compress_struct& codec, const std::optional<Resolution>& resolution) {
    if (!resolution) return;
    const auto toInch = [](std::uint32_t toMetre) { return (toMetre * std::uint64_t{254} + 5000) / 10000; };
    if (toInch(resolution->x) > 65535 || toInch(resolution->y) > 65535) return;
    codec.density_unit = 1;
    codec.X_density = static_cast<UINT16>(toInch(resolution->x));
    codec.Y_density = static_cast<UINT16>(toInch(resolution->y));
}

// Markers are short: what is longer than one holds is left out, but for profiles, which may take several.
void PutMarker(jpeg_compress_struct& codec, int marker, const Bytes& data) {
    if (!data.empty() && data.size() <= longestMarker)
        jpeg_write_marker(&codec, marker, data.data(), static_cast<unsigned>(data.size()));
}

struct Markers {
    Bytes exif;
    Bytes xmp;
    std::vector<Bytes> comments;
    const Bytes* profile = nullptr;
};

bool StartFile(Writer& writer, std::int32_t width, std::int32_t height, const WriteOptions& options,
               const Markers& markers, bool isGrey) {
    if (setjmp(writer.failure.way) != 0) return false;
    jpeg_compress_struct& codec = writer.codec;
    jpeg_create_compress(&codec);
    codec.dest = &writer.target.manager;
    codec.image_width = static_cast<JDIMENSION>(width);
    codec.image_height = static_cast<JDIMENSION>(height);
    codec.input_components = isGrey ? 1 : 4;
    codec.in_color_space = isGrey ? JCS_GRAYSCALE : JCS_EXT_RGBX;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, options.quality, TRUE);
    // Strokes are thin: where nobody says otherwise they keep all their colour.
    if (isGrey || !options.halvesColour) codec.comp_info[0].h_samp_factor = codec.comp_info[0].v_samp_factor = 1;
    PutResolution(codec, options.info.resolution);
    jpeg_start_compress(&codec, TRUE);
    PutMarker(codec, exifMarker, markers.exif);
    PutMarker(codec, exifMarker, markers.xmp);
    if (markers.profile != nullptr)
        jpeg_write_icc_profile(&codec, markers.profile->data(), static_cast<unsigned>(markers.profile->size()));
    for (std::size_t i = 0; i < markers.comments.size(); ++i) PutMarker(codec, JPEG_COM, markers.comments[i]);
    return true;
}

bool WriteRows(Writer& writer, const Picture& rows, std::uint8_t* greyRow) {
    if (setjmp(writer.failure.way) != 0) return false;
    const auto width = static_cast<std::size_t>(rows.width);
    for (std::size_t y = 0; y < static_cast<std::size_t>(rows.height); ++y) {
        // The library only reads from the row, whatever its type says.
        auto* row = const_cast<JSAMPROW>(rows.rgba.data() + 4 * width * y);
        if (greyRow != nullptr) {
            for (std::size_t x = 0; x < width; ++x) greyRow[x] = row[4 * x];
            row = greyRow;
        }
        jpeg_write_scanlines(&writer.codec, &row, 1);
    }
    return true;
}

bool FinishFile(Writer& writer) {
    if (setjmp(writer.failure.way) != 0) return false;
    jpeg_finish_compress(&writer.codec);
    return true;
}

std::string_view TextOf(const jpeg_marker_struct& marker) {
    return {reinterpret_cast<const char*>(marker.data), marker.data_length};
}

Bytes BytesOf(std::string_view text) { return {text.begin(), text.end()}; }

void TakeMarkers(const jpeg_decompress_struct& codec, PictureInfo& info) {
    for (const jpeg_marker_struct* marker = codec.marker_list; marker != nullptr; marker = marker->next) {
        const std::string_view text = TextOf(*marker);
        if (marker->marker == JPEG_COM)
            info.comments.emplace_back(text);
        else if (marker->marker == exifMarker && text.starts_with(exifStart))
            info.exif = BytesOf(text.substr(exifStart.size()));
        else if (marker->marker == exifMarker && text.starts_with(xmpStart))
            info.xmp = BytesOf(text.substr(xmpStart.size()));
    }
}

bool ReadProfile(Reader& reader, JOCTET** profile, unsigned* size) {
    if (setjmp(reader.failure.way) != 0) return false;
    if (jpeg_read_icc_profile(&reader.codec, profile, size) == FALSE) *profile = nullptr;
    return true;
}

void TakeInfo(Reader& reader, PictureInfo& info) {
    const jpeg_decompress_struct& codec = reader.codec;
    info.isGrey = codec.num_components == 1;
    info.halvesColour =
        codec.num_components == 3 && codec.comp_info[0].h_samp_factor == 2 && codec.comp_info[0].v_samp_factor == 2;
    TakeMarkers(codec, info);
    if (codec.saw_JFIF_marker != FALSE && codec.density_unit != 0 && codec.X_density != 0 && codec.Y_density != 0) {
        const auto toMetre = [&](std::uint32_t dots) {
            return codec.density_unit == 1 ? (dots * 10000U + 127U) / 254U : dots * 100U;
        };
        info.resolution = Resolution{toMetre(codec.X_density), toMetre(codec.Y_density)};
    }
    JOCTET* profile = nullptr;
    unsigned size = 0;
    const bool read = ReadProfile(reader, &profile, &size);
    const std::unique_ptr<JOCTET, decltype(&std::free)> owned(profile, std::free);
    if (!read) Refuse(reader.failure);
    if (owned) info.profile.assign(owned.get(), owned.get() + size);
}

Bytes Marker(std::string_view start, const Bytes& data) {
    if (data.empty()) return {};
    Bytes marker = BytesOf(start);
    marker.insert(marker.end(), data.begin(), data.end());
    return marker;
}

Markers MarkersOf(const PictureInfo& info) {
    Markers markers{Marker(exifStart, info.exif), Marker(xmpStart, info.xmp), {}, nullptr};
    for (const std::string& comment : info.comments) markers.comments.push_back(BytesOf(comment));
    for (const std::string& comment : CommentsOf(info.texts)) markers.comments.push_back(BytesOf(comment));
    if (!info.profile.empty()) markers.profile = &info.profile;
    return markers;
}

}  // namespace

struct JpegReader::State {
    Reader reader;
    PictureInfo info;
};

JpegReader::JpegReader(const Bytes& bytes) : m_state(std::make_unique<State>()) {
    Reader& reader = m_state->reader;
    if (!ReadHeader(reader, bytes.data(), bytes.size())) Refuse(reader.failure);
    if (reader.codec.num_components == 4) throw cli::Error("JPEG: CMYK is not read; convert the picture to RGB first");
    TakeInfo(reader, m_state->info);
    RequireSides(Width(), Height());
    if (!StartRows(reader)) Refuse(reader.failure);
}
JpegReader::~JpegReader() = default;

std::int32_t JpegReader::Width() const { return static_cast<std::int32_t>(m_state->reader.codec.image_width); }
std::int32_t JpegReader::Height() const { return static_cast<std::int32_t>(m_state->reader.codec.image_height); }
const PictureInfo& JpegReader::Info() const { return m_state->info; }

void JpegReader::Read(std::span<std::uint8_t> rgba) {
    const std::size_t rowBytes = 4 * static_cast<std::size_t>(Width());
    if (!ReadRows(m_state->reader, rgba.data(), static_cast<JDIMENSION>(rgba.size() / rowBytes)))
        Refuse(m_state->reader.failure);
}

struct JpegWriter::State {
    Markers markers;
    Bytes greyRow;
    Writer writer;
};

// Pages that nobody writes to take no memory, and bytes that grow would be there twice, and leave holes behind.
void Reserve(Bytes& bytes, std::int32_t width, std::int32_t height) {
    constexpr std::size_t mostOfPixel = 3;  // noise at the best quality takes hardly more
    try {
        bytes.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * mostOfPixel);
    } catch (const std::bad_alloc&) {
        return;  // there may be enough for what it comes to
    }
}

JpegWriter::JpegWriter(std::int32_t width, std::int32_t height, const WriteOptions& options, bool isGrey)
    : m_state(std::make_unique<State>()) {
    m_state->markers = MarkersOf(options.info);
    Reserve(m_state->writer.target.bytes, width, height);
    m_state->greyRow.resize(isGrey ? static_cast<std::size_t>(width) : 0);
    if (!StartFile(m_state->writer, width, height, options, m_state->markers, isGrey)) Refuse(m_state->writer.failure);
}
JpegWriter::~JpegWriter() = default;

void JpegWriter::Write(const Picture& rows) {
    Bytes& greyRow = m_state->greyRow;
    if (!WriteRows(m_state->writer, rows, greyRow.empty() ? nullptr : greyRow.data())) Refuse(m_state->writer.failure);
}

Bytes JpegWriter::Finish() {
    if (!FinishFile(m_state->writer)) Refuse(m_state->writer.failure);
    return std::move(m_state->writer.target.bytes);
}

}  // namespace picture_io
