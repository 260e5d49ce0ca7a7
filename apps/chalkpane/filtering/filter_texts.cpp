#include "apps/chalkpane/filtering/filter_texts.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "apps/chalkpane/values/value_parsing.h"
#include "chalkpane/filters/filter_registry.h"
#include "cli/error.h"
#include "cli/nearest_name.h"

namespace chalkpane::app {
namespace {

using cli::Error;
using cli::Quoted;

// A text cut at its colons, with the backslashes before colons and backslashes taken away.
std::vector<std::string> Segments(std::string_view text) {
    std::vector<std::string> segments(1);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escapes = text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == ':' || text[i + 1] == '\\');
        if (escapes)
            segments.back() += text[++i];
        else if (text[i] == ':')
            segments.emplace_back();
        else
            segments.back() += text[i];
    }
    return segments;
}

// `given` are the parameters that the text has set before.
void SetParameter(Filter& filter, const ParameterTexts& texts, const std::string& assignment,
                  std::vector<const ParameterDef*>& given) {
    const std::size_t equals = assignment.find('=');
    const std::string name = assignment.substr(0, equals);
    const ParameterDef& definition = texts.Find(name);
    if (std::ranges::find(given, &definition) != given.end())
        throw Error(std::string(filter.Label()), definition.label, "is given twice");
    given.push_back(&definition);
    if (equals == std::string::npos) {
        throw Error(std::string(filter.Label()), definition.label,
                    "has no value; write " + Quoted(definition.label + "=VALUE"));
    }
    texts.Set(*filter.m_values, name, std::string_view(assignment).substr(equals + 1));
}

}  // namespace

const Filter& FindFilter(std::string_view name) {
    const std::string_view wanted = Trimmed(name);
    const Filter* byName = nullptr;
    std::vector<std::string> labels;
    for (const Filter* filter : FilterRegistry::Instance().Filters()) {
        if (SameName(filter->Label(), wanted)) return *filter;
        if (byName == nullptr && SameName(filter->Name(), wanted)) byName = filter;
        labels.emplace_back(filter->Label());
    }
    if (byName != nullptr) return *byName;
    throw Error("there is no filter " + Quoted(wanted) + cli::NearestHint(wanted, labels, "chalkpane filters"));
}

Choices FilterChoices(const Filter& filter) {
    const Filter* const prototype = &FindFilter(filter.Label());  // lives on when `filter` does not
    return [prototype](const ParameterDef& definition) {
        std::vector<std::string> words;
        words.reserve(static_cast<std::size_t>(prototype->EnumCount(definition)));
        for (std::int32_t i = 0; i < prototype->EnumCount(definition); ++i)
            words.emplace_back(prototype->EnumLabel(definition, i));
        return words;
    };
}

ParameterTexts TextsOf(const Filter& filter) {
    return {std::string(filter.Label()), filter.getParameters(), FilterChoices(filter)};
}

std::unique_ptr<Filter> MakeFilter(const Filter& prototype) {
    auto filter = prototype.CreateNew();
    filter->MakeValues(false, nullptr, nullptr);
    // Video grain draws a seed for each set of values; here the same command gives the same picture.
    for (const auto& value : *filter->m_values) value->reset();
    return filter;
}

std::unique_ptr<Filter> FilterFromText(std::string_view text) {
    const auto segments = Segments(text);
    auto filter = MakeFilter(FindFilter(segments.front()));
    const ParameterTexts texts = TextsOf(*filter);
    std::string assignment;
    std::vector<const ParameterDef*> given;
    for (std::size_t i = 1; i < segments.size(); ++i) {
        assignment += (assignment.empty() ? "" : " ") + segments[i];
        const bool isWhole = assignment.find('=') != std::string::npos;
        if (!isWhole && i + 1 < segments.size()) continue;
        SetParameter(*filter, texts, std::exchange(assignment, {}), given);
    }
    TakeValues(*filter);
    return filter;
}

void TakeValues(Filter& filter) {
    for (const auto& value : *filter.m_values) filter.setParameter(value.get());
    filter.valuesChanged();
}

}  // namespace chalkpane::app
