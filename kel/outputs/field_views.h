#pragma once

#include <array>
#include <optional>

#include "kel/outputs/output_sink.h"

namespace kel {

// The views of the field that a host has just drawn. What several sinks want is made once, and as long as the host's
// picture is the same it is not made again: then the very pictures of the field before are shown.
class FieldViews {
public:
    explicit FieldViews(PictureAlpha alpha) : m_alpha(alpha) {}

    //   drawn  the container whose canvas is shown; needed for the canvas alone, which is straight in any case
    [[nodiscard]] SharedPicture Show(View view, Host& host, ObjectId drawn = noObject);

private:
    [[nodiscard]] picture_io::Picture Make(View view, Host& host, ObjectId drawn);

    PictureAlpha m_alpha;  // of overlay and fill
    std::optional<std::uint64_t> m_pictureNumber;
    std::array<SharedPicture, viewCount> m_views;
};

}  // namespace kel
