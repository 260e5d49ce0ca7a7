#pragma once

#include <cstdint>

// The OpenGL 1.3 enumerants that the module passes through the host; its own names, since no OpenGL header is needed.
namespace chalkpane::gl {

constexpr std::uint32_t one = 1;
constexpr std::uint32_t add = 0x0104;
constexpr std::uint32_t sourceColour = 0x0300;
constexpr std::uint32_t sourceAlpha = 0x0302;
constexpr std::uint32_t oneMinusSourceAlpha = 0x0303;
constexpr std::uint32_t alphaTest = 0x0BC0;
constexpr std::uint32_t blendDestination = 0x0BE0;
constexpr std::uint32_t blendSource = 0x0BE1;
constexpr std::uint32_t blend = 0x0BE2;
constexpr std::uint32_t unpackRowLength = 0x0CF2;
constexpr std::uint32_t unsignedByte = 0x1401;
constexpr std::uint32_t modelView = 0x1700;
constexpr std::uint32_t texture = 0x1702;  // the matrix mode and the combiner source alike
constexpr std::uint32_t alpha = 0x1906;
constexpr std::uint32_t rgb = 0x1907;
constexpr std::uint32_t rgba = 0x1908;
constexpr std::uint32_t replace = 0x1E01;
constexpr std::uint32_t modulate = 0x2100;
constexpr std::uint32_t textureEnvironmentMode = 0x2200;
constexpr std::uint32_t textureEnvironment = 0x2300;
constexpr std::uint32_t clamp = 0x2900;
constexpr std::uint32_t combine = 0x8570;
constexpr std::uint32_t combineRgb = 0x8571;
constexpr std::uint32_t combineAlpha = 0x8572;
constexpr std::uint32_t interpolate = 0x8575;
constexpr std::uint32_t previous = 0x8578;
constexpr std::uint32_t source0Rgb = 0x8580;
constexpr std::uint32_t source1Rgb = 0x8581;
constexpr std::uint32_t source2Rgb = 0x8582;
constexpr std::uint32_t source0Alpha = 0x8588;
constexpr std::uint32_t source1Alpha = 0x8589;
constexpr std::uint32_t operand0Rgb = 0x8590;
constexpr std::uint32_t operand1Rgb = 0x8591;
constexpr std::uint32_t operand2Rgb = 0x8592;
constexpr std::uint32_t operand0Alpha = 0x8598;
constexpr std::uint32_t operand1Alpha = 0x8599;
constexpr std::uint32_t operand2Alpha = 0x859A;

// The host's functions take enumerants as signed words in some places.
constexpr std::int32_t Word(std::uint32_t enumerant) { return static_cast<std::int32_t>(enumerant); }

}  // namespace chalkpane::gl
