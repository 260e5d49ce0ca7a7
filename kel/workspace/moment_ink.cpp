#include "kel/workspace/moment_ink.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace kel {
namespace {

bool Has(const MomentInk::Strokes& strokes, const chalkpane::SharedStroke& ink) {
    return std::ranges::find(strokes, ink) != strokes.end();
}

}  // namespace

bool MomentInk::Knows(const chalkpane::SharedStroke& ink) const {
    return std::ranges::find(m_strokes, ink, &Stroke::ink) != m_strokes.end();
}

void MomentInk::Note(const Strokes& onCanvas) {
    if (onCanvas == m_onCanvas) return;
    const bool hasForeign =
        std::ranges::any_of(onCanvas, [&](const auto& ink) { return Knows(ink) && !Has(m_onCanvas, ink); });
    if (hasForeign) return;
    std::erase_if(m_strokes,
                  [&](const Stroke& stroke) { return Has(m_onCanvas, stroke.ink) && !Has(onCanvas, stroke.ink); });
    for (const chalkpane::SharedStroke& ink : onCanvas)
        if (!Knows(ink)) m_strokes.push_back({ink, m_shown});
    m_onCanvas = onCanvas;
}

MomentInk::Strokes MomentInk::Show(const Moment& moment) {
    m_shown = moment;
    m_onCanvas.clear();
    for (const Stroke& stroke : m_strokes) {
        const bool isNear = stroke.moment && moment && std::abs(*stroke.moment - *moment) <= reach;
        if (!stroke.moment || isNear) m_onCanvas.push_back(stroke.ink);
    }
    return m_onCanvas;
}

MomentInk::Strokes MomentInk::ShowAll() {
    Strokes all;
    for (Stroke& stroke : m_strokes) all.push_back(std::move(stroke.ink));
    *this = {};
    return all;
}

void MomentInk::ForgetBefore(std::int64_t moment) {
    std::erase_if(m_strokes, [&](const Stroke& stroke) {
        return stroke.moment && *stroke.moment < moment - reach && !Has(m_onCanvas, stroke.ink);
    });
}

}  // namespace kel
