#include <pixman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <random>
#include <string_view>

#include "bench/peers/dab.h"
#include "bench/peers/peer_work.h"
#include "chalkpane/composite/blending_modes.h"

namespace chalkpane::peers {
namespace {

struct Unref {
    void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
};
using PixmanImage = std::unique_ptr<pixman_image_t, Unref>;

std::vector<std::uint8_t> Noise(std::size_t bytes, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> noise(bytes);
    for (auto& byte : noise) byte = static_cast<std::uint8_t>(random());
    return noise;
}

// Blue, green, red, alpha in memory, as both have it. The bytes stay the caller's.
PixmanImage ImageOf(pixman_format_code_t format, int width, int height, std::uint8_t* bytes, int rowBytes) {
    return PixmanImage(
        pixman_image_create_bits(format, width, height, reinterpret_cast<std::uint32_t*>(bytes), rowBytes));
}

double MeanDifference(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += std::abs(a[i] - b[i]);
    return sum / static_cast<double>(a.size());
}

// A row of opaque colours blended onto another one. What pixman blends in place starts anew at each call on both sides.
struct BlendRows {
    static constexpr int pixels = 1024;
    std::vector<std::uint8_t> source = Opaque(1);
    std::vector<std::uint8_t> destination = Opaque(2);
    std::vector<std::uint8_t> theirs = destination;
    std::vector<std::uint8_t> ours = destination;
    PixmanImage sourceImage = ImageOf(PIXMAN_a8r8g8b8, pixels, 1, source.data(), 4 * pixels);
    PixmanImage targetImage = ImageOf(PIXMAN_a8r8g8b8, pixels, 1, theirs.data(), 4 * pixels);

    static std::vector<std::uint8_t> Opaque(unsigned seed) {
        auto row = Noise(4 * pixels, seed);
        for (std::size_t i = 3; i < row.size(); i += 4) row[i] = 255;
        return row;
    }
};

PeerWork BlendWork(std::string_view name, pixman_op_t operation, double mostApart) {
    const auto found = std::find(BlendModeNames.begin(), BlendModeNames.end(), name);
    const auto mode = static_cast<std::int32_t>(found - BlendModeNames.begin());
    const auto rows = std::make_shared<BlendRows>();
    PeerWork work;
    work.name = std::string(name) + " row";
    work.peer = "pixman";
    work.unit = "px";
    work.units = BlendRows::pixels;
    work.theirs = [rows, operation] {
        std::copy(rows->destination.begin(), rows->destination.end(), rows->theirs.begin());
        pixman_image_composite32(operation, rows->sourceImage.get(), nullptr, rows->targetImage.get(), 0, 0, 0, 0, 0, 0,
                                 BlendRows::pixels, 1);
    };
    work.ours = [rows, mode] {
        std::copy(rows->destination.begin(), rows->destination.end(), rows->ours.begin());
        BlendRow8(BlendRows::pixels, mode, rows->source, rows->ours, rows->ours);
    };
    work.apart = [rows] { return MeanDifference(rows->theirs, rows->ours); };
    work.mostApart = mostApart;
    return work;
}

// The same dab as pixman has it.
struct DabPair : Dab {
    std::vector<std::uint8_t> theirCanvas = std::vector<std::uint8_t>(4 * canvasSize * canvasSize);
    PixmanImage colourImage = ImageOf(PIXMAN_a8r8g8b8, size, size, FirstByte(colour), colour.rowBytes);
    PixmanImage maskImage = ImageOf(PIXMAN_a8, size, size, FirstByte(mask), mask.rowBytes);
    PixmanImage canvasImage = ImageOf(PIXMAN_a8r8g8b8, canvasSize, canvasSize, theirCanvas.data(), 4 * canvasSize);

    explicit DabPair(int pixels) : Dab(pixels) {}

