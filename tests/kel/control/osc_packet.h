#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace kel::testing {

inline std::string OscWord(std::uint32_t word) {
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) bytes += static_cast<char>(word >> shift & 255U);
    return bytes;
}

// A text with its zero, filled up to a multiple of four bytes.
inline std::string OscText(const std::string& text) { return text + std::string(4 - text.size() % 4, '\0'); }

inline std::string OscPacket(const std::string& address, const std::string& types, const std::string& arguments = {}) {
    return OscText(address) + OscText("," + types) + arguments;
}

inline std::string OscBundle(const std::string& first, const std::string& second) {
    const auto element = [](const std::string& bytes) {
        return OscWord(static_cast<std::uint32_t>(bytes.size())) + bytes;
    };
    return OscText("#bundle") + OscWord(0) + OscWord(1) + element(first) + element(second);
}

inline std::span<const std::byte> BytesOf(const std::string& packet) {
    return {reinterpret_cast<const std::byte*>(packet.data()), packet.size()};
}

}  // namespace kel::testing
