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
    if (!readHeld(scanner, position) || !scanner.expectPunctuation(':')) return false;
    if (!readComponents(scanner, isFourteenBits, colour)) return false;
    if (!scanner.expectPunctuation(',')) {
        spline.addKnot(colour, position);
        return true;
    }
    if (!readHeld(scanner, midpoint)) return false;
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

void writeHeld(TextOut& out, bool held) { out << " " << held; }
void writeHeld(TextOut& out, std::uint8_t held) { out << " " << std::int32_t{held}; }
void writeHeld(TextOut& out, std::int32_t held) { out << " " << held; }
void writeHeld(TextOut& out, float held) { out << " " << double{held}; }
void writeHeld(TextOut& out, double held) { out << " " << held; }
void writeHeld(TextOut& out, const IntegerPair& held) { out << " " << held.x << " " << held.y; }
void writeHeld(TextOut& out, const DoublePair& held) { out << " " << held.x << " " << held.y; }
void writeHeld(TextOut& out, const Rect& held) {
    out << " " << held.x0 << " " << held.y1 << " " << held.x1 << " " << held.y0;
}
void writeHeld(TextOut& out, const Colour& held) {
    out << " " << fourteenBits;
    writeComponents(out, held, " , ");
}
void writeHeld(TextOut& out, const std::string& held) {
    out << " ";
    out.quote(held);
}
void writeHeld(TextOut& out, const FileName& held) { writeHeld(out, held.string()); }
void writeHeld(TextOut& out, const Font* held) {
    out << " ";
    if (held == nullptr) return;
    bool bold = false;
    bool italic = false;
    std::string name;
    held->getDescription(bold, italic, name);
    out << " \"" << name << "\" " << bold << " " << italic;
}
void writeHeld(TextOut& out, const ShapePointList& held) { held.write(out); }
void writeHeld(TextOut& out, const ColourSpline& held) {
    out << " " << static_cast<std::int32_t>(held.knotCount()) << " " << fourteenBits;
    for (std::size_t i = 0; i < held.knotCount(); ++i) {
        out << "\n" << double{held.knotPosition(i)} << " : ";
        writeComponents(out, held.knotColour(i), " , ");
        out << " , " << double{held.knotMidpoint(i)};
    }
}

bool readHeld(TextScanner& scanner, bool& held) { return scanner.readBoolean(held); }
bool readHeld(TextScanner& scanner, std::uint8_t& held) {
    std::int32_t number = 0;
    if (!scanner.readInteger(number)) return false;
    held = static_cast<std::uint8_t>(number);
    return true;
}
bool readHeld(TextScanner& scanner, std::int32_t& held) { return scanner.readInteger(held); }
bool readHeld(TextScanner& scanner, float& held) {
    double number = 0.0;
    if (!scanner.readReal(number)) return false;
    held = toFloat(number);
    return true;
}
bool readHeld(TextScanner& scanner, double& held) { return scanner.readReal(held); }
bool readHeld(TextScanner& scanner, IntegerPair& held) {
    return scanner.readInteger(held.x) && scanner.readInteger(held.y);
}
bool readHeld(TextScanner& scanner, DoublePair& held) { return scanner.readReal(held.x) && scanner.readReal(held.y); }
bool readHeld(TextScanner& scanner, Rect& held) {
    return scanner.readInteger(held.x0) && scanner.readInteger(held.y1) && scanner.readInteger(held.x1) &&
           scanner.readInteger(held.y0);
}
bool readHeld(TextScanner& scanner, Colour& held) {
    bool isFourteenBits = false;
    return scanner.readBoolean(isFourteenBits) && readComponents(scanner, isFourteenBits, held);
}
bool readHeld(TextScanner& scanner, std::string& held) { return scanner.readString(held); }
bool readHeld(TextScanner& scanner, FileName& held) {
    std::string name;
    if (!scanner.readFileName(name)) return false;
    held.assign(name);
    return true;
}
bool readHeld(TextScanner& scanner, Font*& held) {
    std::string name;
    bool bold = false;
    bool italic = false;
    if (!scanner.readString(name) || !scanner.readBoolean(bold) || !scanner.readBoolean(italic)) return false;
    Font* const font = findFont(name, bold, italic);
    if (font == nullptr) return false;
    held = font;
    return true;
}
bool readHeld(TextScanner& scanner, ShapePointList& held) { return held.read(scanner); }
bool readHeld(TextScanner& scanner, ColourSpline& held) {
    std::int32_t count = 0;
    bool isFourteenBits = false;
    if (!scanner.readInteger(count) || !scanner.readBoolean(isFourteenBits)) return false;
    held.clear();
    for (std::int32_t i = 0; i < count; ++i)
        if (!readKnot(scanner, isFourteenBits, held)) return false;
    return true;
}

}  // namespace chalkpane
