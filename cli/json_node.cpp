#include "cli/json_node.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <set>

#include "cli/error.h"
#include "cli/file_bytes.h"

namespace cli {
namespace {

using nlohmann::json;

constexpr std::size_t largestFile = 64U << 20U;  // bytes

// What a value takes in memory at most, of which its text may be a hundredth: `[],` is an allocation of its own.
constexpr std::size_t largestTree = std::size_t{1} << 29U;  // bytes
constexpr std::size_t bytesOfValue = 48;                    // in a list that grows by doubling
constexpr std::size_t bytesOfList = 48;
constexpr std::size_t bytesOfObject = 64;
constexpr std::size_t bytesOfText = 48;  // and its letters
constexpr std::size_t bytesOfKey = 96;   // in the object, and as much among the keys seen; and its letters each time

std::string EscapePointer(std::string_view key) {
    std::string escaped;
    for (const char letter : key) {
        if (letter == '~')
            escaped += "~0";
        else if (letter == '/')
            escaped += "~1";
        else
            escaped += letter;
    }
    return escaped;
}

std::string Shown(const json& value) {
    if (value.is_object()) return "an object";
    if (value.is_array()) return "a list";
    if (value.is_string()) return "the text " + Quoted(value.get_ref<const std::string&>());
    return value.dump();
}

std::string ShownNumber(double number) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%g", number);
    return text.data();
}

// `byte` counts from 1 and is the last one that the parser read.
std::string LineAndColumn(const std::string& text, std::size_t byte) {
    const std::size_t end = std::min(byte == 0 ? 0 : byte - 1, text.size());
    const std::string_view before = std::string_view(text).substr(0, end);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const std::size_t lineStart = before.rfind('\n') + 1;  // npos + 1 is 0: the first line
    return "line " + std::to_string(line) + ", column " + std::to_string(end - lineStart + 1);
}

// The parser's sentence without its own prefix, place and quotation of the text.
std::string ParserReason(std::string reason) {
    if (const std::size_t colon = reason.find(": "); colon != std::string::npos) reason.erase(0, colon + 2);
    const std::size_t quotation = reason.find("; last read: ");
    if (quotation != std::string::npos) {
        const std::size_t rest = reason.find("; expected", quotation);
        reason.erase(quotation, rest == std::string::npos ? std::string::npos : rest - quotation);
    }
    return reason;
}

// Makes the tree of what the parser reads, knows the place of it, and refuses what JSON lets pass: keys that stand
// twice, and more than there should be room for. (The library's own tree with a callback looks through a whole list at
// the end of each object in it, which never ends for a million of them.) Without a tree it only counts.
class JsonTree : public json::json_sax_t {
public:
    enum class Pass { Counting, Keeping };
    JsonTree(const std::string& text, const std::filesystem::path& file, Pass pass)
        : m_text(text), m_file(file), m_keeps(pass == Pass::Keeping) {}

    json Take() { return std::move(m_root); }

    bool null() override { return Leaf(nullptr); }
    bool boolean(bool value) override { return Leaf(value); }
    bool number_integer(number_integer_t value) override { return Leaf(value); }
    bool number_unsigned(number_unsigned_t value) override { return Leaf(value); }
    bool number_float(number_float_t value, const string_t&) override { return Leaf(value); }
    bool binary(binary_t& value) override { return Leaf(std::move(value)); }
    bool string(string_t& value) override {
        Count(bytesOfText + value.size());
        return Leaf(std::move(value));
    }

    bool start_object(std::size_t) override { return Open(Kind::Object, bytesOfObject); }
    bool start_array(std::size_t) override { return Open(Kind::List, bytesOfList); }
    bool end_object() override { return Close(); }
    bool end_array() override { return Close(); }

    bool key(string_t& key) override {
        Level& level = m_open.back();
        level.key = std::move(key);
        const std::size_t bytes = bytesOfKey + level.key.size();
        level.bytesOfKeys += bytes;
        Count(2 * bytes);
        if (m_keeps && !level.keys.insert(level.key).second)
            throw Error(m_file.string(), Place(), "the key stands twice");
        return true;
    }

    bool parse_error(std::size_t position, const std::string&, const json::exception& error) override {
        if (error.id == 406) throw Error(m_file.string(), Place(), "the number is too large");
        throw Error(m_file.string(), LineAndColumn(m_text, position), ParserReason(error.what()));
    }

private:
    static constexpr std::size_t nestingLimit = 32;

    enum class Kind { Object, List };

    struct Level {
        Kind kind;
        json* value;  // stays where it is while it is open: nothing is added beside it until then; null while counting
        std::size_t index = 0;
        std::string key{};
        std::set<std::string> keys{};
        std::size_t bytesOfKeys = 0;
    };

    [[nodiscard]] std::string Place() const {
        std::string place;
        for (const Level& level : m_open)
            place += '/' + (level.kind == Kind::List ? std::to_string(level.index) : EscapePointer(level.key));
        return place.empty() ? "/" : place;
    }

