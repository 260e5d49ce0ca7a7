#include "kel/session/session_lines.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string_view>

namespace kel {
namespace {

constexpr std::string_view white = " \t\r";

std::string_view Trimmed(std::string_view line) {
    const auto first = line.find_first_not_of(white);
    if (first == std::string_view::npos) return {};
    return line.substr(first, line.find_last_not_of(white) - first + 1);
}

// The number behind a key that the line begins with; `none` where it begins otherwise.
std::int64_t NumberBehind(std::string_view key, std::string_view line, std::int64_t none) {
    if (!line.starts_with(key)) return none;
    line.remove_prefix(key.size());
    line.remove_prefix(std::min(line.find_first_not_of(white), line.size()));
    std::int64_t number = none;
    std::from_chars(line.data(), line.data() + line.size(), number);
    return number;
}

bool BeginsARecording(std::string_view line) {
    constexpr std::size_t longestScene = std::size_t{4} << 20U;  // bytes: thousands of containers
    const bool mayBe = line.starts_with('{') && line.ends_with('}') && line.size() <= longestScene;
    if (!mayBe || line.find("\"recording\"") == std::string_view::npos) return false;
    const nlohmann::json json = nlohmann::json::parse(line, nullptr, false);
    return json.is_object() && json.contains("recording") && json["recording"] == true && !json.contains("events");
}

// The events of the lines, and how many fields they say.
class Lines {
public:
    void Add(std::string_view line) {
        m_events += '\n';
        if (line.empty()) return;
        const std::int64_t said = NumberBehind("{\"fields\":", line, -1);
        m_fields = std::max({m_fields, said, NumberBehind("{\"field\":", line, -1) + 1});
        if (said >= 0) return;
        if (m_hasEvents) m_events += ',';
        m_hasEvents = true;
        m_events += line;
    }
    // first: the line before them
    [[nodiscard]] std::string Behind(std::string_view first) const {
        std::string whole(first.substr(0, first.size() - 1));
        whole += first.size() > 2 ? ",\"events\":[" : "\"events\":[";
        whole += m_events + "]";
        // The number of fields that the first line may say is that of before.
        if (m_fields > 0) whole += ",\"fields\":" + std::to_string(m_fields);
        return whole + "}\n";
    }

private:
    std::string m_events;
    std::int64_t m_fields = 0;
    bool m_hasEvents = false;
};

}  // namespace

std::string WholeSessionText(std::string text) {
    const std::size_t end = text.find('\n');
    if (end == std::string::npos || text.find_first_not_of(" \t\r\n", end) == std::string::npos) return text;
    const std::string_view all = text;
    const std::string_view first = Trimmed(all.substr(0, end));
    if (!BeginsARecording(first)) return text;
    Lines lines;
    for (std::size_t at = end + 1; at < all.size();) {
        const std::size_t next = all.find('\n', at);
        const std::string_view line = Trimmed(all.substr(at, next - at));
        const bool isTorn = next == std::string_view::npos && !nlohmann::json::accept(line);
        if (!isTorn) lines.Add(line);
        if (next == std::string_view::npos) break;
        at = next + 1;
    }
    return lines.Behind(first);
}

}  // namespace kel
