#include <algorithm>

#include "apps/chalkpane/presets/preset.h"
#include "apps/chalkpane/presets/preset_check.h"
#include "apps/chalkpane/presets/preset_choices.h"
#include "apps/chalkpane/presets/preset_values.h"
#include "chalkpane/parameters/text/text_sink.h"
#include "cli/error.h"
#include "cli/nearest_name.h"

namespace chalkpane::app {
namespace {

using cli::Error;
using cli::Quoted;

std::string InQuotes(std::string_view text) { return '"' + escapeText(text) + '"'; }

// The text in lines without margins; a first one without anything in it goes.
std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::size_t first = std::min(text.find_first_not_of(" \t", start), end);
        if (first != end) lines.push_back(text.substr(first, end - first));
        start = end + 1;
    }
    return lines;
}

class Writer {
public:
    explicit Writer(const std::filesystem::path& folder) : m_folder(folder) {}

    void Write(const PresetView& object) {
        if (object.kind == PresetKind::Filter) {
            WriteFilter(*object.filters.front());
            return;
        }
        Open(WordOf(object.kind), object.name);
        for (const DataSet* values : object.values) WriteValues(*values, nullptr);
        for (const Filter* filter : object.filters) WriteFilter(*filter);
        Close();
    }

    [[nodiscard]] const std::string& Text() const { return m_text; }

private:
    std::string Margin() const { return std::string(m_depth * 4, ' '); }

    void Open(std::string_view word, std::string_view name, std::string_view state = {}) {
        m_text += Margin() + std::string(word) + ' ' + InQuotes(name) + std::string(state) + " {\n";
        ++m_depth;
    }
    void Close() {
        --m_depth;
        m_text += Margin() + "}\n";
    }

    void WriteFilter(const Filter& filter) {
        Open(WordOf(PresetKind::Filter), filter.Name(), filter.m_active ? "" : " inactive");
        WriteValues(*filter.m_values, &filter);
        Close();
    }

    // filter: whose values they are; null: a brush's
    void WriteValues(const DataSet& values, const Filter* filter) {
        for (const ValuePointer& value : values) {
            // The name of the object itself stands at its head.
            if (filter == nullptr && value->getParameter()->name == "Brush Name") continue;
            WriteValue(*value);
            WriteChoice(*value, ChoicesOf(*value->getParameter(), filter));
            m_text += '\n';
        }
    }

    void WriteValue(const ParameterValue& value) {
        const std::string& name = value.getParameter()->name;
        const ValuePointer relative = WithNamesFrom(value, m_folder);
        const auto text = ExactText(relative ? *relative : value);
        if (!text) throw Error(Quoted(name) + " holds what is not a number, which a preset cannot say");
        m_text += Margin() + InQuotes(name);
        const auto lines = Lines(*text);
        if (!value.isAnimated() && lines.size() == 1) {
            m_text += ' ' + lines.front();
            return;
        }
        m_text += value.isAnimated() ? " keys {\n" : " {\n";
        for (const std::string& line : lines) m_text += Margin() + "    " + line + '\n';
        m_text += Margin() + '}';
    }

    void WriteChoice(const ParameterValue& value, const std::vector<std::string>& choices) {
        std::uint8_t index = 0;
        value.getEnumeration(index);
        if (index < choices.size()) m_text += "  # " + choices[index];
    }

    const std::filesystem::path& m_folder;
    std::string m_text = "# A Chalkpane preset\n";
    std::size_t m_depth = 0;
};

}  // namespace

std::string TextOfPreset(const PresetView& object, const std::filesystem::path& folder) {
    Writer writer(folder);
    writer.Write(object);
    if (const auto flaw = FindFlaw(writer.Text())) throw Error("a preset cannot say this: " + flaw->reason);
    return writer.Text();
}

std::string TextForFile(const PresetView& object, const std::filesystem::path& file) {
    return TextOfPreset(object, std::filesystem::absolute(file).lexically_normal().parent_path());
}

}  // namespace chalkpane::app