    bool Open(Kind kind, std::size_t bytes) {
        if (m_open.size() == nestingLimit) throw Error(m_file.string(), Place(), "nested too deeply");
        Count(bytesOfValue + bytes);
        m_open.push_back({kind, m_keeps ? Add(kind == Kind::List ? json::array() : json::object()) : nullptr});
        return true;
    }

    bool Close() {
        m_bytes -= m_open.back().bytesOfKeys;
        m_open.pop_back();
        return Advance();
    }

    bool Leaf(json value) {
        Count(bytesOfValue);
        if (m_keeps) Add(std::move(value));
        return Advance();
    }

    json* Add(json value) {
        if (m_open.empty()) {
            m_root = std::move(value);
            return &m_root;
        }
        const Level& level = m_open.back();
        if (level.value->is_object()) return &((*level.value)[level.key] = std::move(value));
        level.value->push_back(std::move(value));
        return &level.value->back();
    }

    bool Advance() {
        if (!m_open.empty()) ++m_open.back().index;
        return true;
    }

    void Count(std::size_t bytes) {
        m_bytes += bytes;
        if (m_bytes > largestTree)
            throw Error(m_file.string(), Place(),
                        "up to here the file holds more than 512 MiB of memory have room for");
    }

    const std::string& m_text;
    const std::filesystem::path& m_file;
    bool m_keeps;
    json m_root;
    std::vector<Level> m_open;
    std::size_t m_bytes = 0;
};

}  // namespace

void JsonNode::Refuse(const std::string& reason) const {
    throw Error(m_file->string(), m_place.empty() ? "/" : m_place, reason);
}

bool JsonNode::Has(std::string_view key) const { return m_value->is_object() && m_value->contains(key); }

JsonNode JsonNode::Member(std::string_view key) const {
    return {m_value->at(std::string(key)), *m_file, m_place + '/' + EscapePointer(key)};
}

JsonNode JsonNode::Element(std::size_t index) const {
    return {m_value->at(index), *m_file, m_place + '/' + std::to_string(index)};
}

std::vector<JsonNode> JsonNode::Elements(std::size_t atLeast) const {
    if (!m_value->is_array()) Refuse("must be a list, not " + Shown(*m_value));
    if (m_value->size() < atLeast) Refuse("must have at least " + std::to_string(atLeast) + " elements");
    std::vector<JsonNode> elements;
    elements.reserve(m_value->size());
    for (std::size_t i = 0; i < m_value->size(); ++i) elements.push_back(Element(i));
    return elements;
}

void JsonNode::RequireObject() const {
    if (!m_value->is_object()) Refuse("must be an object, not " + Shown(*m_value));
}

std::int64_t JsonNode::Integer(std::int64_t minimum, std::int64_t maximum) const {
    // 12.0 is a whole number too. The limits are far inside what a double holds exactly.
    const double number = m_value->is_number() ? m_value->get<double>() : std::nan("");
    if (!(number >= static_cast<double>(minimum) && number <= static_cast<double>(maximum)) ||
        number != std::floor(number))
        Refuse("must be a whole number from " + std::to_string(minimum) + " to " + std::to_string(maximum) + ", not " +
               Shown(*m_value));
    return static_cast<std::int64_t>(number);
}

double JsonNode::Number(double minimum, double maximum) const {
    const double number = m_value->is_number() ? m_value->get<double>() : std::nan("");
    if (!(number >= minimum && number <= maximum))
        Refuse("must be a number from " + ShownNumber(minimum) + " to " + ShownNumber(maximum) + ", not " +
               Shown(*m_value));
    return number;
}

bool JsonNode::Truth() const {
    if (!m_value->is_boolean()) Refuse("must be true or false, not " + Shown(*m_value));
    return m_value->get<bool>();
}

std::string JsonNode::Text() const {
    if (!m_value->is_string()) Refuse("must be a text, not " + Shown(*m_value));
    const auto& text = m_value->get_ref<const std::string&>();
    if (text.empty()) Refuse("must not be empty");
    if (std::any_of(text.begin(), text.end(), [](unsigned char letter) { return letter < 0x20 || letter == 0x7F; }))
        Refuse("must not hold control characters");
    return text;
}

nlohmann::json ParseJson(const std::string& text, const std::filesystem::path& file) {
    // What has no room is refused before any is taken.
    JsonTree count(text, file, JsonTree::Pass::Counting);
    json::sax_parse(text, &count);
    JsonTree tree(text, file, JsonTree::Pass::Keeping);
    json::sax_parse(text, &tree);
    return tree.Take();
}

std::string ReadJsonText(const std::filesystem::path& file) {
    const auto bytes = ReadFileBytes(file, largestFile);
    return {bytes.begin(), bytes.end()};
}

}  // namespace cli
