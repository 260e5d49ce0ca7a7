#include "kel/workspace/picture_zoom.h"

#include <algorithm>
#include <cmath>

namespace kel {
namespace {

// A picture that is larger than what is free leaves none of it bare; a smaller one stands in the middle.
double Start(double centre, double shown, double free) {
    if (shown <= free) return (free - shown) / 2;
    return std::clamp(free / 2 - centre * shown, free - shown, 0.0);
}

double CentreOf(double start, double shown, double free) { return (free / 2 - start) / shown; }

}  // namespace

PictureArea PictureZoom::Place(const PictureArea& fit, WindowSize free) const {
    if (!IsZoomed()) return fit;
    PictureArea area;
    area.width = static_cast<std::int32_t>(std::lround(fit.width * m_scale));
    area.height = static_cast<std::int32_t>(std::lround(fit.height * m_scale));
    area.x = static_cast<std::int32_t>(std::lround(Start(m_centreX, area.width, free.width)));
    area.y = static_cast<std::int32_t>(std::lround(Start(m_centreY, area.height, free.height)));
    return area;
}

void PictureZoom::By(double factor, std::int32_t x, std::int32_t y, const PictureArea& fit, WindowSize free) {
    // Counted from where the picture would stand between the pixels, so that many small steps add up to none.
    const auto share = [&](double at, double centre, double size, double room) {
        return (at - Start(centre, size * m_scale, room)) / (size * m_scale);
    };
    const double shareX = share(x + 0.5, m_centreX, fit.width, free.width);
    const double shareY = share(y + 0.5, m_centreY, fit.height, free.height);
    m_scale = std::clamp(m_scale * factor, 1.0, closest);
    m_centreX = CentreOf(x + 0.5 - shareX * fit.width * m_scale, fit.width * m_scale, free.width);
    m_centreY = CentreOf(y + 0.5 - shareY * fit.height * m_scale, fit.height * m_scale, free.height);
    Move(0, 0, fit, free);
}

void PictureZoom::Move(std::int32_t right, std::int32_t down, const PictureArea& fit, WindowSize free) {
    const double width = fit.width * m_scale;
    const double height = fit.height * m_scale;
    // As far as it can be shown, so that the way back begins at once.
    m_centreX = CentreOf(Start(m_centreX - right / width, width, free.width), width, free.width);
    m_centreY = CentreOf(Start(m_centreY - down / height, height, free.height), height, free.height);
}

}  // namespace kel
