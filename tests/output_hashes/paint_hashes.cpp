// Brushes, files of strokes, presets, and the texts of values.

#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/chalkpane/curves/frame_rate_clock.h"
#include "apps/chalkpane/presets/preset.h"
#include "apps/chalkpane/presets/preset_values.h"
#include "apps/chalkpane/presets/preset_video.h"
#include "apps/chalkpane/strokes/brush_choices.h"
#include "apps/chalkpane/strokes/picture_files.h"
#include "apps/chalkpane/strokes/stroke_painter.h"
#include "apps/chalkpane/strokes/strokes_file.h"
#include "apps/chalkpane/values/parameter_text.h"
#include "chalkpane/base/random.h"
#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/filters/filter_registry.h"
#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/text/text_scanner.h"
#include "tests/output_hashes/hash_report.h"
#include "tests/output_hashes/random_value.h"

namespace chalkpane::hashes {
namespace {

using nlohmann::json;
using std::filesystem::path;

const path sourceFolder = CHALKPANE_SOURCE_FOLDER;
const path examples = sourceFolder / "examples";

std::vector<path> FilesIn(const path& folder, const std::string& ending) {
    std::vector<path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ending) files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

enum class Ground { AsDescribed, Noise };

std::unique_ptr<Image> Painted(const app::StrokesFile& file, Depth depth, Ground ground) {
    auto canvas = app::MakeCanvas(file, {}, depth);
    if (ground == Ground::Noise) Draws(61).Fill(*canvas);
    app::PictureFiles pictures(canvas->GetDepth());
    app::PaintStrokes(file, *canvas, pictures, {});
    return canvas;
}

// Two strokes with the brush over a canvas of noise.
void HashBrush(Report& report, const std::string& name, const json& brush) {
    if (!report.Wants(name)) return;
    const json text = {
        {"canvas", {{"width", 150}, {"height", 110}}},
        {"brushes", {{"brush", brush}}},
        {"strokes",
         {{{"brush", "brush"}, {"points", {{20, 30, 0.3}, {60, 80, 0.9}, {61, 80}, {90, 20.5}, {160, 60, 0.5}}}},
          {{"brush", "brush"}, {"points", {{5, 100}, {5, 100}, {40, 96, 0.6}, {110, 101, 0.2}}}}}}};
    const auto file = app::ParseStrokes(text.dump(), examples / "strokes" / "brush.json");
    for (const Depth depth : bothDepths)
        report.Add(name + "/" + BitsOf(depth), Hash().Add(Painted(file, depth, Ground::Noise).get()));
}

json PlainBrush(int source, const std::string& profile) {
    json brush = {{"Source Type", source}, {"Profile Name", profile},    {"Size", 9},
                  {"Feather", 0.4},        {"Offset", {23.5, -11}},      {"color", {16383, 5000, 900}},
                  {"picture", "canvas"},   {"File", "../test-card.png"}, {"Columns", 3}};
    if (profile == "Image") {
        brush["Profile Name"] = "Soft";
        brush["Profile Type"] = "Image";
        brush["Profile Mask"] = "../test-card-front.png";
    }
    return brush;
}

constexpr int brushSettings = 5;

void AddRandomSettings(json& brush, int setting) {
    if (setting == 0) return;
    Draws draws(static_cast<std::uint32_t>(200 + setting));
    const auto choose = [&draws](std::uint32_t count) { return static_cast<int>(draws.Below(count)); };
    brush["Size"] = 1 + choose(20);
    brush["Opacity"] = draws.Between(0.2, 1.0);
    brush["Decay"] = draws.Between(0.0, 0.1);
    brush["Spacing"] = draws.Between(0.04, 0.6);
    brush["Spacing Type"] = choose(3);
    brush["Adjust Spacing"] = choose(2) != 0;
    brush["Match Path"] = choose(2) != 0;
    brush["Build Up"] = choose(2) != 0;
    brush["Blend Mode"] = choose(28);
    brush["Flatness"] = draws.Between(0.4, 4.0);
    brush["Rotation"] = draws.Between(-90.0, 400.0);
    brush["Roundness"] = draws.Between(0.0, 2.0);
    brush["Feather"] = draws.Between(0.0, 1.0);
    brush["Pickup"] = choose(3);
    brush["Selection Policy"] = choose(3);
    brush["Profile Graph"] = {{0, draws.Between(0, 0.4)}, {0.4, draws.Between(0, 1)}, {1, 1}};
}

json RandomFilter(const Filter& prototype) {
    const auto filter = prototype.CreateNew();
    const app::ParameterTexts texts("brush", filter->getParameters());
    json settings = {{"filter", filter->Label()}};
    Draws draws(230);
    for (const ValuePointer& value : *filter->MakeValues(false, nullptr, nullptr)) {
        const ParameterDef& definition = *value->getParameter();
        if (definition.type == ParameterType::layer) continue;
        RandomiseValue(*value, filter->EnumCount(definition), draws);
        settings[definition.label] = texts.TextOf(*value);
    }
    return settings;
}

// A brush whose mask plane is in use beside its paint plane.
class MaskPlaneBrush final : public BasicBrush {
public:
    MaskPlaneBrush(Image& canvas, Image& mask) : BasicBrush("Planes") {
        SetTarget(&canvas);
        SetSize(12);
        SetColour({16383, 900, 7000});
        maskTarget = &mask;
        maskPlaneOn = true;
        maskPlaneClips = true;
        maskValue = 190;
    }
};

void HashMaskPlane(Report& report) {
    for (const Depth depth : bothDepths) {
        Image canvas = Draws(71).Picture({0, 0, 99, 59}, PixelType::Colour, depth, AlphaForm::Premultiplied);
        Image mask = Image::Mask(Rect(0, 0, 99, 59), depth);
        MaskPlaneBrush brush(canvas, mask);
        Hash hash;
        hash.Add(brush.BeginStroke(10, 12.5, 0.7)).Add(brush.ContinueStroke(60, 40, 1.0));
        hash.Add(brush.EndStroke(90, 5.25, 0.4)).Add(canvas).Add(mask);
        report.Add("brush/mask plane/" + BitsOf(depth), hash);
    }
}

void HashValues(Report& report, std::int32_t type, bool animated) {
    app::FrameRateClock clock;
    const ParameterDef definition("Test", "Test", static_cast<ParameterType>(type), 0);
    const ValuePointer value = DataSet::createValue(&definition, animated, &clock);
    if (!value || definition.type == ParameterType::font) return;
    Draws draws(81);
    for (const std::int32_t frame : {40, 3, 90, 61}) {
        clock.StandAt(frame);
        RandomiseValue(*value, 4, draws);
        value->setString("a \"quoted\" } # text\n\twith two lines {");
        if (!animated) break;
    }
    for (std::int32_t i = 0; i < value->keyCount(); ++i)
        value->keyAt(i)->setHandles(draws.Between(-1, 1), draws.Between(-1, 1));
    std::string text;
    value->appendText(text);
    Hash hash;
    hash.Add(text).Add(app::ExactText(*value).value_or("not finite"));
    TextScanner scanner(text);
    const ValuePointer copy = DataSet::createValue(&definition, animated, &clock);
    hash.Add(copy->readText(scanner)).Add(app::ExactText(*copy).value_or("not finite"));
    for (std::int32_t frame = 0; frame < 100; ++frame) {
        clock.StandAt(frame);
        double x = 0.0, y = 0.0;
        Colour colour;
        value->getDouble(x);
        hash.Add(x);
        value->getDoubleXY(x, y);
        value->getColour(colour);
        hash.Add(x).Add(y).Add(colour.red).Add(colour.green).Add(colour.blue);
    }
    report.Add("text/type " + std::to_string(type) + (animated ? " with keys" : ""), hash);
}

void HashFilterTexts(Report& report) {
    app::FrameRateClock clock;
    for (const Filter* prototype : FilterRegistry::Instance().Filters())
        for (const bool animated : {false, true}) {
            std::vector<std::unique_ptr<Filter>> filters;
            filters.push_back(prototype->CreateNew());
            Filter& filter = *filters.front();
            Draws draws(91);
            filter.MakeValues(animated, &clock, nullptr);
            for (const std::int32_t frame : {0, 20, 45}) {
                clock.StandAt(frame);
                for (const ValuePointer& value : *filter.m_values)
                    RandomiseValue(*value, filter.EnumCount(*value->getParameter()), draws);
            }
            const std::string text = TextOfPreset(app::ViewOf(filters, "Look"), {});
            const app::Preset read = app::ReadPresetText(text, "look", {}, clock);
            report.Add("text/filter " + std::string(prototype->Name()) + (animated ? " with keys" : ""),
                       Hash().Add(text).Add(TextOfPreset(ViewOf(read), {})));
        }
}

void HashPreset(Report& report, const path& file) {
    const std::string name = "preset/" + file.stem().string();
    app::FrameRateClock clock;
    app::Preset preset = app::ReadPreset(file, clock);
    const std::string text = TextOfPreset(ViewOf(preset), {});
    report.Add(name + "/text", Hash().Add(text));
    report.Add(name + "/text again",
               Hash().Add(TextOfPreset(ViewOf(app::ReadPresetText(text, "preset", {}, clock)), {})));
    const bool isBrush = preset.kind == app::PresetKind::Brush;
    const path source = isBrush ? examples / "presets" / "chalk_strokes.json" : examples / "test-card.png";
    for (const Depth depth : bothDepths) {
        const auto film = app::MakeVideo(app::ReadPreset(file, clock), {source, file, depth}, clock);
        for (const std::int32_t frame : {0, 17, 42, 70}) {
            clock.StandAt(frame);
            report.Add(name + "/" + BitsOf(depth) + "/frame " + std::to_string(frame),
                       Hash().Add(film->Make(frame).get()));
        }
    }
}

}  // namespace

void HashBrushes(Report& report) {
    for (const std::string profile : {"Soft", "Texture", "Feathered", "OnePixel", "Image"})
        for (int source = 0; source < 9; ++source)
            for (int setting = 0; setting < brushSettings; ++setting) {
                if (source == 3 && profile != "Soft") continue;  // a cutout has no profile
                json brush = PlainBrush(source, profile);
                AddRandomSettings(brush, setting);
                HashBrush(
                    report,
                    "brush/source " + std::to_string(source) + "/" + profile + "/setting " + std::to_string(setting),
                    brush);
            }
    for (int mode = 0; mode < 28; ++mode) {
        json brush = PlainBrush(0, "Feathered");
        brush["Blend Mode"] = mode;
        HashBrush(report, "brush/mode " + std::to_string(mode), brush);
    }
    for (const Filter* filter : FilterRegistry::Instance().Filters()) {
        json brush = PlainBrush(2, "Feathered");
        brush["filters"] = {RandomFilter(*filter)};
        HashBrush(report, "brush/filter " + std::string(filter->Label()), brush);
    }
    json masked = PlainBrush(0, "Soft");
    masked["mask"] = "../test-card.png";
    HashBrush(report, "brush/mask picture", masked);
    HashMaskPlane(report);
}

void HashStrokesFiles(Report& report) {
    for (const path& file : FilesIn(examples / "strokes", ".json"))
        for (const Depth depth : bothDepths)
            report.Add("strokes/" + file.stem().string() + "/" + BitsOf(depth),
                       Hash().Add(Painted(app::ReadStrokes(file), depth, Ground::AsDescribed).get()));
}

void HashTexts(Report& report) {
    for (std::int32_t type = 0; type <= 28; ++type)
        for (const bool animated : {false, true}) HashValues(report, type, animated);
    HashFilterTexts(report);
}

void HashPresets(Report& report) {
    for (const path& file : FilesIn(examples / "presets", ".preset")) HashPreset(report, file);
}

}  // namespace chalkpane::hashes
