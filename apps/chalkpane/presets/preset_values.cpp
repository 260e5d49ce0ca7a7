#include "apps/chalkpane/presets/preset_values.h"

#include <array>
#include <charconv>
#include <cmath>

#include "chalkpane/parameters/animation/animated_file_name.h"
#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/string_value.h"
#include "chalkpane/parameters/text/text_scanner.h"
#include "chalkpane/parameters/text/text_sink.h"

namespace chalkpane::app {
namespace {

enum class Digits : std::uint8_t { Six, All };

// Keeps the stream form of a value: of the two it is the one that always reads back.
class KeepingSink final : public TextSink {
public:
    explicit KeepingSink(Digits digits) : m_digits(digits) {}

    TextSink& operator<<(std::string_view piece) override {
        m_text += piece;
        return *this;
    }
    TextSink& operator<<(std::int32_t number) override { return *this << formatNumber(number); }
    TextSink& operator<<(double number) override {
        if (!std::isfinite(number)) m_isFinite = false;
        return *this << (m_digits == Digits::Six ? formatNumber(number) : Shortest(number));
    }

    [[nodiscard]] const std::string& Text() const { return m_text; }
    [[nodiscard]] bool AllFinite() const { return m_isFinite; }

private:
    // A stop or an exponent makes it a real: whole numbers are read in 32 bits.
    static std::string Shortest(double number) {
        std::array<char, 64> buffer{};
        std::string text(buffer.data(), std::to_chars(buffer.begin(), buffer.end(), number).ptr);
        return text.find_first_of(".en") == std::string::npos ? text + ".0" : text;
    }

    Digits m_digits;
    bool m_isFinite = true;
    std::string m_text;
};

std::string StreamText(const ParameterValue& value, Digits digits) {
    KeepingSink sink(digits);
    value.writeToStream(sink);
    return sink.Text();
}

// Of the same class and declaration; null where nobody can make one.
ValuePointer Fresh(const ParameterValue& value) {
    if (const auto* animated = dynamic_cast<const AnimatedValue*>(&value)) return animated->clone();
    return DataSet::createValue(value.getParameter(), false, nullptr);
}

bool ReadsBack(const ParameterValue& value, const std::string& text, Digits digits) {
    const ValuePointer copy = Fresh(value);
    if (!copy) return true;
    TextScanner scanner(text);
    return copy->readText(scanner) && scanner.isAtEnd() && StreamText(*copy, digits) == StreamText(value, digits);
}

struct Form {
    ParameterType type;
    const char* what;
    const char* value;
    const char* keyedValue;
};
using enum ParameterType;
constexpr Form forms[] = {
    {integer, "a whole number", "3", "3"},
    {plainInteger, "a whole number", "3", "3"},
    {real, "a number", "1.5", "1.5"},
    {float32, "a number", "1.5", "1.5"},
    {logarithmic, "a number", "1.5", "1.5"},
    {angle0To360, "a number", "1.5", "1.5"},
    {angle720, "a number", "1.5", "1.5"},
    {angle360, "a number", "1.5", "1.5"},
    {boolean, "true or false", "false", "true"},
    {colour, "a color", "true 16383 , 8192 , 0", "true 16383 8192 0"},
    {integerPair, "two whole numbers", "3 -4", "3 -4"},
    {doublePair, "two numbers", "1.5 -2.5", "1.5 -2.5"},
    {mappedPair, "two numbers", "1.5 -2.5", "1.5 -2.5"},
    {position, "two numbers", "1.5 -2.5", "1.5 -2.5 ,"},
    {scaledPosition, "two numbers", "1.5 -2.5", "1.5 -2.5 ,"},
    {position3d, "two numbers", "1.5 -2.5", "1.5 -2.5 smooth"},
    {enumeration, "the number of a choice", "2", "2"},
    {string, "a text in quotes", "\"text\"", "\"text\""},
    {layer, "a text in quotes", "\"text\"", "\"text\""},
    {path, "a path in quotes", "\"art\"", "\"art\""},
    {fileName, "the name of a file in quotes", "\"leaf.png\"", "\"leaf.png\""},
    {rectangle, "four whole numbers", "0 10 20 0", "0 10 20 0"},
    {graph, "points", "Point true 0 0; Point true 1 1;", ""},
    {colourSpline, "knots", "1 true 0.5 : 16383 , 8192 , 0", ""},
};

Form FormOf(ParameterType type) {
    for (const Form& form : forms)
        if (form.type == type) return form;
    return {type, "a value", "...", "..."};
}

std::string FolderName(const std::filesystem::path& folder) { return FileName(folder.string() + '/').string(); }

bool IsAbsolute(const std::string& name) { return name.starts_with('\\') || (name.size() > 1 && name[1] == ':'); }

FileName Absolute(const FileName& name, const std::filesystem::path& folder) {
    if (name.empty() || folder.empty() || IsAbsolute(name.string())) return name;
    const std::string dotted = name.string().starts_with('.') ? name.string() : ".\\" + name.string();
    return FileName(FileName(dotted).absolute(FolderName(folder)));
}

// Hands each name that the value holds to `change`; false where it is of another class.
template <typename Change>
bool ChangeNames(ParameterValue& value, const Change& change) {
    if (auto* plain = dynamic_cast<FileNameValue*>(&value)) {
        plain->store(change(plain->stored()), plain->isSetLocally());
        return true;
    }
    if (dynamic_cast<AnimatedFileName*>(&value) == nullptr) return false;
    for (std::int32_t i = 0; i < value.keyCount(); ++i) {
        FileName& name = static_cast<FileNameKeyValuePair*>(value.keyAt(i))->value;
        name = change(name);
    }
    return true;
}

}  // namespace

std::optional<std::string> ExactText(const ParameterValue& value) {
    if (!IsFinite(value)) return std::nullopt;
    const std::string brief = StreamText(value, Digits::Six);
    return ReadsBack(value, brief, Digits::All) ? brief : StreamText(value, Digits::All);
}

bool IsFinite(const ParameterValue& value) {
    KeepingSink sink(Digits::Six);
    value.writeToStream(sink);
    return sink.AllFinite();
}

std::string FormOfValue(ParameterType type) {
    const Form form = FormOf(type);
    return std::string(form.what) + " behind true or false for whether it is set, as in: true " + form.value;
}

std::string FormOfKey(ParameterType type) {
    return std::string("a time, two handles and ") + FormOf(type).what + " for a key, as in: 0.5 0 0 " +
           FormOf(type).keyedValue;
}

void MakeNamesAbsolute(ParameterValue& value, const std::filesystem::path& folder) {
    ChangeNames(value, [&](const FileName& name) { return Absolute(name, folder); });
}

ValuePointer WithNamesFrom(const ParameterValue& value, const std::filesystem::path& folder) {
    ValuePointer copy;
    if (const auto* plain = dynamic_cast<const FileNameValue*>(&value)) {
        copy = makeValue<FileNameValue>(value.getParameter());
        static_cast<FileNameValue&>(*copy).store(plain->stored(), plain->isSetLocally());
    } else if (const auto* animated = dynamic_cast<const AnimatedFileName*>(&value)) {
        copy = animated->clone();
        static_cast<AnimatedFileName&>(*copy).copyKeysFrom(*animated);
    } else {
        return copy;
    }
    if (folder.empty()) return copy;
    ChangeNames(*copy, [&](const FileName& name) {
        if (name.empty()) return name;
        return FileName(Absolute(name, std::filesystem::current_path()).relativeTo(FolderName(folder)));
    });
    return copy;
}

}  // namespace chalkpane::app
