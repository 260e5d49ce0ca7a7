#include "chalkpane/parameters/text/text_sink.h"

#include <array>
#include <cstdio>

namespace chalkpane {

std::string formatNumber(std::int32_t number) { return std::to_string(number); }

std::string formatNumber(double number) {
    std::array<char, 400> buffer;  // the largest double has 309 digits before the stop
    const int size = std::snprintf(buffer.data(), buffer.size(), "%10.6f", number);
    return {buffer.data(), static_cast<std::size_t>(size)};
}

std::string escapeText(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        if (c == '\n') {
            escaped += "\\n";
        } else {
            if (c == '"' || c == '\\') escaped += '\\';
            escaped += c;
        }
    }
    return escaped;
}

TextOut& TextOut::operator<<(std::string_view text) {
    if (sink != nullptr) {
        *sink << text;
    } else {
        string->append(text);
    }
    return *this;
}

TextOut& TextOut::operator<<(std::int32_t number) {
    if (sink == nullptr) return *this << formatNumber(number);
    *sink << number;
    return *this;
}

TextOut& TextOut::operator<<(double number) {
    if (sink == nullptr) return *this << formatNumber(number);
    *sink << number;
    return *this;
}

}  // namespace chalkpane
