#include "chalkpane/parameters/text/value_text.h"

#include "chalkpane/image/rect.h"
#include "chalkpane/parameters/animation/colour_spline.h"
#include "chalkpane/parameters/font_value.h"
#include "chalkpane/parameters/number_conversion.h"
#include "chalkpane/parameters/shape_point_list.h"

namespace chalkpane {

namespace {

// The word that tells whether colours are in 14 bits.
constexpr const char* fourteenBits = "true ";

// What does not fit keeps its low 16 bits.
std::uint16_t colourComponent(std::int32_t number, bool isFourteenBits) {
    const std::int64_t wide = isFourteenBits ? number : std::int64_t{number} * 64 + number / 4;
    return static_cast<std::uint16_t>(wide);
}

bool readComponents(TextScanner& scanner, bool isFourteenBits, Colour& colour) {
    return readComponent(scanner, isFourteenBits, colour.red) && scanner.expectPunctuation(',') &&
           readComponent(scanner, isFourteenBits, colour.green) && scanner.expectPunctuation(',') &&
           readComponent(scanner, isFourteenBits, colour.blue);
}

void writeComponents(TextOut& out, const Colour& colour, const char* between) {
    out << std::int32_t{colour.red} << between << std::int32_t{colour.green} << between << std::int32_t{colour.blue};
}

bool readKnot(TextScanner& scanner, bool isFourteenBits, ColourSpline& spline) {
    float position = 0.0f;
    float midpoint = 0.0f;
    Colour colour;
    if (!readContent(scanner, position) || !scanner.expectPunctuation(':')) return false;
    if (!readComponents(scanner, isFourteenBits, colour)) return false;
    if (!scanner.expectPunctuation(',')) {
        spline.addKnot(colour, position);
        return true;
    }
    if (!readContent(scanner, midpoint)) return false;
    spline.addKnot(colour, position, midpoint);
    return true;
}

}  // namespace

bool readComponent(TextScanner& scanner, bool isFourteenBits, std::uint16_t& component) {
    std::int32_t number = 0;
    if (!scanner.readInteger(number)) return false;
    component = colourComponent(number, isFourteenBits);
    return true;
}

void writeContent(TextOut& out, bool content) { out << " " << content; }
void writeContent(TextOut& out, std::uint8_t content) { out << " " << std::int32_t{content}; }
void writeContent(TextOut& out, std::int32_t content) { out << " " << content; }
void writeContent(TextOut& out, float content) { out << " " << double{content}; }
void writeContent(TextOut& out, double content) { out << " " << content; }
void writeContent(TextOut& out, const IntegerPair& content) { out << " " << content.x << " " << content.y; }
void writeContent(TextOut& out, const DoublePair& content) { out << " " << content.x << " " << content.y; }
void writeContent(TextOut& out, const Rect& content) {
    out << " " << content.x0 << " " << content.y1 << " " << content.x1 << " " << content.y0;
}
void writeContent(TextOut& out, const Colour& content) {
    out << " " << fourteenBits;
    writeComponents(out, content, " , ");
}
void writeContent(TextOut& out, const std::string& content) {
    out << " ";
    out.quote(content);
}
void writeContent(TextOut& out, const FileName& content) { writeContent(out, content.string()); }
void writeContent(TextOut& out, const Font* content) {
    out << " ";
    if (content == nullptr) return;
    bool bold = false;
    bool italic = false;
    std::string name;
    content->getDescription(bold, italic, name);
    out << " \"" << name << "\" " << bold << " " << italic;
}
void writeContent(TextOut& out, const ShapePointList& content) { content.write(out); }
void writeContent(TextOut& out, const ColourSpline& content) {
    out << " " << static_cast<std::int32_t>(content.knotCount()) << " " << fourteenBits;
    for (std::size_t i = 0; i < content.knotCount(); ++i) {
        out << "\n" << double{content.knotPosition(i)} << " : ";
        writeComponents(out, content.knotColour(i), " , ");
        out << " , " << double{content.knotMidpoint(i)};
    }
}

bool readContent(TextScanner& scanner, bool& content) { return scanner.readBoolean(content); }
bool readContent(TextScanner& scanner, std::uint8_t& content) {
    std::int32_t number = 0;
    if (!scanner.readInteger(number)) return false;
    content = static_cast<std::uint8_t>(number);
    return true;
}
bool readContent(TextScanner& scanner, std::int32_t& content) { return scanner.readInteger(content); }
bool readContent(TextScanner& scanner, float& content) {
    double number = 0.0;
    if (!scanner.readReal(number)) return false;
    content = toFloat(number);
    return true;
}
bool readContent(TextScanner& scanner, double& content) { return scanner.readReal(content); }
bool readContent(TextScanner& scanner, IntegerPair& content) {
    return scanner.readInteger(content.x) && scanner.readInteger(content.y);
}
bool readContent(TextScanner& scanner, DoublePair& content) {
    return scanner.readReal(content.x) && scanner.readReal(content.y);
}
bool readContent(TextScanner& scanner, Rect& content) {
    return scanner.readInteger(content.x0) && scanner.readInteger(content.y1) && scanner.readInteger(content.x1) &&
           scanner.readInteger(content.y0);
}
bool readContent(TextScanner& scanner, Colour& content) {
    bool isFourteenBits = false;
    return scanner.readBoolean(isFourteenBits) && readComponents(scanner, isFourteenBits, content);
}
bool readContent(TextScanner& scanner, std::string& content) { return scanner.readString(content); }
bool readContent(TextScanner& scanner, FileName& content) {
    std::string name;
    if (!scanner.readFileName(name)) return false;
    content.assign(name);
    return true;
}
bool readContent(TextScanner& scanner, Font*& content) {
    std::string name;
    bool bold = false;
    bool italic = false;
    if (!scanner.readString(name) || !scanner.readBoolean(bold) || !scanner.readBoolean(italic)) return false;
    Font* const font = findFont(name, bold, italic);
    if (font == nullptr) return false;
    content = font;
    return true;
}
bool readContent(TextScanner& scanner, ShapePointList& content) { return content.read(scanner); }
bool readContent(TextScanner& scanner, ColourSpline& content) {
    std::int32_t count = 0;
    bool isFourteenBits = false;
    if (!scanner.readInteger(count) || !scanner.readBoolean(isFourteenBits)) return false;
    content.clear();
    for (std::int32_t i = 0; i < count; ++i)
        if (!readKnot(scanner, isFourteenBits, content)) return false;
    return true;
}

}  // namespace chalkpane
