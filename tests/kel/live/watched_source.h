#pragma once

#include <chrono>
#include <cstdlib>
#include <string>

#include "kel/live/live_source.h"
#include "tests/kel/live/camera.h"
#include "tests/kel/pixels.h"

namespace kel::testing {

// An address of this machine.
inline std::string Local(const std::string& scheme, int port, const std::string& words = {}) {
    return scheme + "://127.0.0.1:" + std::to_string(port) + words;
}

inline void AwaitPictureOf(LiveSource& source) {
    Await("the first picture", [&] { return source.WaitForPicture(std::chrono::milliseconds(20)); });
}

// A source, and what of it an operator would see.
class Watched {
public:
    explicit Watched(const std::string& name, const PacketRing::Limits& replay = {})
        : m_source(ParseLiveName(name), replay) {}

    void AwaitPicture() { AwaitPictureOf(m_source); }
    bool TakePicture() { return m_source.Take(m_picture); }
    // Its middle is of that grey.
    void AwaitGrey(int grey) {
        Await("the grey " + std::to_string(grey), [&] {
            (void)TakePicture();
            return m_picture.width > 0 && std::abs(Middle()[0] - ShownGrey(grey)) <= 4;  // lossy, at its best quality
        });
    }
    void AwaitNews(const std::string& part) {
        Await("news with: " + part, [&] {
            for (const std::string& line : m_source.TakeNews()) m_news += line + "\n";
            return m_news.find(part) != std::string::npos;
        });
    }
    [[nodiscard]] Pixel Middle() const { return m_picture.At(m_picture.width / 2, m_picture.height / 2); }
    [[nodiscard]] const picture_io::Picture& Picture() const { return m_picture; }
    LiveSource& Source() { return m_source; }

private:
    LiveSource m_source;
    picture_io::Picture m_picture;
    std::string m_news;
};

}  // namespace kel::testing
