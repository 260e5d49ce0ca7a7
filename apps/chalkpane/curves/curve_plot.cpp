#include "apps/chalkpane/curves/curve_plot.h"

#include <cairo.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <new>

#include "apps/chalkpane/curves/curve_series.h"
#include "apps/chalkpane/filtering/picture_image.h"
#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/image/image.h"
#include "chalkpane/parameters/animation/key.h"

namespace chalkpane::app {
namespace {

constexpr std::int32_t width = 1200;
constexpr std::int32_t height = 640;
constexpr double left = 90.0;
constexpr double right = width - 30.0;
constexpr double top = 60.0;
constexpr double bottom = height - 60.0;

struct Chalk {
    Colour colour;  // 14 bits
    double Part(std::uint16_t channel) const { return channel / 16383.0; }
};
constexpr Chalk white{{15600, 15600, 15000}};
constexpr Chalk yellow{{15800, 13200, 5200}};
constexpr Chalk redChalk{{15600, 6000, 5200}};
constexpr Chalk greenChalk{{7400, 13800, 6400}};
constexpr Chalk blueChalk{{6600, 10400, 16000}};

// One number is yellow; several have the colours of their places: red, green, blue.
const Chalk& ChalkOf(std::size_t component, std::size_t count) {
    static constexpr std::array chalks = {redChalk, greenChalk, blueChalk};
    return count == 1 ? yellow : chalks[component % chalks.size()];
}

// Numbers beyond it are off the board: the scale could not be reckoned.
constexpr double farthest = 1e300;

struct Range {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
    void Take(double number) {
        if (!std::isfinite(number)) return;
        number = std::clamp(number, -farthest, farthest);
        low = std::min(low, number);
        high = std::max(high, number);
    }
    // A little air on both sides; something to look at even for a line.
    void Widen() {
        if (low > high) low = high = 0.0;
        double air = Size() * 0.08;
        if (!(air > 0.0)) air = std::max(std::fabs(low) * 0.1, 0.5);
        low -= air;
        high += air;
    }
    [[nodiscard]] double Size() const { return high - low; }
};

// Where to write numbers on a scale: whole steps of 1, 2 or 5 times a power of ten, some `wanted` of them in the range.
struct Ticks {
    Ticks(const Range& range, double wanted, double smallest) {
        const double rough = range.Size() / wanted;
        const double power = std::pow(10.0, std::floor(std::log10(rough)));
        step = 10.0 * power;
        for (const double factor : {5.0, 2.0, 1.0})
            if (factor * power >= rough) step = factor * power;
        step = std::max(step, smallest);
        const double first = std::ceil(range.low / step);
        const double count = std::floor(range.high / step) - first;
        for (int i = 0; i <= count && i < 100; ++i) places.push_back((first + i) * step);
    }
    double step;
    std::vector<double> places;
};

struct CurveLine {
    std::vector<CurvePoint> course;  // from left to right
    std::vector<CurvePoint> keys;
    std::vector<HandleEnd> handles;
};

// Enough places to show every pixel's frame, and no more: a video may be long.
std::vector<std::int32_t> FramesShown(const FrameRange& frames) {
    const std::int64_t count = std::int64_t{frames.last} - frames.first;
    const std::int64_t steps = std::min<std::int64_t>(count, 4 * width);
    std::vector<std::int32_t> shown;
    for (std::int64_t i = 0; i <= steps; ++i)
        shown.push_back(static_cast<std::int32_t>(frames.first + (steps == 0 ? 0 : count * i / steps)));
    return shown;
}

std::vector<CurveLine> LinesOf(const ParameterValue& value, const FrameRange& frames, FrameRateClock& clock) {
    std::vector<CurveLine> lines(SeriesNames(value).size());
    for (const std::int32_t frame : FramesShown(frames)) {
        clock.StandAt(frame);
        const auto numbers = SeriesAt(value, clock);
        for (std::size_t i = 0; i < lines.size(); ++i)
            lines[i].course.push_back({static_cast<double>(frame), numbers[i]});
    }
    for (std::size_t i = 0; i < lines.size(); ++i) {
        for (std::int32_t key = 0; key < value.keyCount(); ++key)
            lines[i].keys.push_back({static_cast<double>(value.keyAt(key)->frame(clock)), KeyNumber(value, key, i)});
        lines[i].handles = HandleEnds(value, i, clock);
    }
    return lines;
}

class Board {
public:
    Board(const FrameRange& frames, const std::vector<CurveLine>& lines)
        : m_surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height), cairo_surface_destroy),
          m_cairo(cairo_create(m_surface.get()), cairo_destroy),
          m_first(frames.first),
          m_last(std::max<double>(frames.last, frames.first + 1.0)) {
        for (const CurveLine& line : lines) {
            for (const CurvePoint& point : line.course) m_range.Take(point.value);
            for (const CurvePoint& key : line.keys)
                if (IsShown(key.frame)) m_range.Take(key.value);
            for (const HandleEnd& handle : line.handles)
                if (IsShown(handle.key.frame)) m_range.Take(handle.end.value);
        }
        m_range.Widen();
    }