    // Of the upper left pixel, where memory begins.
    static std::uint8_t* FirstByte(const Image& image) {
        return reinterpret_cast<std::uint8_t*>(image.Address(image.x0, image.y1));
    }
    void Composite() {
        pixman_image_composite32(PIXMAN_OP_OVER, colourImage.get(), maskImage.get(), canvasImage.get(), 0, 0, 0, 0,
                                 colour.x0, canvasSize - 1 - colour.y1, size, size);
    }
};

PeerWork DabWork(int pixels) {
    const auto dab = std::make_shared<DabPair>(pixels);
    PeerWork work;
    work.name = "8-bit dab " + std::to_string(pixels) + " px";
    work.peer = "pixman";
    work.unit = "dab";
    work.units = 1;
    work.theirs = [dab] { dab->Composite(); };
    work.ours = [dab] { dab->Paste(); };
    work.apart = [dab] {
        const std::uint8_t* const ours = DabPair::FirstByte(dab->canvas);
        return MeanDifference(dab->theirCanvas, std::vector<std::uint8_t>(ours, ours + dab->theirCanvas.size()));
    };
    work.mostApart = 0.01;
    return work;
}

// The nearest that pixman has to 14 bits: four floats a pixel, and a mask of 8 bits.
struct FloatDab {
    Dab ours{41, Depth::Fourteen};
    DabPair bytes{41};
    std::vector<float> colour = std::vector<float>(4 * 41 * 41, 0.5F);
    std::vector<float> canvas = std::vector<float>(4 * Dab::canvasSize * Dab::canvasSize, 0.25F);
    PixmanImage colourImage = Floats(41, colour);
    PixmanImage canvasImage = Floats(Dab::canvasSize, canvas);

    static PixmanImage Floats(int size, std::vector<float>& floats) {
        return PixmanImage(pixman_image_create_bits(PIXMAN_rgba_float, size, size,
                                                    reinterpret_cast<std::uint32_t*>(floats.data()), 16 * size));
    }
};

PeerWork FloatDabWork() {
    const auto dab = std::make_shared<FloatDab>();
    PeerWork work;
    work.name = "14-bit dab 41 px";
    work.peer = "pixman";
    work.unit = "dab";
    work.units = 1;
    work.theirs = [dab] {
        pixman_image_composite32(PIXMAN_OP_OVER, dab->colourImage.get(), dab->bytes.maskImage.get(),
                                 dab->canvasImage.get(), 0, 0, 0, 0, 500, 500, 41, 41);
    };
    work.ours = [dab] { dab->ours.Paste(); };
    work.apart = [] { return 0.0; };
    work.mostApart = 255.0;
    return work;
}

}  // namespace

std::vector<PeerWork> PixmanWorks() {
    constexpr double sameFormula = 1.0;
    constexpr double otherFormula = 255.0;
    std::vector<PeerWork> works;
    for (const int pixels : {11, 21, 41, 121}) works.push_back(DabWork(pixels));
    works.push_back(FloatDabWork());
    works.push_back(BlendWork("Add", PIXMAN_OP_ADD, sameFormula));
    works.push_back(BlendWork("Multiply", PIXMAN_OP_MULTIPLY, sameFormula));
    works.push_back(BlendWork("Screen", PIXMAN_OP_SCREEN, sameFormula));
    works.push_back(BlendWork("Darken Only", PIXMAN_OP_DARKEN, sameFormula));
    works.push_back(BlendWork("Lighten Only", PIXMAN_OP_LIGHTEN, sameFormula));
    works.push_back(BlendWork("Difference", PIXMAN_OP_DIFFERENCE, sameFormula));
    works.push_back(BlendWork("Exclusion", PIXMAN_OP_EXCLUSION, sameFormula));
    works.push_back(BlendWork("Overlay", PIXMAN_OP_OVERLAY, sameFormula));
    works.push_back(BlendWork("Hard Light", PIXMAN_OP_HARD_LIGHT, sameFormula));
    works.push_back(BlendWork("Soft Light", PIXMAN_OP_SOFT_LIGHT, otherFormula));
    works.push_back(BlendWork("Color Burn", PIXMAN_OP_COLOR_BURN, sameFormula));
    works.push_back(BlendWork("Color Dodge", PIXMAN_OP_COLOR_DODGE, sameFormula));
    // Their value is a weighted sum of the channels where ours is the largest one.
    works.push_back(BlendWork("Hue", PIXMAN_OP_HSL_HUE, otherFormula));
    works.push_back(BlendWork("Saturation", PIXMAN_OP_HSL_SATURATION, otherFormula));
    works.push_back(BlendWork("Value", PIXMAN_OP_HSL_LUMINOSITY, otherFormula));
    works.push_back(BlendWork("Color", PIXMAN_OP_HSL_COLOR, otherFormula));
    return works;
}

}  // namespace chalkpane::peers
