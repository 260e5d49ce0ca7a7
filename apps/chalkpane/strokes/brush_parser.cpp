#include "apps/chalkpane/strokes/brush_parser.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "apps/chalkpane/filtering/filter_texts.h"
#include "apps/chalkpane/strokes/brush_choices.h"
#include "apps/chalkpane/strokes/setting_parser.h"
#include "apps/chalkpane/values/parameter_json.h"
#include "apps/chalkpane/values/value_parsing.h"
#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/brush/sources/brush_source.h"
#include "cli/error.h"

namespace chalkpane::app {
namespace {

using cli::Error;
using cli::JsonKey;
using cli::JsonNode;
using cli::Quoted;

constexpr std::int64_t farthestPixel = 1'000'000;
constexpr int longestChain = 32;  // of brushes that are like one another
constexpr std::size_t longestFilterChain = 64;
constexpr std::size_t mostNamedBrushes = 1000;

// What a key is read into, with the file that the key stands in.
template <typename Part>
struct In {
    const std::filesystem::path& file;
    Part& part;
};

// Runs what throws a reason alone, and has it say the place.
template <typename Read>
decltype(auto) AtPlace(const JsonNode& node, Read read) {
    try {
        return read();
    } catch (const Error& error) {
        node.Refuse(error.what());
    }
}

template <std::size_t Count, typename Into>
std::vector<std::string> NamesOf(const std::array<JsonKey<Into>, Count>& keys) {
    std::vector<std::string> names;
    names.reserve(Count);
    for (const auto& key : keys) names.emplace_back(key.name);
    return names;
}

constexpr auto pictureKeys = std::to_array<JsonKey<In<SourcePicture>>>({
    {"file", true, [](const auto& node, auto& into) { into.part.file = Beside(into.file, node.Text()); }},
    {"at", false,
     [](const auto& node, auto& into) {
         const auto numbers = node.Elements(2);
         if (numbers.size() != 2) node.Refuse("must have 2 numbers");
         into.part.left = static_cast<std::int32_t>(numbers[0].Integer(-farthestPixel, farthestPixel));
         into.part.top = static_cast<std::int32_t>(numbers[1].Integer(-farthestPixel, farthestPixel));
     }},
});

SourcePicture ReadPicture(const JsonNode& node, const std::filesystem::path& file) {
    SourcePicture picture;
    picture.place = PlaceIn(file, node);
    In<SourcePicture> into{file, picture};
    if (node.Value().is_object())
        cli::ReadKeys<In<SourcePicture>>(node, pictureKeys, into);
    else if (node.Text() == "canvas")
        picture.isCanvas = true;
    else
        picture.file = Beside(file, node.Text());
    return picture;
}

constexpr std::array<std::string_view, 2> filterKeys{"filter", "active"};

// A filter as an object; its parameters stand beside "filter".
FilterDescription ReadFilterObject(const JsonNode& node, const std::filesystem::path& file) {
    node.RequireObject();
    if (!node.Has("filter")) node.Refuse(Quoted("filter") + " is missing");
    const JsonNode name = node.Member("filter");
    const Filter& filter = AtPlace(name, [&]() -> const Filter& { return FindFilter(name.Text()); });
    FilterDescription description{std::string(filter.Label()), {}, true};
    const SettingTable table{filter.getParameters(), FilterChoices(filter)};
    for (const auto& member : node.Value().items()) {
        if (member.key() == "filter") continue;
        const JsonNode value = node.Member(member.key());
        if (member.key() == "active")
            description.isActive = value.Truth();
        else
            ReadSetting(value, member.key(), {&table, 1}, FilterKeys(), file, description.settings);
    }
    return description;
}

std::vector<FilterDescription> ReadFilters(const JsonNode& node, const std::filesystem::path& file) {
    const auto elements = node.Elements(0);
    if (elements.size() > longestFilterChain)
        node.Refuse("must have at most " + std::to_string(longestFilterChain) + " elements");
    std::vector<FilterDescription> filters;
    filters.reserve(elements.size());
    for (const JsonNode& element : elements) filters.push_back(ReadFilterObject(element, file));
    return filters;
}

// "like" is read on its own.
constexpr auto brushKeys = std::to_array<JsonKey<In<BrushDescription>>>({
    {"like", false, [](const auto&, auto&) {}},
    {"color", false,
     [](const auto& node, auto& into) {
         into.part.colour = AtPlace(node, [&] {
             const ColourText text = ParseColour(TextOfJson(node.Value()));
             if (text.alpha) throw Error("has an alpha, which a brush does not; set its Opacity");
             return text.colour;
         });
     }},
    {"picture", false, [](const auto& node, auto& into) { into.part.picture = ReadPicture(node, into.file); }},
    {"mask", false,
     [](const auto& node, auto& into) {
         into.part.mask = MaskPicture{Beside(into.file, node.Text()), PlaceIn(into.file, node)};
     }},
    {"filters", false, [](const auto& node, auto& into) { into.part.filters = ReadFilters(node, into.file); }},
});

const std::array<SettingTable, 2>& BrushTables() {
    static const std::array<SettingTable, 2> tables{SettingTable{BasicBrush::ClassParameters(), BrushChoices},
                                                    SettingTable{BrushSource::ClassParameters(), BrushChoices}};
    return tables;
}

}  // namespace

std::vector<std::string> BrushKeys() { return NamesOf(brushKeys); }
std::vector<std::string> BrushPictureKeys() { return NamesOf(pictureKeys); }
std::vector<std::string> FilterKeys() { return {filterKeys.begin(), filterKeys.end()}; }

std::vector<std::string> BrushParameterNames() {
    std::vector<std::string> names;
    for (const SettingTable& table : BrushTables()) {
        for (const auto& definition : table.list) {
            names.push_back(definition->label);
            if (definition->name != definition->label) names.push_back(definition->name);
        }
    }
    return names;
}

void BrushParser::ReadNamed(const JsonNode& named) {
    named.RequireObject();
    if (named.Value().size() > mostNamedBrushes)
        named.Refuse("must have at most " + std::to_string(mostNamedBrushes) + " brushes");
    for (const auto& member : named.Value().items())
        m_named.emplace(member.key(), Named{.node = named.Member(member.key())});
    for (auto& [name, brush] : m_named) ReadOnce(brush, 0);
}

void BrushParser::ReadOnce(Named& brush, int depth) {
    if (brush.state == Named::State::Read) return;
    brush.state = Named::State::Reading;
    m_brushes.push_back(Read(brush.node, depth));
    brush.index = m_brushes.size() - 1;
    brush.state = Named::State::Read;
}

std::size_t BrushParser::IndexOfName(const JsonNode& node, int depth) {
    const std::string name = node.Text();
    const auto found = m_named.find(name);
    if (found == m_named.end()) {
        std::vector<std::string> names;
        for (const auto& [other, brush] : m_named) names.push_back(other);
        node.Refuse("there is no brush " + Quoted(name) + cli::NearestHint(name, names));
    }
    if (found->second.state == Named::State::Reading) node.Refuse("brushes are like one another in a circle");
    if (depth == longestChain) node.Refuse("is like more than " + std::to_string(longestChain) + " brushes in a row");
    ReadOnce(found->second, depth + 1);
    return found->second.index;
}

BrushDescription BrushParser::Read(const JsonNode& node, int depth) {
    node.RequireObject();
    BrushDescription brush;
    In<BrushDescription> into{m_file, brush};
    for (const auto& member : node.Value().items()) {
        const JsonNode value = node.Member(member.key());
        const auto* const key = std::ranges::find(brushKeys, member.key(), &JsonKey<In<BrushDescription>>::name);
        if (key != brushKeys.end())
            key->read(value, into);
        else
            ReadSetting(value, member.key(), BrushTables(), BrushKeys(), m_file, brush.settings);
    }
    if (node.Has("like")) {
        const std::size_t index = IndexOfName(node.Member("like"), depth);
        brush.InheritFrom(m_brushes[index]);
    }
    return brush;
}

std::size_t BrushParser::IndexOf(const JsonNode& node) {
    if (node.Value().is_string()) return IndexOfName(node, 0);
    m_brushes.push_back(Read(node, 0));
    return m_brushes.size() - 1;
}

std::size_t BrushParser::IndexOfPlain() {
    if (m_plain == SIZE_MAX) {
        m_plain = m_brushes.size();
        m_brushes.emplace_back();
    }
    return m_plain;
}

}  // namespace chalkpane::app
