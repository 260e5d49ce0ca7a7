#pragma once

#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/nearest_name.h"

namespace cli {

// A value in a JSON file together with the place where it stands, so that each refusal can say where.
//
// Borrows the JSON and the file's name; both outlive it. All readers throw Error when the value is not of their kind.
class JsonNode {
public:
    JsonNode(const nlohmann::json& value, const std::filesystem::path& file, std::string place = {})
        : m_value(&value), m_file(&file), m_place(std::move(place)) {}

    [[nodiscard]] const std::string& Place() const { return m_place; }  // JSON pointer; empty for the whole file
    [[nodiscard]] const nlohmann::json& Value() const { return *m_value; }

    [[noreturn]] void Refuse(const std::string& reason) const;

    [[nodiscard]] bool Has(std::string_view key) const;
    [[nodiscard]] JsonNode Member(std::string_view key) const;  // the key is there
    [[nodiscard]] JsonNode Element(std::size_t index) const;    // inside the list
    [[nodiscard]] std::vector<JsonNode> Elements(std::size_t atLeast) const;
    void RequireObject() const;

    // Both limits are allowed values.
    [[nodiscard]] std::int64_t Integer(std::int64_t minimum, std::int64_t maximum) const;
    [[nodiscard]] double Number(double minimum, double maximum) const;
    [[nodiscard]] bool Truth() const;
    [[nodiscard]] std::string Text() const;  // not empty, without control characters

private:
    const nlohmann::json* m_value;
    const std::filesystem::path* m_file;
    std::string m_place;
};

// One key of an object and how it is read into a T. Objects are read in the order of their table, whatever the order in
// the file.
template <typename T>
struct JsonKey {
    std::string_view name;
    bool required = false;
    void (*read)(const JsonNode& node, T& into) = nullptr;
};

template <typename T>
void ReadKeys(const JsonNode& node, std::span<const JsonKey<T>> keys, T& into) {
    node.RequireObject();
    std::vector<std::string> names;
    for (const auto& key : keys) names.emplace_back(key.name);
    for (const auto& member : node.Value().items())
        if (std::find(names.begin(), names.end(), member.key()) == names.end())
            node.Member(member.key()).Refuse("unknown key" + NearestHint(member.key(), names));
    for (const auto& key : keys) {
        if (!node.Has(key.name)) {
            if (key.required) node.Refuse(Quoted(key.name) + " is missing");
        } else {
            key.read(node.Member(key.name), into);
        }
    }
}

// Parses JSON. Beyond what the language asks, a key may stand only once in an object and nesting and the memory
// that the values take are limited while they are read. Throws
// Error with line and column, or with the pointer where JSON itself has nothing to complain about.
[[nodiscard]] nlohmann::json ParseJson(const std::string& text, const std::filesystem::path& file);

// All of a file that holds JSON. Throws Error naming the file and the reason; 64 MiB are read at most.
[[nodiscard]] std::string ReadJsonText(const std::filesystem::path& file);

}  // namespace cli
