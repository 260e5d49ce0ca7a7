#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "kel/video/picture_part.h"
#include "picture_io/picture.h"

namespace kel {

// Packets of QuickTime Animation with alpha, of pictures that are known to differ from each other in a part alone.
//
// The library's encoder compares and copies all of every picture; where strokes grow, that is nearly all of the time
// that a video takes. These cost what the part costs. Any reader of the codec takes them.
class AnimationPackets {
public:
    // keyEvery: every so many pictures one stands for itself, so that a reader can begin there.
    explicit AnimationPackets(int keyEvery) : m_keyEvery(keyEvery) {}

    // The packet of the next picture, all of one size. It is valid until the next one.
    //   changed  where it may differ from the one before; without a meaning for the first
    [[nodiscard]] std::span<const std::uint8_t> Make(const picture_io::Picture& picture, const PicturePart& changed);
    // The last packet is of a picture that stands for itself.
    [[nodiscard]] bool IsKey() const { return m_isKey; }

private:
    void Put(int bytes, std::uint32_t value);
    void PutPixel(const std::uint8_t* rgba);
    void PutSkip(std::int32_t pixels);
    void PutRow(std::span<const std::uint8_t> rgba);

    int m_keyEvery;
    int m_untilKey = 0;
    bool m_isKey = false;
    std::vector<std::uint8_t> m_bytes;
};

}  // namespace kel
