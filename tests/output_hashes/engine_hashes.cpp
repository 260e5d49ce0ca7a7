// Filters, rows of blend modes, pasters, and what images do by themselves.

#include <algorithm>
#include <cmath>
#include <memory>

#include "apps/chalkpane/filtering/filter_run.h"
#include "chalkpane/base/random.h"
#include "chalkpane/composite/blending_modes.h"
#include "chalkpane/composite/brush_paster.h"
#include "chalkpane/composite/eraser.h"
#include "chalkpane/composite/paster.h"
#include "chalkpane/filters/filter_registry.h"
#include "chalkpane/image/halve_image.h"
#include "chalkpane/image/mr_image.h"
#include "chalkpane/image/sampling.h"
#include "chalkpane/image/soft_mask.h"
#include "chalkpane/image/unpremultiply_row.h"
#include "chalkpane/transform/transformer.h"
#include "tests/output_hashes/hash_report.h"
#include "tests/output_hashes/random_value.h"

namespace chalkpane::hashes {
namespace {

constexpr std::uint32_t engineSeed = 11;

// 0: a fresh object; 1: the defaults of its declarations; above: random values.
constexpr int filterSettings = 6;

std::unique_ptr<Filter> FilterWith(const Filter& prototype, int setting) {
    auto filter = prototype.CreateNew();
    const DataSet& values = *filter->MakeValues(false, nullptr, nullptr);
    Draws draws(static_cast<std::uint32_t>(100 + setting));
    for (const ValuePointer& value : values) {
        const ParameterDef& definition = *value->getParameter();
        if (setting > 1) RandomiseValue(*value, filter->EnumCount(definition), draws);
        if (setting > 0) filter->setParameter(value.get());
    }
    if (setting > 0) filter->valuesChanged();
    return filter;
}

Hash HashOfRun(Filter& filter, const Image& source, int setting) {
    const Rect inner(source.x0 + source.Width() / 4, source.y0 + source.Height() / 3, source.x1, source.y1 - 1);
    std::unique_ptr<Image> result;
    SeedRandom(engineSeed);
    filter.Attach(&source, 3, 0.12, nullptr);
    filter.Advance(&source, 3, 0, 0, 0, 0);
    filter.BeginStep();
    filter.Apply(source, result, setting == 3, setting == 5 ? &inner : nullptr, setting == 4);
    filter.EndStep();
    filter.Detach();
    return Hash().Add(result.get());
}

// As the program runs it, which minds the form of alpha and the depths that a filter knows.
void HashFilterRun(Report& report, const std::string& name, const Filter& prototype) {
    for (const Depth depth : bothDepths) {
        std::vector<std::unique_ptr<Filter>> filters;
        filters.push_back(FilterWith(prototype, 2));
        const Image source = Draws(7).Picture({0, 0, 99, 66}, PixelType::Colour, depth);
        const auto result = app::RunFilters(filters, source, {.expand = true, .frame = 2, .time = 0.08});
        report.Add(name + "/run/" + BitsOf(depth), Hash().Add(result.get()));
    }
}

template <typename F>
std::vector<typename F::Channel> NoiseRow(std::size_t channels, std::uint32_t seed) {
    std::vector<typename F::Channel> row(channels);
    Draws(seed).Fill(std::span(row));
    return row;
}

constexpr std::int32_t rowPixels = 5003;

template <typename F, typename Blend, typename Merge, typename Unpremultiply>
void HashRowsOf(Report& report, Blend blend, Merge merge, Unpremultiply unpremultiply) {
    const std::string bits = std::to_string(F::bits);
    const auto source = NoiseRow<F>(4 * rowPixels, 1);
    const auto target = NoiseRow<F>(4 * rowPixels, 2);
    const auto mask = NoiseRow<F>(rowPixels, 3);
    const auto add = [&](const std::string& name, auto run) {
        auto output = target;
        SeedRandom(engineSeed);
        run(std::span(output));
        report.Add("rows/" + name + "/" + bits, Hash().Add(std::span(output)));
    };
    for (std::int32_t mode = 0; mode < blendModeCount; ++mode)
        add("blend " + std::to_string(mode), [&](auto output) { blend(rowPixels, mode, source, target, output); });
    add("merge mask", [&](auto output) { merge(output, rowPixels, source, mask, 1); });
    add("unpremultiply", [&](auto output) { unpremultiply(rowPixels, source, output); });
}

// All that a paste takes, at one depth; the images overlap in part.
struct PasteImages {
    explicit PasteImages(Depth imageDepth)
        : depth(imageDepth),
          source(Draws(21).Picture({-4, -3, 70, 40}, PixelType::Colour, depth)),
          premultiplied(Draws(22).Picture({-4, -3, 70, 40}, PixelType::Colour, depth, AlphaForm::Premultiplied)),
          mask(Draws(23).Picture({0, -6, 66, 38}, PixelType::Mask, depth)),
          clip(Draws(24).Picture({20, 8, 50, 44}, PixelType::Mask, depth)),
          colourClip(Draws(25).Picture({3, 3, 50, 30}, PixelType::Colour, depth)),
          canvas(Draws(26).Picture({0, 0, 63, 35}, PixelType::Colour, depth, AlphaForm::Premultiplied)),
          maskCanvas(Draws(27).Picture({0, 0, 63, 35}, PixelType::Mask, depth)) {}

