#include "kel/outputs/field_views.h"

#include <algorithm>

namespace kel {
namespace {

// The colours alone; straight colours where nothing is covered mean nothing.
picture_io::Picture Opaque(picture_io::Picture picture) {
    for (std::size_t alpha = 3; alpha < picture.rgba.size(); alpha += 4) picture.rgba[alpha] = 255;
    return picture;
}

picture_io::Picture AlphaAsGrey(picture_io::Picture picture) {
    for (std::size_t pixel = 0; pixel < picture.rgba.size(); pixel += 4) {
        std::fill_n(picture.rgba.begin() + static_cast<std::ptrdiff_t>(pixel), 3, picture.rgba[pixel + 3]);
        picture.rgba[pixel + 3] = 255;
    }
    return picture;
}

picture_io::Picture SideBySide(const picture_io::Picture& left, const picture_io::Picture& right) {
    picture_io::Picture both(left.width + right.width, left.height);
    const std::ptrdiff_t leftBytes = std::ptrdiff_t{left.width} * 4;
    const std::ptrdiff_t rightBytes = std::ptrdiff_t{right.width} * 4;
    auto to = both.rgba.begin();
    for (std::ptrdiff_t row = 0; row < left.height; ++row) {
        to = std::copy_n(left.rgba.begin() + row * leftBytes, leftBytes, to);
        to = std::copy_n(right.rgba.begin() + row * rightBytes, rightBytes, to);
    }
    return both;
}

}  // namespace

SharedPicture FieldViews::Show(View view, Host& host, ObjectId drawn) {
    if (m_pictureNumber != host.PictureNumber()) {
        m_views = {};
        m_pictureNumber = host.PictureNumber();
    }
    SharedPicture& shown = m_views[static_cast<std::size_t>(view)];
    if (!shown) shown = std::make_shared<const picture_io::Picture>(Make(view, host, drawn));
    return shown;
}

picture_io::Picture FieldViews::Make(View view, Host& host, ObjectId drawn) {
    switch (view) {
        case View::Rendered:
            return host.ReadFrame();
        case View::Overlay:
            return m_isStraight ? host.ReadOverlay() : host.ReadPremultipliedOverlay();
        case View::Fill:
            return Opaque(*Show(View::Overlay, host));
        case View::Key:
            return AlphaAsGrey(*Show(View::Overlay, host));
        case View::FillKey:
            return SideBySide(*Show(View::Fill, host), *Show(View::Key, host));
        case View::Canvas:
            break;
    }
    return host.ReadCanvas(drawn);
}

}  // namespace kel
