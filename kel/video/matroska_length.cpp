#include "kel/video/matroska_length.h"

#include <bit>
#include <cstdint>
#include <fstream>
#include <optional>

namespace kel {
namespace {

constexpr std::uint64_t ebmlHeader = 0x1A45DFA3;
constexpr std::uint64_t segment = 0x18538067;

enum class Marker { Kept, Removed };

// A number of 1 to 8 bytes: as many zeros as its first byte begins with, so many bytes follow it; then comes the
// marker, a one, which belongs to names and not to lengths. None: the file ends, or it is a length that says "unknown".
std::optional<std::uint64_t> ReadNumber(std::istream& stream, Marker marker) {
    const int first = stream.get();
    if (first <= 0) return std::nullopt;
    const int following = std::countl_zero(static_cast<std::uint8_t>(first));
    auto number = static_cast<std::uint64_t>(first);
    for (int count = 0; count < following; ++count) number = number << 8U | static_cast<std::uint8_t>(stream.get());
    if (!stream) return std::nullopt;
    if (marker == Marker::Kept) return number;
    const std::uint64_t unknown = (std::uint64_t{1} << 7U * static_cast<unsigned>(following + 1)) - 1;
    number &= unknown;
    if (number == unknown) return std::nullopt;
    return number;
}

}  // namespace

bool IsCutOffMatroska(const std::filesystem::path& file) {
    std::error_code failure;
    const std::uint64_t size = std::filesystem::file_size(file, failure);
    if (failure) return false;
    std::ifstream stream(file, std::ios::binary);
    if (ReadNumber(stream, Marker::Kept) != ebmlHeader) return false;
    const auto header = ReadNumber(stream, Marker::Removed);
    if (!header || *header > size) return false;
    stream.seekg(static_cast<std::streamoff>(*header), std::ios::cur);
    if (ReadNumber(stream, Marker::Kept) != segment) return false;
    const auto length = ReadNumber(stream, Marker::Removed);
    return length && *length > size - static_cast<std::uint64_t>(stream.tellg());
}

}  // namespace kel
