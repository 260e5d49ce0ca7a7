#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/image/halve_image.h"
#include "chalkpane/image/image.h"
#include "chalkpane/image/sampling.h"
#include "chalkpane/image/soft_mask.h"
#include "tests/reference/picture.h"

using namespace chalkpane;

namespace {

constexpr std::int32_t side = 1024;
constexpr std::int64_t pixels = std::int64_t{side} * side;

Image Noise(Depth depth) {
    Image image = Image::Colour(side, side, depth, AlphaForm::Premultiplied);
    reference::FillWithNoise(image, 1);
    return image;
}

// Argument: depth.
void Halve(benchmark::State& state) {
    const Image image = Noise(DepthOf(static_cast<std::int32_t>(state.range(0))));
    for (auto _ : state) benchmark::DoNotOptimize(HalveImage(image, 0));
    state.SetItemsProcessed(state.iterations() * pixels);
    if (!reference::Same(reference::Picture(*HalveImage(image, 0)), reference::Halved(reference::Picture(image))))
        state.SkipWithError("differs from the plain reference");
}
BENCHMARK(Halve)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void HalveHalfWay(benchmark::State& state) {
    const Image image = Noise(DepthOf(static_cast<std::int32_t>(state.range(0))));
    for (auto _ : state) benchmark::DoNotOptimize(HalveImage(image, 0.5));
    state.SetItemsProcessed(state.iterations() * pixels);
    if (!reference::Same(reference::Picture(*HalveImage(image, 0.5)),
                         reference::Blended(reference::Picture(image), 0.5)))
        state.SkipWithError("differs from the plain reference");
}
BENCHMARK(HalveHalfWay)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// A row of samples a third of a pixel apart, within the image.
void SampleRow(benchmark::State& state) {
    const Image image = Noise(DepthOf(static_cast<std::int32_t>(state.range(0))));
    constexpr int samples = 3000;
    const auto sampleAt = [&](int i) -> int {
        const double x = i / 3.0;
        return image.GetDepth() == Depth::Eight ? SampleBilinear8(image, x, 100.4, edgeClamp).red
                                                : SampleBilinear14(image, x, 100.4, edgeClamp).red;
    };
    for (auto _ : state)
        for (int i = 0; i < samples; ++i) benchmark::DoNotOptimize(sampleAt(i));
    state.SetItemsProcessed(state.iterations() * samples);
    const reference::Picture reference(image);
    for (int i = 0; i < samples; ++i)
        if (sampleAt(i) != reference.Sample(i / 3.0, 100.4, 2, edgeClamp))
            state.SkipWithError("differs from the plain reference");
}
BENCHMARK(SampleRow)->Arg(0)->Arg(1);

// Arguments: depth, workers.
void CopyAll(benchmark::State& state) {
    const Image source = Noise(DepthOf(static_cast<std::int32_t>(state.range(0))));
    Image target(side, side, source.GetPixelType(), source.GetDepth(), AlphaForm::Premultiplied);
    MultiProcessor::Restart(static_cast<std::int32_t>(state.range(1)));
    for (auto _ : state) target.CopyRegion(source, source);
    MultiProcessor::Restart(0);
    state.SetItemsProcessed(state.iterations() * pixels);
    if (!reference::Same(reference::Picture(target), reference::Picture(source)))
        state.SkipWithError("differs from the source");
}
BENCHMARK(CopyAll)->ArgsProduct({{0, 1}, {1, 2}})->UseRealTime();

// Argument: depth. There and back: the picture is opaque, so that each round works on the same pixels.
void PremultiplyAndBack(benchmark::State& state) {
    Image image = Noise(DepthOf(static_cast<std::int32_t>(state.range(0))));
    image.FillChannel(1.0);
    const reference::Picture before(image);
    for (auto _ : state) {
        image.Premultiply(image);
        image.Unpremultiply(image);
    }
    state.SetItemsProcessed(state.iterations() * pixels);
    if (!reference::Same(reference::Picture(image), before)) state.SkipWithError("opaque pixels changed");
}
BENCHMARK(PremultiplyAndBack)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// Arguments: kind, depth.
void FadeEdges(benchmark::State& state) {
    SoftMask softMask;
    softMask.kind = static_cast<std::uint8_t>(state.range(0));
    softMask.rect = Rect(0, 0, side - 1, side - 1);
    softMask.softness = 100;
    const Image source = Noise(DepthOf(static_cast<std::int32_t>(state.range(1))));
    const auto image = source.Clone();
    for (auto _ : state) {
        image->CopyRegion(source, source);
        softMask.ApplySoftMask(*image, 1.0);
    }
    state.SetItemsProcessed(state.iterations() * pixels);
    if (image->GetDepth() == Depth::Eight && image->GetPixel8(512, 512) != source.GetPixel8(512, 512))
        state.SkipWithError("the middle changed");
}
BENCHMARK(FadeEdges)->ArgsProduct({{SoftMask::rectangle, SoftMask::circle}, {0, 1}})->Unit(benchmark::kMillisecond);

}  // namespace
