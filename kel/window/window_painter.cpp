#include "kel/window/window_painter.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kel/scene/gl.h"
#include "kel/scene/scene_changes.h"

namespace kel {
namespace {

bool Contains(const FrameArea& outer, const FrameArea& inner) { return Intersection(outer, inner) == inner; }

// What has changed from the one list of pages to the other, none of it twice.
std::vector<FrameArea> ChangedPages(const std::vector<PanelPage>& before, const std::vector<PanelPage>& now) {
    std::vector<FrameArea> changed;
    const auto add = [&](const std::vector<PanelPage>& pages, const std::vector<PanelPage>& others) {
        for (const PanelPage& page : pages) {
            if (page.area.IsEmpty() || std::ranges::find(others, page) != others.end()) continue;
            const auto contains = [&](const FrameArea& area) { return Contains(area, page.area); };
            if (std::ranges::any_of(changed, contains)) continue;
            std::erase_if(changed, [&](const FrameArea& area) { return Contains(page.area, area); });
            changed.push_back(page.area);
        }
    };
    add(before, now);
    add(now, before);
    return changed;
}

}  // namespace

FrameArea ShownPart(const FrameArea& changed, WindowSize scene, const FrameArea& picture) {
    constexpr std::int32_t margin = 2;  // pixels: a smoothly scaled one takes from its neighbours
    const auto along = [](std::int32_t at, std::int32_t from, std::int32_t to) {
        return static_cast<double>(at) * to / from;
    };
    const auto x0 = static_cast<std::int32_t>(std::floor(along(changed.x, scene.width, picture.width))) - margin;
    const auto y0 = static_cast<std::int32_t>(std::floor(along(changed.y, scene.height, picture.height))) - margin;
    const auto x1 =
        static_cast<std::int32_t>(std::ceil(along(changed.x + changed.width, scene.width, picture.width))) + margin;
    const auto y1 =
        static_cast<std::int32_t>(std::ceil(along(changed.y + changed.height, scene.height, picture.height))) + margin;
    return Intersection({picture.x + x0, picture.y + y0, x1 - x0, y1 - y0}, picture);
}

FrameArea WindowPainter::Whole() const {
    const WindowSize size = m_window.Size();
    return {0, 0, size.width, size.height};
}

FrameArea WindowPainter::PictureInWindow() const {
    return {m_picture.x, m_window.Size().height - m_picture.y - m_picture.height, m_picture.width, m_picture.height};
}

void WindowPainter::Place(const PictureArea& picture) {
    const WindowSize size = m_window.Size();
    if (picture == m_picture && size.width == m_swapped.width && size.height == m_swapped.height) return;
    m_picture = picture;
    m_isStale = true;
}

void WindowPainter::Paint(const Host& host, const FrameArea& part) {
    PaintUnderPages(host, Uncovered(part, m_pages));
    m_window.DrawPanel(part);
}

void WindowPainter::PaintUnderPages(const Host& host, const FrameArea& part) {
    const FrameArea picture = PictureInWindow();
    const FrameArea seen = Intersection(part, picture);
    // Also where none of the picture is seen: it is what goes from the scene's own frame to the window.
    host.ShowFramePart(picture, seen);
    if (!seen.IsEmpty()) m_tail.Draw(m_picture, host.Window(), m_window.Size(), seen);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_ALPHA_TEST);
    if (!Contains(picture, part)) {
        glEnable(GL_SCISSOR_TEST);
        glClearColor(0.03F, 0.035F, 0.04F, 1);
        // The margin: all of the part that is beside the picture.
        const std::int32_t right = picture.x + picture.width;
        const std::int32_t top = picture.y + picture.height;
        for (const FrameArea& beside : {FrameArea{part.x, part.y, picture.x - part.x, part.height},
                                        FrameArea{right, part.y, part.x + part.width - right, part.height},
                                        FrameArea{part.x, part.y, part.width, picture.y - part.y},
                                        FrameArea{part.x, top, part.width, part.y + part.height - top}}) {
            const FrameArea margin = Intersection(beside, part);
            if (margin.IsEmpty()) continue;
            glScissor(margin.x, margin.y, margin.width, margin.height);
            glClear(GL_COLOR_BUFFER_BIT);
        }
        glDisable(GL_SCISSOR_TEST);
    }
}

void WindowPainter::ShowAll(const Host& host) {
    const WindowSize size = m_window.Size();
    m_pages = m_window.PanelPages();
    m_isStale = false;
    const bool isSameSize = size.width == m_swapped.width && size.height == m_swapped.height;
    Paint(host, Whole());
    if (isSameSize && m_window.ShowsParts()) return m_window.ShowPart(Whole());
    // The exchange is what fits the buffers to another size; what is left in the back buffer is anything.
    m_window.Swap();
    m_swapped = size;
    if (!m_window.ShowsParts()) return;
    Paint(host, Whole());
    m_window.ShowPart(Whole());
}

bool WindowPainter::ShowsAllInstead(const Host& host) {
    if (!m_isStale && m_window.ShowsParts()) return false;
    ShowAll(host);
    return true;
}

// True: nothing but the picture is seen there, each of its pixels on one of the window, and that is shown now.
bool WindowPainter::PutsPicture(const Host& host, const FrameArea& part) {
    const FrameArea picture = PictureInWindow();
    const WindowSize scene = host.Window();
    const bool isAlone =
        Contains(picture, part) && Intersection(m_tailShown, part).IsEmpty() &&
        std::ranges::none_of(m_pages, [&](const PanelPage& page) { return !Intersection(page.area, part).IsEmpty(); });
    return isAlone && scene.width == picture.width && scene.height == picture.height &&
           m_window.PutPicture(host, picture, part);
}

void WindowPainter::Show(const Host& host, const FrameArea& part) {
    const FrameArea within = Intersection(part, Whole());
    if (within.IsEmpty() || PutsPicture(host, within)) return;
    Paint(host, within);
    m_window.ShowPart(within);
}

void WindowPainter::ShowPicture(const Host& host, const FrameArea& changed) {
    const FrameArea tail = Intersection(m_tail.Area(m_picture, host.Window(), m_window.Size()), PictureInWindow());
    const FrameArea tails = Union(std::exchange(m_tailShown, tail), tail);
    if (ShowsAllInstead(host) || (changed.IsEmpty() && tails.IsEmpty())) return;
    const FrameArea part = changed.IsEmpty() ? FrameArea() : ShownPart(changed, host.Window(), PictureInWindow());
    Show(host, Uncovered(Union(part, tails), m_pages));
}

void WindowPainter::ShowPanel(const Host& host) {
    if (ShowsAllInstead(host)) return;
    std::vector<PanelPage> pages = m_window.PanelPages();
    const std::vector<FrameArea> changed = ChangedPages(m_pages, pages);
    m_pages = std::move(pages);
    for (const FrameArea& area : changed) Show(host, area);
}

}  // namespace kel
