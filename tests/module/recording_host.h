#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace chalkpane::testing {

// Stands in for the host: answers every function that the module imports and writes each call down as one line, name
// first, then the arguments, separated by spaces. The latest one answers, until its end.
//
// At rest it is a plain fixture: container 7 lies in the world's plane z = 0 with the box -50 .. 50 on both axes, seen
// straight on by an orthographic camera that fills a window of 1023 x 1023 pixels with it. So window pixel (x, y) is
// canvas pixel (x, y), up to rounding of floats.
class RecordingHost {
public:
    RecordingHost();
    ~RecordingHost();
    RecordingHost(const RecordingHost&) = delete;
    RecordingHost& operator=(const RecordingHost&) = delete;

    // The lines since the last call of this.
    std::vector<std::string> TakeCalls();
    // All the lines of one function.
    [[nodiscard]] std::vector<std::string> CallsOf(const std::string& name) const;
    [[nodiscard]] std::size_t CountCalls(const std::string& name) const { return CallsOf(name).size(); }

    bool recording = true;  // off: answers only, for benchmarks
    std::vector<std::string> calls;

    std::int32_t ownContainer = 7;
    std::int32_t containerUnderPointer = 7;
    std::array<float, 6> box{-50, -50, 0, 50, 50, 0};  // minX, minY, minZ, maxX, maxY, maxZ
    std::array<float, 16> containerMatrix{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    std::array<float, 16> cameraMatrix{0.02F, 0, 0, 0, 0, 0.02F, 0, 0, 0, 0, -0.01F, 0, 0, 0, 0, 1};
    std::int32_t windowWidth = 1023;
    std::int32_t windowHeight = 1023;
    std::int32_t pointerX = 0;
    std::int32_t pointerY = 0;
    bool unprojects = true;
    bool allIdsInvalid = false;
    std::int32_t createdImage = 40;  // negative: creation fails
    std::int32_t createdTexture = 50;
    std::int32_t images = 0;    // made by the module and not deleted
    std::int32_t textures = 0;  // likewise
    std::int32_t redrawAnswer = 33;
    std::int32_t redraws = 0;  // counted also while nothing is recorded
    std::int32_t showAnswer = 44;

    std::map<std::string, std::int32_t, std::less<>> imageIds;  // by name; -1 for others
    std::int32_t brushImageWidth = 0;
    std::int32_t brushImageHeight = 0;
    std::int32_t brushImageFormat = 6408;
    std::vector<std::uint8_t> brushImagePixels;
    bool brushImageHasData = true;

    std::map<std::uint32_t, std::int32_t> glState;
    std::int32_t unpackRowLength = 0;
    std::vector<std::uint8_t> texture;  // what the uploads made of it: 1024 x 1024, four bytes a pixel, row 0 first

private:
    RecordingHost* former_;
};

// The host that answers now.
RecordingHost& CurrentHost();

}  // namespace chalkpane::testing
