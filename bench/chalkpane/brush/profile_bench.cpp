#include <benchmark/benchmark.h>

#include <cstdint>

#include "chalkpane/brush/profiles/graph_brush_profile.h"
#include "chalkpane/brush/profiles/texture_brush_profile.h"
#include "chalkpane/brush/sources/colour_brush_source.h"
#include "chalkpane/composite/brush_paster.h"
#include "chalkpane/parameters/data_set.h"
#include "tests/reference/brush_profiles.h"

namespace {

using namespace chalkpane;

constexpr double rotated = 30.0;  // degrees, which leaves a shape its point symmetry alone

bool EqualsReference(const Image& mask, const reference::MaskGrid& reference) {
    for (std::int32_t y = 0; y < reference.side; ++y) {
        for (std::int32_t x = 0; x < reference.side; ++x) {
            const auto wanted = static_cast<std::uint8_t>(reference.At(x, y));
            if (mask.GetDepth() == Depth::Eight && mask.GetMaskEdge8(x, y, edgeTransparent) != wanted) return false;
            if (mask.GetDepth() == Depth::Fourteen && mask.GetMaskEdge14(x, y, edgeTransparent) != Widen(wanted))
                return false;
        }
    }
    return true;
}

enum class Kept { No, Yes };

// Arguments: radius, depth, whether rotated.
template <Kept kept>
void GraphProfile(benchmark::State& state) {
    const auto radius = static_cast<std::int32_t>(state.range(0));
    const double rotation = state.range(2) != 0 ? rotated : 0.0;
    const DabShape shape{radius, 1.0, rotation, 1.0, 0};
    const Depth depth = DepthOf(static_cast<std::int32_t>(state.range(1)));
    const GraphBrushProfile first(shape, Matrix3(), depth, nullptr);
    for (auto _ : state) {
        if constexpr (kept == Kept::No) ProfileCache::Shared()->Clear();
        GraphBrushProfile profile(shape, Matrix3(), depth, nullptr);
        benchmark::DoNotOptimize(profile.BaseMask());
    }
    const ShapePointList straight;
    const auto reference = reference::ProfileMask(
        reference::Kind::Graph, {radius, 1.0, rotation, 1.0, 0}, [&](double t) { return straight.evaluate(t); }, 0.0);
    if (!EqualsReference(*first.BaseMask(), reference)) state.SkipWithError("differs from the plain reference");
}
BENCHMARK(GraphProfile<Kept::No>)
    ->ArgNames({"radius", "depth", "rotated"})
    ->ArgsProduct({{5, 30, 60}, {0, 1}, {0, 1}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(GraphProfile<Kept::Yes>)
    ->ArgNames({"radius", "depth", "rotated"})
    ->ArgsProduct({{5, 30}, {0, 1}, {0}})
    ->Unit(benchmark::kMicrosecond);

void TextureProfile(benchmark::State& state) {  // argument: radius
    const auto radius = static_cast<std::int32_t>(state.range(0));
    const DabShape shape{radius, 1.0, 0.0, 1.0, 0};
    const TextureBrushProfile first(shape, Matrix3(), Depth::Eight);
    for (auto _ : state) {
        ProfileCache::Shared()->Clear();
        TextureBrushProfile profile(shape, Matrix3(), Depth::Eight);
        benchmark::DoNotOptimize(profile.BaseMask());
    }
    const auto reference = reference::ProfileMask(reference::Kind::Texture, {radius, 1.0, 0.0, 1.0, 0}, {}, 0.0);
    if (!EqualsReference(*first.BaseMask(), reference)) state.SkipWithError("differs from the plain reference");
}
BENCHMARK(TextureProfile)->Arg(30)->Unit(benchmark::kMicrosecond);

// A source set up by hand: its parameters are for its own kind.
class DabMaker {
public:
    DabMaker(std::int32_t radius, Depth depth) {
        DataSet values;
        for (const auto& definition : BrushSource::ClassParameters())
            values.addParameter(definition.get(), false, nullptr);
        values.findValue(BrushSource::ClassParameters().find(SourceParameter::Size))->setInteger(radius);
        for (const auto& value : values) source.setParameter(value.get());
        source.SetTargetDepth(depth);
        source.SetColour({16383, 8192, 4096});
        source.Prepare(0, nullptr, Matrix3());
    }
    ColourBrushSource source{ColourUse::Paint};
};

enum class Dab { Made, Pasted };

// Arguments: radius, depth. One dab of a stroke along a slant, so that all of the shifted copies are in use.
template <Dab dab>
void ColourDab(benchmark::State& state) {
    const Depth depth = DepthOf(static_cast<std::int32_t>(state.range(1)));
    DabMaker maker(static_cast<std::int32_t>(state.range(0)), depth);
    Image canvas = Image::Colour(1024, 1024, depth, AlphaForm::Premultiplied);
    double x = 200.0;
    double y = 300.0;
    bool complete = true;
    for (auto _ : state) {
        std::unique_ptr<Image> colour;
        std::unique_ptr<Image> mask;
        complete = maker.source.MakeDab(x, y, 0.0, colour, mask) && complete;
        if constexpr (dab == Dab::Pasted)
            SharedPaster().Paste(*colour, mask.get(), canvas, PasteBehaviour::Over, *colour, 0, nullptr,
                                 Clip::Inverted);
        benchmark::DoNotOptimize(colour);
        x = x < 700.0 ? x + 0.83 : 200.0;
        y = y < 700.0 ? y + 0.71 : 300.0;
    }
    if (!complete) state.SkipWithError("a dab is missing");
}
BENCHMARK(ColourDab<Dab::Made>)->ArgNames({"radius", "depth"})->ArgsProduct({{5, 20}, {0, 1}});
BENCHMARK(ColourDab<Dab::Pasted>)->ArgNames({"radius", "depth"})->ArgsProduct({{5, 20, 30}, {0, 1}});

}  // namespace
