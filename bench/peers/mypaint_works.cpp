extern "C" {
#include <mypaint-fixed-tiled-surface.h>
}

#include <memory>

#include "bench/peers/dab.h"
#include "bench/peers/peer_work.h"

namespace chalkpane::peers {
namespace {

struct Unref {
    void operator()(MyPaintSurface* surface) const { mypaint_surface_unref(surface); }
};

// A soft round dab of 41 pixels in 15 bits, drawn when its stroke ends.
struct Surface {
    std::unique_ptr<MyPaintSurface, Unref> surface{
        mypaint_fixed_tiled_surface_interface(mypaint_fixed_tiled_surface_new(Dab::canvasSize, Dab::canvasSize))};

    void Draw(float radius) {
        constexpr float middle = 520.5F;
        MyPaintRectangle changed;
        mypaint_surface_begin_atomic(surface.get());
        mypaint_surface_draw_dab(surface.get(), middle, middle, radius, 0.8F, 0.3F, 0.1F, 1.0F, 0.5F, 1.0F, 1.0F, 0.0F,
                                 0.0F, 0.0F);
        mypaint_surface_end_atomic(surface.get(), &changed);
    }
};

}  // namespace

std::vector<PeerWork> MyPaintWorks() {
    constexpr int pixels = 41;
    const auto dab = std::make_shared<Dab>(pixels, Depth::Fourteen);
    const auto surface = std::make_shared<Surface>();
    PeerWork work;
    work.name = "14-bit dab 41 px";
    work.peer = "mypaint";
    work.unit = "dab";
    work.units = 1;
    work.theirs = [surface] { surface->Draw(pixels / 2.0F); };
    work.ours = [dab] { dab->Paste(); };
    // Theirs makes its mask anew for each dab, of another profile.
    work.apart = [] { return 0.0; };
    work.mostApart = 255.0;
    return {work};
}

}  // namespace chalkpane::peers
