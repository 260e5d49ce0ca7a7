#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include "chalkpane/brush/sources/brush_source.h"
#include "chalkpane/composite/brush_paster.h"
#include "chalkpane/composite/eraser.h"
#include "chalkpane/image/image.h"

// A brush that evaluates every step of every curve and skips none. Sources and pasters are the engine's own.
namespace reference {

struct StrokeSettings {
    double spacing = 0.15;
    bool adjustSpacing = false;
    chalkpane::SpacingType spacingType = chalkpane::SpacingType::Shorten;
    bool buildUp = false;
    bool matchPath = false;
    int blendMode = 0;
    chalkpane::SourceType sourceType = chalkpane::SourceType::Colour;
    double opacity = 1.0;
    double decay = 0.0;
};

struct PlacedDab {
    double x, y, pressure, angle;
};

class StrokeEngine {
public:
    StrokeEngine(const StrokeSettings& given, chalkpane::BrushSource& dabSource, chalkpane::Image& canvas)
        : settings(given), source(dabSource), target(canvas) {}

    chalkpane::Rect Begin(double x, double y, double p) {
        chalkpane::Rect changed;
        source.DropPickup();
        running = settings.opacity;
        angle = 0.0;
        waiting = settings.matchPath;
        if (settings.matchPath) {
            lastX = static_cast<float>(x);
            lastY = static_cast<float>(y);
            lastP = static_cast<float>(p);
        } else {
            changed = Paint(x, y, p, false);
        }
        for (int i = 0; i < 4; ++i) {
            hx[i] = static_cast<float>(x);
            hy[i] = static_cast<float>(y);
            hp[i] = static_cast<float>(p);
        }
        return changed;
    }

    chalkpane::Rect Continue(double x, double y, double p) {
        const std::size_t before = dabs.size();
        chalkpane::Rect changed = Step(x, y, p);
        bool still = true;
        for (int i = 0; i < 3; ++i) still = still && hx[i] == hx[3] && hy[i] == hy[3] && hp[i] == hp[3];
        if (dabs.size() == before && still && settings.buildUp) changed = changed.Union(Paint(x, y, p, true));
        return changed;
    }

    chalkpane::Rect End(double x, double y, double p) {
        chalkpane::Rect changed = Step(x, y, p);
        changed = changed.Union(Step(x, y, p));
        changed = changed.Union(Step(x, y, p));
        return changed.Union(Step(x, y, p));
    }

    std::vector<PlacedDab> dabs;

private:
    chalkpane::Rect Step(double x, double y, double p) {
        for (int i = 0; i < 3; ++i) {
            hx[i] = hx[i + 1];
            hy[i] = hy[i + 1];
            hp[i] = hp[i + 1];
        }
        hx[3] = static_cast<float>(x);
        hy[3] = static_cast<float>(y);
        hp[3] = static_cast<float>(p);
        double gap = source.GetSize() * settings.spacing;
        if (settings.adjustSpacing)
            gap = source.GetSizeInDirection(std::atan2(x - lastX, y - lastY)) * settings.spacing;
        double factor = 1.0;
        if (settings.spacingType != chalkpane::SpacingType::Keep && (hx[2] != hx[3] || hy[2] != hy[3])) {
            const double lx = static_cast<double>(hx[3]) - hx[2];
            const double ly = static_cast<double>(hy[3]) - hy[2];
            const double length = std::sqrt(lx * lx + ly * ly);
            if (gap > length) {
                if (settings.spacingType == chalkpane::SpacingType::ShortenAndThin) factor = std::sqrt(length / gap);
                gap = length;
            }
        }
        double limit = gap * gap;
        chalkpane::Rect changed;
        float t = 0;
        while (t <= 1) {
            const double d = t;
            t = static_cast<float>(t + 0.001);  // and so gathers its rounding
            const auto b0 = static_cast<float>((1 - 3 * d + 3 * d * d - d * d * d) / 6);
            const auto b1 = static_cast<float>((4 - 6 * d * d + 3 * d * d * d) / 6);
            const auto b2 = static_cast<float>((1 + 3 * d + 3 * d * d - 3 * d * d * d) / 6);
            const auto b3 = static_cast<float>(d * d * d / 6);
            const auto point = [&](const float* h) {
                return double(b0) * h[0] + double(b1) * h[1] + double(b2) * h[2] + double(b3) * h[3];
            };
            const double px = point(hx);
            const double py = point(hy);
            const double dx = px - lastX;
            const double dy = py - lastY;
            if (settings.adjustSpacing) {
                const double inDirection = source.GetSizeInDirection(std::atan2(dx, dy)) * settings.spacing;
                limit = inDirection * inDirection;
            }
            if (dx * dx + dy * dy > limit) {
                waiting = false;
                changed = changed.Union(Paint(px, py, point(hp) * factor, false));
            } else if (waiting && dx * dx + dy * dy >= 5.0) {
                changed = changed.Union(Paint(px, py, point(hp) * factor, false));
            }
        }
        return changed;
    }

    chalkpane::Rect Paint(double x, double y, double p, bool repeat) {
        double turn = 0.0;
        if (settings.matchPath) {
            turn = repeat ? angle : -std::atan2(lastY - y, x - lastX) * 180 / 3.141592653589793;
            angle = turn;
        }
        if (waiting) {
            x = lastX;
            y = lastY;
            p = lastP;
        }
        lastX = static_cast<float>(x);
        lastY = static_cast<float>(y);
        lastP = static_cast<float>(p);
        waiting = false;
        dabs.push_back({x, y, p, turn});
        chalkpane::Rect changed;
        std::unique_ptr<chalkpane::Image> colour;
        std::unique_ptr<chalkpane::Image> mask;
        if (source.MakeDab(x, y, turn, colour, mask)) {
            const chalkpane::Rect area = mask ? colour->Intersection(*mask) : colour->Bounds();
            if (source.IsEraser()) {
                chalkpane::Eraser eraser;
                eraser.SetOpacity(running * p);
                eraser.Paste(*colour, mask.get(), target, area, 0, nullptr, chalkpane::Clip::Inverted);
            } else {
                using enum chalkpane::PasteBehaviour;
                chalkpane::BrushPaster paster;
                paster.SetOpacity(running * p);
                paster.SetMode(static_cast<std::uint8_t>(settings.blendMode));
                paster.Paste(*colour, mask.get(), target,
                             settings.sourceType == chalkpane::SourceType::Replace ||
                                     settings.sourceType == chalkpane::SourceType::ReplaceToo
                                 ? Replace
                                 : Over,
                             area, 0, nullptr, chalkpane::Clip::Inverted);
            }
            source.DabPlaced(x, y, turn);
            changed = area.Intersection(target);
        }
        running *= settings.decay < 1 ? std::sqrt(1 - settings.decay) : 0.0;
        return changed;
    }

    StrokeSettings settings;
    chalkpane::BrushSource& source;
    chalkpane::Image& target;
    float hx[4] = {};
    float hy[4] = {};
    float hp[4] = {};
    float lastX = 0;
    float lastY = 0;
    float lastP = 0;
    bool waiting = false;
    double angle = 0;
    double running = 1;
};

}  // namespace reference
