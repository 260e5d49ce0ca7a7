#pragma once

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace cli::testing {

// The part of JSON Schema that the schemas beside the documentation use; a keyword beyond it fails the test.
class JsonSchema {
public:
    using json = nlohmann::json;

    explicit JsonSchema(json schema) : m_root(std::move(schema)) {}

    [[nodiscard]] const json& Root() const { return m_root; }
    [[nodiscard]] bool Accepts(const json& value) const { return Accepts(m_root, value); }

private:
    [[nodiscard]] static bool IsOfType(const json& value, const std::string& type) {
        if (type == "object") return value.is_object();
        if (type == "array") return value.is_array();
        if (type == "string") return value.is_string();
        if (type == "boolean") return value.is_boolean();
        if (type == "number") return value.is_number();
        REQUIRE_EQ(type, "integer");
        return value.is_number() && std::floor(value.get<double>()) == value.get<double>();
    }

    // Patterns are few and met often.
    [[nodiscard]] static bool Matches(const std::string& pattern, const std::string& text) {
        static std::map<std::string, std::regex> patterns;
        return std::regex_search(text, patterns.try_emplace(pattern, pattern).first->second);
    }

    [[nodiscard]] bool AcceptsMembers(const json& schema, const json& value) const {
        for (const auto& [key, member] : value.items()) {
            if (schema.contains("properties") && schema["properties"].contains(key)) {
                if (!Accepts(schema["properties"][key], member)) return false;
            } else if (const json& others = schema.at("additionalProperties");
                       !others.is_object() || !Accepts(others, member)) {
                return false;
            }
        }
        const json required = schema.value("required", json::array());
        return std::all_of(required.begin(), required.end(),
                           [&](const json& key) { return value.contains(key.get<std::string>()); });
    }

    [[nodiscard]] bool AcceptsElements(const json& schema, const json& value) const {
        const json first = schema.value("prefixItems", json::array());
        for (std::size_t i = 0; i < value.size(); ++i) {
            if (i < first.size()) {
                if (!Accepts(first[i], value[i])) return false;
            } else if (schema.contains("items") && !Accepts(schema["items"], value[i])) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] bool AcceptsKeyword(const json& schema, const std::string& keyword, const json& wanted,
                                      const json& value) const {
        static const std::set<std::string> said = {"title", "description", "default", "$schema", "$defs"};
        static const std::set<std::string> members = {"properties", "additionalProperties", "required"};
        if (said.contains(keyword)) return true;
        if (members.contains(keyword)) return !value.is_object() || AcceptsMembers(schema, value);
        if (keyword == "$ref")
            return Accepts(m_root.at(json::json_pointer(wanted.get<std::string>().substr(1))), value);
        if (keyword == "type") {
            if (wanted.is_string()) return IsOfType(value, wanted);
            return std::any_of(wanted.begin(), wanted.end(), [&](const json& type) { return IsOfType(value, type); });
        }
        if (keyword == "oneOf")
            return std::count_if(wanted.begin(), wanted.end(), [&](const json& one) { return Accepts(one, value); }) ==
                   1;
        if (keyword == "enum") return std::find(wanted.begin(), wanted.end(), value) != wanted.end();
        if (keyword == "minimum") return !value.is_number() || value >= wanted;
        if (keyword == "maximum") return !value.is_number() || value <= wanted;
        if (keyword == "minItems") return !value.is_array() || value.size() >= wanted;
        if (keyword == "maxItems") return !value.is_array() || value.size() <= wanted;
        if (keyword == "maxProperties") return !value.is_object() || value.size() <= wanted;
        if (keyword == "minProperties") return !value.is_object() || value.size() >= wanted.get<std::size_t>();
        if (keyword == "minLength") return !value.is_string() || value.get<std::string>().size() >= wanted;
        if (keyword == "pattern") return !value.is_string() || Matches(wanted, value);
        if (keyword == "prefixItems") return !value.is_array() || AcceptsElements(schema, value);
        REQUIRE_EQ(keyword, "items");
        return !value.is_array() || AcceptsElements(schema, value);
    }

    [[nodiscard]] bool Accepts(const json& schema, const json& value) const {
        return std::all_of(schema.items().begin(), schema.items().end(), [&](const auto& keyword) {
            return AcceptsKeyword(schema, keyword.key(), keyword.value(), value);
        });
    }

    json m_root;
};

// All places in a JSON value, as pointers.
inline void CollectPlaces(const nlohmann::json& value, const nlohmann::json::json_pointer& place,
                          std::vector<nlohmann::json::json_pointer>& places) {
    places.push_back(place);
    if (value.is_object())
        for (const auto& [key, member] : value.items()) CollectPlaces(member, place / key, places);
    if (value.is_array())
        for (std::size_t i = 0; i < value.size(); ++i) CollectPlaces(value[i], place / i, places);
}

// The file once with each of `values` at each of its places, once without each member of an object, and once with a
// member under a name that there is not. `check` is given each of them and what was done.
template <typename Check>
void ForEachChange(const nlohmann::json& file, const nlohmann::json& values, Check check) {
    std::vector<nlohmann::json::json_pointer> places;
    CollectPlaces(file, nlohmann::json::json_pointer(), places);
    for (const auto& place : places) {
        for (const auto& value : values) {
            nlohmann::json changed = file;
            changed[place] = value;
            check(changed, place.to_string() + " is " + value.dump());
        }
        if (place.empty()) continue;
        nlohmann::json without = file;
        nlohmann::json& parent = without[place.parent_pointer()];
        if (!parent.is_object()) continue;
        parent.erase(place.back());
        check(without, place.to_string() + " is missing");
        nlohmann::json renamed = file;
        renamed[place.parent_pointer()]["Width "] = renamed[place];
        check(renamed, place.to_string() + " has a reference of another name");
    }
}

}  // namespace cli::testing