    // Reports what `paste` makes of a fresh target, over all clips and two opacities, in one line.
    template <typename Paste>
    void Add(Report& report, const std::string& name, const Image& target, Paste paste) const {
        Hash hash;
        SeedRandom(engineSeed);
        for (const double opacity : {1.0, 0.37})
            for (const Image* clipImage : {static_cast<const Image*>(nullptr), &clip, &colourClip})
                for (const Clip use : {Clip::Limiting, Clip::Inverted}) {
                    const auto painted = target.Clone();
                    paste(*painted, opacity, clipImage, use);
                    hash.Add(*painted);
                }
        report.Add("paste/" + name + "/" + BitsOf(depth), hash);
    }

    Depth depth;
    Image source, premultiplied, mask, clip, colourClip, canvas, maskCanvas;
    Rect area{-2, 1, 60, 100};
};

void HashBrushPastes(Report& report, const PasteImages& images) {
    BrushPaster& paster = SharedPaster();
    for (std::int32_t mode = 0; mode < blendModeCount; ++mode)
        for (const PasteBehaviour behaviour : {PasteBehaviour::Replace, PasteBehaviour::Over})
            for (const Image* coverage : {static_cast<const Image*>(nullptr), &images.mask})
                images.Add(report,
                           "brush " + std::to_string(mode) +
                               (behaviour == PasteBehaviour::Over ? " over" : " replace") +
                               (coverage != nullptr ? " masked" : " full"),
                           images.canvas, [&](Image& target, double opacity, const Image* clipImage, Clip use) {
                               paster.SetMode(static_cast<std::uint8_t>(mode));
                               paster.SetOpacity(opacity);
                               paster.Paste(images.source, coverage, target, behaviour, images.area, 0, clipImage, use);
                           });
    paster.SetMode(0);
    images.Add(report, "brush to mask", images.maskCanvas, [&](Image& target, double opacity, const Image*, Clip) {
        paster.SetOpacity(opacity);
        paster.PasteToMask(images.source, &images.mask, target, images.area);
    });
    images.Add(report, "brush value to mask", images.maskCanvas,
               [&](Image& target, double opacity, const Image*, Clip) {
                   paster.SetOpacity(opacity);
                   paster.PasteValueToMask(images.source, &images.mask, target, images.area, 201);
               });
    paster.SetOpacity(1.0);
}

void HashImagePastes(Report& report, const PasteImages& images) {
    Paster paster;
    for (const Image* source : {&images.source, &images.premultiplied}) {
        const std::string form = source->flag != 0 ? " premultiplied" : "";
        images.Add(report, "image" + form, images.canvas,
                   [&](Image& target, double opacity, const Image* clip, Clip use) {
                       paster.SetOpacity(opacity);
                       paster.Paste(*source, target, images.area, 0, clip, use);
                   });
        images.Add(report, "image replace" + form, images.canvas,
                   [&](Image& target, double opacity, const Image* clip, Clip use) {
                       paster.SetOpacity(opacity);
                       paster.Replace(*source, target, images.area, 0, clip, use);
                   });
    }
    images.Add(report, "image onto mask", images.maskCanvas, [&](Image& target, double opacity, const Image*, Clip) {
        paster.SetOpacity(opacity);
        paster.PasteOnto(images.source, target, images.area, 0);
        paster.SetFactor(0.6F);
        paster.PasteMaskOnto(images.mask, target, images.area);
        paster.RemoveFactor();
        paster.PasteValueOnto(77, images.mask, target, images.area);
    });
    Eraser& eraser = SharedEraser();
    for (const Image* coverage : {static_cast<const Image*>(nullptr), &images.mask})
        images.Add(report, coverage != nullptr ? "eraser masked" : "eraser full", images.canvas,
                   [&](Image& target, double opacity, const Image* clip, Clip use) {
                       eraser.SetOpacity(opacity);
                       eraser.Paste(images.source, coverage, target, images.area, 0, clip, use);
                   });
    eraser.SetOpacity(1.0);
}

void HashTransforms(Report& report, const std::string& form, const Image& source) {
    struct Move {
        double x, y, scaleX, scaleY, turn;
    };
    int number = 0;
    for (const Move& move : {Move{5, -3, 1, 1, 0}, Move{0.4, 0.7, 1, 1, 0}, Move{0, 0, 1.7, 0.6, 0},
                             Move{3.3, -8.2, 1, 1, 33}, Move{-4, 2, 2.3, 2.1, 190}, Move{1, 1, 0.2, 0.3, 77}}) {
        Transformer transformer;
        transformer.SetTransform(12, 9, move.x, move.y, move.scaleX, move.scaleY, move.turn);
        Rect area;
        Hash hash;
        hash.Add(transformer.Apply(source, area).get()).Add(area);
        Image target =
            Draws(33).Picture({-10, -10, 90, 60}, source.GetPixelType(), source.GetDepth(), source.GetAlphaForm());
        transformer.ApplyInto(source, target, {-5, -20, 77, 51});
        hash.Add(target);
        ImageMRImage levels(source);
        transformer.LimitTarget({0, 0, 30, 30});
        hash.Add(transformer.Apply(levels, area).get()).Add(area);
        report.Add("image/transform " + std::to_string(++number) + form, hash);
    }
}

void HashSamples(Report& report, const std::string& form, const Image& source) {
    for (const std::int32_t edge : {edgeTransparent, edgeReflect, edgeWrap, edgeClamp}) {
        Draws draws(5);
        Hash hash;
        for (int i = 0; i < 3000; ++i) {
            const double x = draws.Between(source.x0 - 30.0, source.x1 + 30.0);
            const double y = draws.Between(source.y0 - 30.0, source.y1 + 30.0);
            const auto pixel = [&hash](const auto& at) { hash.Add(at.blue).Add(at.green).Add(at.red).Add(at.alpha); };
            if (source.IsMask() && source.GetDepth() == Depth::Eight) hash.Add(SampleMaskBilinear8(source, x, y, edge));
            if (source.IsMask() && source.GetDepth() == Depth::Fourteen) hash.Add(SampleMask14(source, x, y, edge));
            if (!source.IsMask() && source.GetDepth() == Depth::Eight) pixel(SampleBilinear8(source, x, y, edge));
            if (!source.IsMask() && source.GetDepth() == Depth::Fourteen) pixel(SampleBilinear14(source, x, y, edge));
        }
        report.Add("image/sample edge " + std::to_string(edge) + form, hash);
    }
}

void HashImage(Report& report, const std::string& form, const Image& source) {
    for (const double blend : {0.0, 0.3, 1.0})
        report.Add("image/halve " + std::to_string(static_cast<int>(blend * 10)) + form,
                   Hash().Add(HalveImage(source, blend).get()));
    ImageMRImage levels(source);
    for (const int level : {5, 10, 17, 30})
        report.Add("image/level " + std::to_string(level) + form,
                   Hash().Add(levels.GetWholeLevelImage(level / 10.0, false, 0)));
    for (const auto kind : {SoftMask::rectangle, SoftMask::circle}) {
        const auto image = source.Clone();
        SoftMask mask;
        mask.rect = Rect(4, 3, 55, 31);
        mask.softness = 6.5;
        mask.kind = kind;
        mask.alphaOnly = kind == SoftMask::circle && source.flag == 0;
        mask.ApplySoftMask(*image, 1.25);
        report.Add("image/soft mask " + std::to_string(kind) + form, Hash().Add(*image));
    }
    report.Add("image/other depth" + form,
               Hash().Add(source.Convert({2, 2, 40, 30}, source.GetDepth() == Depth::Eight ? 1 : 0).get()));
    const auto image = source.Clone();
    image->FillChannel({5, 5, 20, 18}, 0.71);
    image->Unpremultiply({0, 0, 30, 30});
    Hash hash;
    hash.Add(*image);
    image->Premultiply({10, 10, 50, 34});
    report.Add("image/fill and multiply" + form, hash.Add(*image));
}

}  // namespace

void HashFilters(Report& report) {
    const Rect sizes[] = {{0, 0, 0, 0}, {-3, 5, 3, 9}, {2, -7, 65, 40}, {0, 0, 199, 130}};
    for (const Filter* prototype : FilterRegistry::Instance().Filters()) {
        const std::string name = "filter/" + std::string(prototype->Name());
        if (!report.Wants(name)) continue;
        for (const Depth depth : bothDepths)
            for (const Rect& bounds : sizes)
                for (const PixelType type : {PixelType::Colour, PixelType::Mask}) {
                    if (type == PixelType::Mask && bounds != sizes[2]) continue;
                    const Image source =
                        Draws(41).Picture(bounds, type, depth,
                                          type == PixelType::Colour ? AlphaForm::Premultiplied : AlphaForm::Straight);
                    const std::string form = "/" + BitsOf(depth) + "/" + std::to_string(bounds.Width()) + "x" +
                                             std::to_string(bounds.Height()) + (source.IsMask() ? " mask" : "") + "/";
                    for (int setting = 0; setting < filterSettings; ++setting)
                        report.Add(name + form + std::to_string(setting),
                                   HashOfRun(*FilterWith(*prototype, setting), source, setting));
                }
        HashFilterRun(report, name, *prototype);
    }
}

void HashRows(Report& report) {
    HashRowsOf<PixelFormat8>(report, BlendRow8, MergeMaskRow8, UnpremultiplyRow8);
    HashRowsOf<PixelFormat14>(report, BlendRow14, MergeMaskRow14, UnpremultiplyRow14);
}

void HashPastes(Report& report) {
    for (const Depth depth : bothDepths) {
        const PasteImages images(depth);
        HashBrushPastes(report, images);
        HashImagePastes(report, images);
    }
}

void HashImages(Report& report) {
    for (const Depth depth : bothDepths)
        for (const PixelType type : {PixelType::Colour, PixelType::Mask}) {
            const std::string form = "/" + BitsOf(depth) + (type == PixelType::Mask ? " mask" : "");
            const Image source = Draws(51).Picture({-2, -1, 60, 36}, type, depth, AlphaForm::Premultiplied);
            HashTransforms(report, form, source);
            HashSamples(report, form, source);
            HashImage(report, form, source);
        }
}

}  // namespace chalkpane::hashes
