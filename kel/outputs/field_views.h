#pragma once

#include <array>
#include <optional>

#include "kel/outputs/output_sink.h"

namespace kel {

// The views of the field that a host has just drawn. What several sinks want is made once, and as long as the host's
// picture is the same it is not made again: then the very pictures of the field before are shown.
class FieldViews {
public:
    //   isStraight  the colours of overlay and fill are not multiplied by alpha
    explicit FieldViews(bool isStraight) : m_isStraight(isStraight) {}

    //   drawn  the container whose canvas is shown; needed for the canvas alone, which is straight in any case
    [[nodiscard]] SharedPicture Show(View view, Host& host, ObjectId drawn = noObject);

    // What comes next is another host.
    void Forget() { m_pictureNumber.reset(); }

private:
    [[nodiscard]] picture_io::Picture Make(View view, Host& host, ObjectId drawn);

    bool m_isStraight;
    std::optional<std::uint64_t> m_pictureNumber;
    std::array<SharedPicture, viewCount> m_views;
};

}  // namespace kel
