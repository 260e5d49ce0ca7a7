#include <algorithm>
#include <array>

#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/strokes/brush_parser.h"
#include "apps/chalkpane/strokes/setting_parser.h"
#include "apps/chalkpane/strokes/strokes_file.h"
#include "apps/chalkpane/strokes/strokes_shapes.h"
#include "apps/chalkpane/values/parameter_json.h"
#include "apps/chalkpane/values/value_parsing.h"
#include "cli/error.h"
#include "cli/json_node.h"
#include "picture_io/picture.h"

namespace chalkpane::app {
namespace {

using cli::Error;
using cli::JsonKey;
using cli::JsonNode;
using cli::Quoted;

constexpr double farthestPixel = 1'000'000;
constexpr std::size_t mostPoints = 1'000'000;  // in a file
constexpr std::size_t mostStrokes = 200'000;
constexpr std::int64_t largestSeed = UINT32_MAX;

struct Draft {
    const std::filesystem::path& file;
    StrokesFile strokes;
    BrushParser brushes;
    std::size_t points = 0;
};

struct CanvasDraft {
    const std::filesystem::path& file;
    CanvasDescription canvas;
};

struct StrokeDraft {
    Draft& file;
    Stroke stroke;
};

std::uint32_t Seed(const JsonNode& node) { return static_cast<std::uint32_t>(node.Integer(0, largestSeed)); }

std::int32_t Side(const JsonNode& node) {
    return static_cast<std::int32_t>(node.Integer(1, picture_io::largestPictureSide));
}

void ReadCanvasColour(const JsonNode& node, CanvasDraft& draft) {
    try {
        const ColourText text = ParseColour(TextOfJson(node.Value()));
        draft.canvas.colour = text.colour;
        draft.canvas.alpha = text.alpha.value_or(1.0);
    } catch (const Error& error) {
        node.Refuse(error.what());
    }
}

constexpr auto canvasKeys = std::to_array<JsonKey<CanvasDraft>>({
    {"picture", false,
     [](const auto& node, auto& draft) {
         draft.canvas.picture = Beside(draft.file, node.Text());
         draft.canvas.place = PlaceIn(draft.file, node);
     }},
    {"width", false, [](const auto& node, auto& draft) { draft.canvas.width = Side(node); }},
    {"height", false, [](const auto& node, auto& draft) { draft.canvas.height = Side(node); }},
    {"color", false, ReadCanvasColour},
});

void ReadCanvas(const JsonNode& node, Draft& draft) {
    CanvasDraft canvas{draft.file, {}};
    canvas.canvas.place = PlaceIn(draft.file, node);
    cli::ReadKeys<CanvasDraft>(node, canvasKeys, canvas);
    const bool isPicture = node.Has("picture");
    for (const char* key : {"width", "height"}) {
        if (isPicture && node.Has(key)) node.Member(key).Refuse("does not go with a picture, which has its own size");
        if (!isPicture && !node.Has(key)) node.Refuse(Quoted(key) + " is missing");
    }
    if (isPicture && node.Has("color")) node.Member("color").Refuse("does not go with a picture");
    draft.strokes.canvas = std::move(canvas.canvas);
}

StrokePoint ReadPoint(const JsonNode& node) {
    if (!node.Value().is_array() || node.Value().size() < 2 || node.Value().size() > 3)
        node.Refuse("must be a point, [x, y] or [x, y, pressure]");
    StrokePoint point{0.0, 0.0, 1.0};
    point.x = node.Element(0).Number(-farthestPixel, farthestPixel);
    point.y = node.Element(1).Number(-farthestPixel, farthestPixel);
    if (node.Value().size() == 3) point.pressure = node.Element(2).Number(0, 1);
    return point;
}

// One by one: there may be a million of them.
void ReadPoints(const JsonNode& node, StrokeDraft& draft) {
    if (!node.Value().is_array() || node.Value().empty()) node.Refuse("must be a list of at least one point");
    const std::size_t count = node.Value().size();
    draft.file.points += count;
    if (draft.file.points > mostPoints)
        node.Refuse("the file has more than " + std::to_string(mostPoints) + " points up to here");
    draft.stroke.points.reserve(count);
    for (std::size_t i = 0; i < count; ++i) draft.stroke.points.push_back(ReadPoint(node.Element(i)));
}

constexpr auto strokeKeys = std::to_array<JsonKey<StrokeDraft>>({
    {"brush", false, [](const auto& node, auto& draft) { draft.stroke.brush = draft.file.brushes.IndexOf(node); }},
    {"points", true, ReadPoints},
    {"seed", false, [](const auto& node, auto& draft) { draft.stroke.seed = Seed(node); }},
});

void ReadStroke(const JsonNode& node, Draft& draft) {
    StrokeDraft stroke{draft, {}};
    cli::ReadKeys<StrokeDraft>(node, strokeKeys, stroke);
    if (!node.Has("brush")) stroke.stroke.brush = draft.brushes.IndexOfPlain();
    stroke.stroke.place = PlaceIn(draft.file, node);
    draft.strokes.strokes.push_back(std::move(stroke.stroke));
}

void ReadStrokeList(const JsonNode& node, Draft& draft) {
    if (!node.Value().is_array()) node.Refuse("must be a list");
    if (node.Value().size() > mostStrokes)
        node.Refuse("must have at most " + std::to_string(mostStrokes) + " elements");
    for (std::size_t i = 0; i < node.Value().size(); ++i) ReadStroke(node.Element(i), draft);
}

void ReadDepth(const JsonNode& node, Draft& draft) {
    const std::int64_t bits = node.Integer(8, 14);
    if (bits != 8 && bits != 14) node.Refuse("must be 8 or 14");
    draft.strokes.depth = DepthOfBits(bits);
}

// In this order: strokes name brushes.
constexpr auto fileKeys = std::to_array<JsonKey<Draft>>({
    {"$schema", false, [](const auto& node, auto&) { (void)node.Text(); }},
    {"canvas", true, ReadCanvas},
    {"depth", false, ReadDepth},
    {"seed", false, [](const auto& node, auto& draft) { draft.strokes.seed = Seed(node); }},
    {"brushes", false, [](const auto& node, auto& draft) { draft.brushes.ReadNamed(node); }},
    {"strokes", true, ReadStrokeList},
});

template <typename Keys>
StrokesShape Shape(std::string_view name, const Keys& keys) {
    StrokesShape shape{std::string(name), {}, {}};
    for (const auto& key : keys) {
        shape.keys.emplace_back(key.name);
        if (key.required) shape.required.emplace_back(key.name);
    }
    return shape;
}

}  // namespace

StrokesFile ParseStrokes(const std::string& text, const std::filesystem::path& file) {
    const nlohmann::json json = cli::ParseJson(text, file);
    Draft draft{file, {}, BrushParser(file)};
    cli::ReadKeys<Draft>(JsonNode(json, file), fileKeys, draft);
    draft.strokes.brushes = draft.brushes.TakeBrushes();
    return std::move(draft.strokes);
}

StrokesFile ReadStrokes(const std::filesystem::path& file) { return ParseStrokes(cli::ReadJsonText(file), file); }

std::vector<StrokesShape> StrokesShapes() {
    return {Shape("file", fileKeys), Shape("canvas", canvasKeys), Shape("stroke", strokeKeys)};
}

}  // namespace chalkpane::app
