#include "picture_io/png_header.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <string>

#include "cli/error.h"

namespace picture_io {
namespace {

constexpr std::array<std::uint8_t, 16> start{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n',
                                             0,    0,   0,   13,  'I',  'H',  'D',  'R'};
constexpr std::size_t headerEnd = 26;  // start, width, height, bits, kind of colour

std::uint32_t WordAt(const std::vector<std::uint8_t>& bytes, std::size_t place) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i) word = word << 8 | bytes[place + i];
    return word;
}

}  // namespace

std::optional<PngHeader> ReadPngHeader(const std::vector<std::uint8_t>& bytes) {
    if (bytes.size() < headerEnd || !std::equal(start.begin(), start.end(), bytes.begin())) return std::nullopt;
    constexpr std::array<std::uint8_t, 7> channels{1, 0, 3, 1,
                                                   2, 0, 4};  // grey, none, colour, palette, the first two with alpha
    const std::uint8_t kind = bytes[25];
    if (kind >= channels.size() || channels[kind] == 0) return std::nullopt;
    return PngHeader{WordAt(bytes, 16), WordAt(bytes, 20), bytes[24], channels[kind]};
}

void RefuseTruncatedPng(const std::vector<std::uint8_t>& bytes) {
    const auto header = ReadPngHeader(bytes);
    if (!header) return;
    constexpr double densest = 1032.0;  // bytes that a byte of deflated data can stand for
    const double needed = static_cast<double>(header->width) * header->height * header->bits * header->channels / 8.0;
    if (needed > densest * static_cast<double>(bytes.size())) throw cli::Error("PNG: ends too early");
}

void RefusePng(std::string_view reason) {
    if (reason.find("ut of memory") != reason.npos || reason.find("nsufficient memory") != reason.npos)
        throw std::bad_alloc();
    throw cli::Error("PNG: " + std::string(reason));
}

}  // namespace picture_io
