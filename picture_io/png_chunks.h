#pragma once

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace picture_io {

// High byte first.
inline void AppendWord(std::vector<std::uint8_t>& bytes, std::uint32_t word) {
    for (const int shift : {24, 16, 8, 0}) bytes.push_back(static_cast<std::uint8_t>(word >> shift));
}

// Length, type, data, checksum.
inline void AppendChunk(std::vector<std::uint8_t>& bytes, std::string_view type, std::span<const std::uint8_t> data) {
    AppendWord(bytes, static_cast<std::uint32_t>(data.size()));
    const std::size_t start = bytes.size();
    bytes.insert(bytes.end(), type.begin(), type.end());
    bytes.insert(bytes.end(), data.begin(), data.end());
    AppendWord(bytes, static_cast<std::uint32_t>(crc32_z(0, bytes.data() + start, bytes.size() - start)));
}

}  // namespace picture_io
