#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace chalkpane {

// A stream of text and numbers. This one swallows what it gets; a sink that keeps it derives from this and writes whole
// numbers with "%d" and others with "%10.6f", as `formatNumber` does.
class TextSink {
public:
    virtual ~TextSink() = default;
    virtual TextSink& operator<<(std::string_view) { return *this; }
    virtual TextSink& operator<<(std::int32_t) { return *this; }
    virtual TextSink& operator<<(double) { return *this; }
};

std::string formatNumber(std::int32_t number);
std::string formatNumber(double number);

// Line feeds become a backslash and an n; double quotes and backslashes get a backslash in front.
std::string escapeText(std::string_view text);

// Where a value writes its text: a string, or a sink, whose form differs in places.
class TextOut {
public:
    explicit TextOut(std::string& target) : string(&target) {}
    explicit TextOut(TextSink& target) : sink(&target) {}

    bool isStream() const { return sink != nullptr; }
    TextOut& operator<<(std::string_view text);
    TextOut& operator<<(const char* text) { return *this << std::string_view(text); }
    TextOut& operator<<(std::int32_t number);
    TextOut& operator<<(double number);
    TextOut& operator<<(bool word) { return *this << (word ? "true" : "false"); }
    // In double quotes, escaped.
    TextOut& quote(std::string_view text) { return *this << "\"" << escapeText(text) << "\""; }

private:
    std::string* string = nullptr;  // one of the two; neither is owned
    TextSink* sink = nullptr;
};

}  // namespace chalkpane
