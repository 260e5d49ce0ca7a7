#include "chalkpane/image/soft_mask.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

namespace chalkpane {

namespace {

// The stretch of one line that a fade treats alike: columns `first` .. `last`, none when reversed.
struct Columns {
    std::int64_t first;
    std::int64_t last;
};

// The number of whole columns below or at a real position, clamped well inside 64 bits; NaN lies at the left.
std::int64_t WholeColumn(double rounded) {
    constexpr double limit = 4294967296.0;
    return static_cast<std::int64_t>(rounded >= -limit ? std::min(rounded, limit) : -limit);
}

// One line of an image in either format, addressed by plane column, of which the fading channels are multiplied.
template <typename F>
class FadingLine {
public:
    FadingLine(const Image& image, std::int32_t y, bool alphaOnly)
        : m_row(reinterpret_cast<typename F::Channel*>(image.Address(image.x0, y))),
          m_x0(image.x0),
          m_x1(image.x1),
          m_step(image.IsMask() ? 1 : 4),
          m_firstChannel(alphaOnly && !image.IsMask() ? 3 : 0) {}

    [[nodiscard]] Columns Inside(Columns columns) const {
        return {std::max<std::int64_t>(columns.first, m_x0), std::min<std::int64_t>(columns.last, m_x1)};
    }
    // multiplierAt(x): 0 .. one above the shift's range.
    template <int shift, typename MultiplierAt>
    void Multiply(Columns columns, MultiplierAt multiplierAt) const {
        const Columns inside = Inside(columns);
        for (std::int64_t x = inside.first; x <= inside.last; ++x) {
            const std::uint32_t multiplier = multiplierAt(static_cast<double>(x));
            typename F::Channel* pixel = m_row + (x - m_x0) * m_step;
            for (std::int32_t channel = m_firstChannel; channel < m_step; ++channel)
                pixel[channel] = static_cast<typename F::Channel>((pixel[channel] * multiplier) >> shift);
        }
    }
    void Zero(Columns columns) const {
        Multiply<0>(columns, [](double) { return 0U; });
    }

private:
    typename F::Channel* m_row;
    std::int32_t m_x0;
    std::int32_t m_x1;
    std::int32_t m_step;
    std::int32_t m_firstChannel;
};

struct Fade {
    double inverseWidth;

    // KEEP: a factor above 1 multiplies by 1, not by the full 256 or 65536, and so all but clears the pixel.
    template <int shift>
    [[nodiscard]] std::uint32_t RectangleMultiplier(double distance) const {
        const double factor = 1 - distance * inverseWidth;
        if (!(factor >= 0)) return 0;
        return factor > 1 ? 1 : static_cast<std::uint32_t>(factor * (1 << shift));
    }
    // The ring of a circle; `inward` is the distance from its outer edge.
    [[nodiscard]] std::uint32_t RingMultiplier(double inward) const {
        const double factor = inward * inverseWidth;
        if (!(factor >= 0)) return 0;
        return factor < 1 ? static_cast<std::uint32_t>(factor * 256) : 256;
    }
};

// The rectangle whose pixels stay as they are; around it lie four bands and four corners.
struct InnerRectangle {
    double left, bottom, right, top;

    // How far a line or column lies outside; 0 inside. A rectangle too small for its softness is left first.
    static double Outside(double position, double low, double high) {
        return position < low ? low - position : position > high ? position - high : 0.0;
    }
};

template <typename F>
void FadeRectangleLine(const FadingLine<F>& line, double y, const InnerRectangle& inner, const Fade& fade) {
    constexpr int shift = F::bits == 8 ? 8 : 16;  // DIFFERS: 14 bits fade in 1 / 65536
    const double dy = InnerRectangle::Outside(y, inner.bottom, inner.top);
    constexpr std::int64_t farOut = std::numeric_limits<std::int64_t>::max();
    const std::int64_t innerFirst = WholeColumn(std::ceil(inner.left));
    const std::int64_t innerLast = std::max(WholeColumn(std::floor(inner.right)), innerFirst - 1);
    const auto distance = [dy](double dx) { return dy == 0 ? dx : std::sqrt(dx * dx + dy * dy); };
    line.template Multiply<shift>({-farOut, innerFirst - 1},
                                  [&](double x) { return fade.RectangleMultiplier<shift>(distance(inner.left - x)); });
    line.template Multiply<shift>({innerLast + 1, farOut},
                                  [&](double x) { return fade.RectangleMultiplier<shift>(distance(x - inner.right)); });
    if (dy == 0) return;
    const std::uint32_t multiplier = fade.RectangleMultiplier<shift>(dy);
    line.template Multiply<shift>({innerFirst, innerLast}, [=](double) { return multiplier; });
}

struct Circle {
    double centreX, centreY, radius, innerRadius;

