#include <vips/vips.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

#include "bench/peers/filter_work.h"

namespace chalkpane::peers {
namespace {

struct Unref {
    void operator()(VipsImage* image) const { g_object_unref(image); }
};
using VipsPicture = std::unique_ptr<VipsImage, Unref>;

// The picture that an operation gives by its second argument.
template <typename Operation, typename... Arguments>
VipsPicture Made(Operation operation, VipsImage* source, Arguments... arguments) {
    VipsImage* made = nullptr;
    if (operation(source, &made, arguments..., nullptr) != 0)
        throw std::runtime_error(std::string("peers: libvips: ") + vips_error_buffer());
    return VipsPicture(made);
}

// Runs the operations behind `picture` into memory.
void Compute(VipsImage* picture, std::vector<std::uint8_t>& made) {
    VipsImage* memory =
        vips_image_new_from_memory(made.data(), made.size(), picture->Xsize, picture->Ysize, 4, VIPS_FORMAT_UCHAR);
    const VipsPicture target(memory);
    if (vips_image_write(picture, memory) != 0)
        throw std::runtime_error(std::string("peers: libvips: ") + vips_error_buffer());
}

struct Pair {
    OurFilter ours;
    std::vector<std::uint8_t> made = std::vector<std::uint8_t>(std::size_t{4} * pictureSize * pictureSize);
    VipsPicture source;

    Pair(std::string_view label, const OurFilter::Settings& settings)
        : ours(label, settings, NoisePicture(Depth::Eight)),
          source(vips_image_new_from_memory(FirstByte(ours.picture), made.size(), pictureSize, pictureSize, 4,
                                            VIPS_FORMAT_UCHAR)) {}
};

// `operation` gives the picture that it makes of its argument.
template <typename Operation>
PeerWork FilterWork(const char* name, std::string_view label, const OurFilter::Settings& settings, double mostApart,
                    Operation operation) {
    const auto pair = std::make_shared<Pair>(label, settings);
    PeerWork work;
    work.name = name;
    work.peer = "vips";
    work.unit = "px";
    work.units = double{pictureSize} * pictureSize;
    work.theirs = [pair, operation] { Compute(operation(pair->source.get()).get(), pair->made); };
    work.ours = [pair] { pair->ours.Apply(); };
    work.apart = [pair] {
        return ColourDifference<PixelFormat8>(pair->made.data(),
                                              reinterpret_cast<const std::uint8_t*>(FirstByte(*pair->ours.result)));
    };
    work.mostApart = mostApart;
    return work;
}

VipsPicture Pixellated(VipsImage* source) {
    const VipsPicture shrunk = Made(vips_shrink, source, 16.0, 16.0);
    return Made(vips_zoom, shrunk.get(), 16, 16);
}

VipsPicture Inverted(VipsImage* source) { return Made(vips_invert, source); }

// Taps down to a fiftieth of the middle one: a radius of some 10 pixels.
VipsPicture Blurred(VipsImage* source) { return Made(vips_gaussblur, source, 3.5, "min_ampl", 0.02); }

}  // namespace

std::vector<PeerWork> VipsWorks() {
    if (VIPS_INIT("peers") != 0) throw std::runtime_error("peers: libvips does not start");
    vips_concurrency_set(1);
    vips_cache_set_max(0);
    std::vector<PeerWork> works;
    works.push_back(FilterWork("pixellate 16", "Pixellate", {{"Size", 16}}, 1.0, Pixellated));
    works.push_back(FilterWork("invert", "Invert Color", {}, 0.01, Inverted));
    works.push_back(FilterWork("Gaussian r 10, 8 bits", "Blur", {{"Softness", 10}}, 8.0, Blurred));
    return works;
}

}  // namespace chalkpane::peers
