#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace chalkpane {

// The light, and the upward part of all surface normals, in whole numbers.
struct EmbossLight {
    std::int64_t x;
    std::int64_t y;
    std::int64_t z;
    std::int64_t normalZ;
    bool flat;  // no bumps at all
};

// How much of a shade's colour comes from where.
struct EmbossTint {
    std::array<float, 3> colour;  // blue, green, red, each by its share
    float mix;
};

// Of each column from one left to one right of a stretch, the brightness of three rows together, and that of the row
// below less that of the row above.
struct EmbossHeights {
    std::vector<std::int32_t> sum;
    std::vector<std::int32_t> fall;
};

// A stretch of a row whose neighbours all lie in the picture.
template <typename Channel>
struct EmbossStretch {
    const Channel* from;
    Channel* to;
    std::size_t pixels;
    const std::int32_t* sum;   // of the stretch's first column, with one before it and one behind the last
    const std::int32_t* fall;  // the same
    bool shadeByAlpha;         // the picture is premultiplied
};

// Normals above this do not square exactly in doubles.
inline constexpr std::int64_t longestExactNormal = std::int64_t{1} << 25;

// Embosses whole blocks of eight pixels and returns how many it did. The light's upward normal is at most
// `longestExactNormal` long. Needs AVX2, and is there where `builtWithAvx2`.
std::size_t EmbossAvx2(const EmbossStretch<std::uint8_t>& stretch, const EmbossLight& light, const EmbossTint& tint);
std::size_t EmbossAvx2(const EmbossStretch<std::uint16_t>& stretch, const EmbossLight& light, const EmbossTint& tint);

}  // namespace chalkpane