    // The columns of the chord at height dy over the centre; none beyond the circle.
    [[nodiscard]] Columns Chord(double dy, double chordRadius) const {
        if (!(std::abs(dy) <= chordRadius)) return {0, -1};
        const double half = std::sqrt(chordRadius * chordRadius - dy * dy);
        return {WholeColumn(std::ceil(centreX - half)), WholeColumn(std::floor(centreX + half))};
    }
};

template <typename F>
void FadeCircleLine(const FadingLine<F>& line, double y, const Circle& circle, const Fade& fade) {
    constexpr std::int64_t farOut = std::numeric_limits<std::int64_t>::max();
    const double dy = y - circle.centreY;
    const Columns chord = circle.Chord(dy, circle.radius);
    if (chord.first > chord.last) {
        line.Zero({-farOut, farOut});
        return;
    }
    line.Zero({-farOut, chord.first - 1});
    line.Zero({chord.last + 1, farOut});
    Columns inner = circle.Chord(dy, circle.innerRadius);
    if (inner.first > inner.last) inner = {chord.last + 1, chord.last};  // all ring
    const auto ring = [&](double x) {
        const double dx = x - circle.centreX;
        return fade.RingMultiplier(circle.radius - std::sqrt(dx * dx + dy * dy));
    };
    line.template Multiply<8>({chord.first, inner.first - 1}, ring);
    line.template Multiply<8>({inner.last + 1, chord.last}, ring);
}

template <typename FadeLine>
void ForEachLine(const Image& image, bool alphaOnly, FadeLine fadeLine) {
    for (std::int64_t row = image.y0; row <= image.y1; ++row) {
        const auto y = static_cast<std::int32_t>(row);
        if (image.GetDepth() == Depth::Eight)
            fadeLine(FadingLine<PixelFormat8>(image, y, alphaOnly), static_cast<double>(y));
        else
            fadeLine(FadingLine<PixelFormat14>(image, y, alphaOnly), static_cast<double>(y));
    }
}

}  // namespace

void SoftMask::ApplySoftMask(Image& image, double zoom) {
    const double width = zoom * softness;
    const double inverse = 1 / width;
    inverseWidth = static_cast<float>(
        std::clamp<double>(inverse, std::numeric_limits<float>::lowest(), std::numeric_limits<float>::max()));
    const Fade fade{inverseWidth};
    if (kind == rectangle) {
        const InnerRectangle inner{rect.x0 * zoom + width, rect.y0 * zoom + width, rect.x1 * zoom - width,
                                   rect.y1 * zoom - width};
        ForEachLine(image, alphaOnly != 0,
                    [&](const auto& line, double y) { FadeRectangleLine(line, y, inner, fade); });
    } else if (kind == circle) {
        const double radius = std::min(rect.Width(), rect.Height()) / 2.0 * zoom;
        const double centreX = (static_cast<double>(rect.x0) + rect.x1) / 2 * zoom;
        const double centreY = (static_cast<double>(rect.y0) + rect.y1) / 2 * zoom;
        const Circle outline{centreX, centreY, radius, radius - width};
        ForEachLine(image, alphaOnly != 0, [&](const auto& line, double y) { FadeCircleLine(line, y, outline, fade); });
    }
}

}  // namespace chalkpane