    void DrawScale(const std::string& title) {
        cairo_t* const c = m_cairo.get();
        cairo_set_source_rgb(c, 0.13, 0.19, 0.17);
        cairo_paint(c);
        cairo_set_line_width(c, 1.0);
        cairo_select_font_face(c, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_font_size(c, 15.0);
        const Ticks numbers(m_range, 7.0, 0.0);
        for (const double tick : numbers.places) {
            DrawLine(left, YOf(tick), right, YOf(tick), 0.12);
            DrawText(Number(tick, numbers.step), left - 10.0, YOf(tick) + 5.0, 1.0);
        }
        for (const double tick : Ticks({m_first, m_last}, 12.0, 1.0).places) {
            DrawLine(XOf(tick), top, XOf(tick), bottom, 0.12);
            DrawText(Number(tick, 1.0), XOf(tick), bottom + 24.0, 0.5);
        }
        DrawLine(left, bottom, right, bottom, 0.6);
        DrawLine(left, top, left, bottom, 0.6);
        DrawText("frame", right, bottom + 46.0, 1.0);
        cairo_set_font_size(c, 20.0);
        DrawText(title, left, 38.0, 0.0);
    }

    void DrawNames(const std::vector<std::string>& names) {
        if (names.size() < 2) return;
        cairo_set_font_size(m_cairo.get(), 17.0);
        double x = right;
        for (std::size_t i = names.size(); i-- > 0;) {
            SetChalk(ChalkOf(i, names.size()), 1.0);
            x -= ShowText(names[i], x, 38.0, 1.0) + 22.0;
        }
    }

    // Chalk from the engine's own brush, composited onto the board.
    void DrawCourse(const std::vector<CurvePoint>& course, const Chalk& chalk) {
        Image layer = Image::Colour(width, height, Depth::Eight, AlphaForm::Premultiplied);
        BasicBrush brush("Chalk");
        brush.SetTarget(&layer);
        brush.SetColour(chalk.colour);
        brush.SetSpacing(0.2, SpacingType::Keep);
        brush.SetSize(2);
        bool isDown = false;
        CurvePoint last;
        for (const CurvePoint& point : course) {
            if (!(std::fabs(point.value) <= farthest)) continue;
            const CurvePoint here{XOf(point.frame), height - YOf(point.value)};
            if (!isDown) brush.BeginStroke(here.frame, here.value, 1.0);
            if (isDown) Lead(brush, last, here);
            isDown = true;
            last = here;
        }
        if (course.size() == 1) Lead(brush, last, {right, last.value});
        if (isDown) brush.EndStroke(course.size() == 1 ? right : last.frame, last.value, 1.0);
        Composite(layer);
    }

    void DrawKeys(const CurveLine& line, const Chalk& chalk) {
        cairo_t* const c = m_cairo.get();
        cairo_save(c);
        cairo_rectangle(c, left - 8.0, top - 8.0, right - left + 16.0, bottom - top + 16.0);
        cairo_clip(c);
        for (const HandleEnd& handle : line.handles) {
            SetChalk(white, 0.75);
            cairo_set_line_width(c, 1.5);
            cairo_move_to(c, XOf(handle.key.frame), YOf(handle.key.value));
            cairo_line_to(c, XOf(handle.end.frame), YOf(handle.end.value));
            cairo_stroke(c);
            Dot(handle.end, 3.5, white);
        }
        for (const CurvePoint& key : line.keys) {
            Dot(key, 7.0, white);
            Dot(key, 5.0, chalk);
        }
        cairo_restore(c);
    }

    [[nodiscard]] picture_io::Picture ToPicture() const {
        RequireNoLoss();
        if (cairo_status(m_cairo.get()) == CAIRO_STATUS_NO_MEMORY) throw std::bad_alloc();
        cairo_surface_flush(m_surface.get());
        const unsigned char* const data = cairo_image_surface_get_data(m_surface.get());
        const int stride = cairo_image_surface_get_stride(m_surface.get());
        picture_io::Picture picture(width, height);
        for (std::int32_t y = 0; data != nullptr && y < height; ++y) {
            for (std::int32_t x = 0; x < width; ++x) {
                const unsigned char* const pixel = data + y * stride + x * 4;
                picture.Set(x, y, {pixel[2], pixel[1], pixel[0], 255});
            }
        }
        return picture;
    }

private:
    [[nodiscard]] bool IsShown(double frame) const { return frame >= m_first && frame <= m_last; }
    [[nodiscard]] double XOf(double frame) const {
        return left + (frame - m_first) / (m_last - m_first) * (right - left);
    }
    [[nodiscard]] double YOf(double number) const {
        return bottom - (number - m_range.low) / (m_range.high - m_range.low) * (bottom - top);
    }

    static std::string Number(double number, double step) {
        const int decimals = std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, 9);
        std::array<char, 400> text{};
        const bool isVast = std::fabs(number) >= 1e7;
        std::snprintf(text.data(), text.size(), isVast ? "%.*g" : "%.*f", isVast ? 6 : decimals,
                      std::fabs(number) < step * 1e-6 ? 0.0 : number);
        return text.data();
    }

