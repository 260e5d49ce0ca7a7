#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace latency {

// A rectangle of the screen, looked at again and again through shared memory.
class ScreenWatch {
public:
    struct Area {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
    };
    // The display has 32 bits a pixel. Throws runtime_error.
    ScreenWatch(const std::string& display, const Area& area);
    ~ScreenWatch();
    ScreenWatch(const ScreenWatch&) = delete;
    ScreenWatch& operator=(const ScreenWatch&) = delete;
    ScreenWatch(ScreenWatch&&) = delete;
    ScreenWatch& operator=(ScreenWatch&&) = delete;

    void MoveTo(int x, int y);  // the upper left corner; wholly on the screen

    // Looks now. True: something else is seen than the last time.
    bool Look();
    // Of the last look, as 0xRRGGBB.
    [[nodiscard]] std::uint32_t At(int x, int y) const;
    // The farthest column to the right that has ink in it; -1: none has.
    [[nodiscard]] int LastInkedColumn() const;

    // What both key 3 of the window and the annotator draw with, laid over anything with nearly all of its coverage.
    [[nodiscard]] static bool IsInk(std::uint32_t pixel);

private:
    struct Shared;
    Area m_area;
    std::unique_ptr<Shared> m_shared;
    std::vector<std::uint32_t> m_last;
};

}  // namespace latency
