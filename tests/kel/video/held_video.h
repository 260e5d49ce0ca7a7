#pragma once

#include <doctest/doctest.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>

#include "tests/cli/temporary_folder.h"
#include "tests/kel/video/counted_video.h"

namespace kel::testing {

// A video whose file says how it was held: the matrix is that of the track's header, numbers of 16.16 bits, a b u c d v
// x y w, behind 40 bytes of others.
inline void WriteHeldVideo(const std::filesystem::path& file, const std::array<std::int32_t, 4>& matrix) {
    WriteCountedVideo(file, 3, 64, 32);
    std::string bytes = cli::testing::ReadText(file);
    const std::size_t header = bytes.find("tkhd");
    REQUIRE_NE(header, std::string::npos);
    const std::size_t start = header + 4 + 40;
    const auto put = [&](std::size_t index, std::int32_t number) {
        const auto word = static_cast<std::uint32_t>(number) << 16U;
        for (std::size_t byte = 0; byte < 4; ++byte)
            bytes[start + index * 4 + byte] = static_cast<char>(word >> (24 - 8 * byte));
    };
    put(0, matrix[0]);
    put(1, matrix[1]);
    put(3, matrix[2]);
    put(4, matrix[3]);
    cli::testing::WriteText(file, bytes);
}

}  // namespace kel::testing