    void SetChalk(const Chalk& chalk, double alpha) {
        cairo_set_source_rgba(m_cairo.get(), chalk.Part(chalk.colour.red), chalk.Part(chalk.colour.green),
                              chalk.Part(chalk.colour.blue), alpha);
    }

    void DrawLine(double x0, double y0, double x1, double y1, double alpha) {
        SetChalk(white, alpha);
        cairo_move_to(m_cairo.get(), std::round(x0) + 0.5, std::round(y0) + 0.5);
        cairo_line_to(m_cairo.get(), std::round(x1) + 0.5, std::round(y1) + 0.5);
        cairo_stroke(m_cairo.get());
    }

    // align: 0 begins at x, 1 ends there
    void DrawText(const std::string& text, double x, double y, double align) {
        SetChalk(white, 0.9);
        ShowText(text, x, y, align);
    }
    double ShowText(const std::string& text, double x, double y, double align) {
        cairo_text_extents_t extents;
        cairo_text_extents(m_cairo.get(), text.c_str(), &extents);
        cairo_move_to(m_cairo.get(), x - extents.x_advance * align, y);
        cairo_show_text(m_cairo.get(), text.c_str());
        return extents.x_advance;
    }

    void Dot(const CurvePoint& place, double radius, const Chalk& chalk) {
        SetChalk(chalk, 1.0);
        cairo_arc(m_cairo.get(), XOf(place.frame), YOf(place.value), radius, 0.0, 6.283185307179586);
        cairo_fill(m_cairo.get());
    }

    // The brush rounds off the way between its samples, so it is led in steps of a pixel or two.
    static void Lead(BasicBrush& brush, const CurvePoint& from, const CurvePoint& to) {
        const double length = std::hypot(to.frame - from.frame, to.value - from.value);
        const int steps = std::max(1, static_cast<int>(length / 2.0));
        for (int i = 1; i <= steps; ++i) {
            const double part = static_cast<double>(i) / steps;
            brush.ContinueStroke(from.frame + (to.frame - from.frame) * part,
                                 from.value + (to.value - from.value) * part, 1.0);
        }
    }

    // Memory of both runs alike: blue, green, red, alpha, premultiplied, from the top row down.
    void Composite(Image& layer) {
        cairo_surface_t* const source = cairo_image_surface_create_for_data(
            layer.Row8(height - 1).data(), CAIRO_FORMAT_ARGB32, width, height, layer.rowBytes);
        cairo_set_source_surface(m_cairo.get(), source, 0.0, 0.0);
        cairo_paint(m_cairo.get());
        cairo_surface_destroy(source);
    }

    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> m_surface;
    std::unique_ptr<cairo_t, decltype(&cairo_destroy)> m_cairo;
    double m_first;
    double m_last;
    Range m_range;
};

}  // namespace

picture_io::Picture PlotCurve(const ParameterValue& value, const std::string& title, const FrameRange& frames,
                              FrameRateClock& clock) {
    const auto lines = LinesOf(value, frames, clock);
    Board board(frames, lines);
    board.DrawScale(title);
    board.DrawNames(SeriesNames(value));
    for (std::size_t i = 0; i < lines.size(); ++i) board.DrawCourse(lines[i].course, ChalkOf(i, lines.size()));
    for (std::size_t i = 0; i < lines.size(); ++i) board.DrawKeys(lines[i], ChalkOf(i, lines.size()));
    return board.ToPicture();
}

}  // namespace chalkpane::app
