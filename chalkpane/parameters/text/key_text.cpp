#include "chalkpane/parameters/animation/key.h"
#include "chalkpane/parameters/number_conversion.h"
#include "chalkpane/parameters/text/value_text.h"

namespace chalkpane {

namespace {

void writePair(TextOut& out, const DoublePair& pair) { out << pair.x << " " << pair.y; }

// KEEP: handles on the point leave their place to a comma. The sink's text stops there; the string's goes on with the
// other numbers, which a reader takes for the next key.
void writeHandles(TextOut& out, const PathPoint& content) {
    const bool onPoint = content.in == content.point && content.out == content.point;
    if (onPoint) {
        out << ",";
        if (out.isStream()) return;
    } else {
        out << content.in.x;
    }
    out << " " << content.in.y << " ";
    writePair(out, content.out);
}

// The numbers, or what stands in their place: a comma, or "nan" four times.
bool readHandles(TextScanner& scanner, PathPoint& content) {
    content = PathPoint::at(content.point);
    if (scanner.expectPunctuation(',')) return true;
    if (scanner.expectIdentifier("nan")) {
        for (int i = 0; i < 3; ++i)
            if (!scanner.expectIdentifier("nan")) return false;
        return true;
    }
    return readContent(scanner, content.in) && readContent(scanner, content.out);
}

}  // namespace

void writeKeyContent(TextOut& out, bool content) { out << content; }
void writeKeyContent(TextOut& out, std::int32_t content) { out << content; }
void writeKeyContent(TextOut& out, float content) { out << double{content}; }
void writeKeyContent(TextOut& out, double content) { out << content; }
void writeKeyContent(TextOut& out, const IntegerPair& content) { out << content.x << " " << content.y; }
void writeKeyContent(TextOut& out, const DoublePair& content) { writePair(out, content); }
void writeKeyContent(TextOut& out, const Colour& content) {
    out << "true " << std::int32_t{content.red} << " " << std::int32_t{content.green} << " "
        << std::int32_t{content.blue};
}
void writeKeyContent(TextOut& out, const FileName& content) { writeContent(out, content); }
void writeKeyContent(TextOut& out, const PathPoint& content) {
    writePair(out, content.point);
    out << " ";
    writeHandles(out, content);
}
void writeKeyContent(TextOut& out, const SmoothPathPoint& content) {
    if (!content.smooth) {
        writeKeyContent(out, static_cast<const PathPoint&>(content));
        return;
    }
    writePair(out, content.point);
    out << " smooth ";
}

bool readKeyContent(TextScanner& scanner, bool& content) { return readContent(scanner, content); }
bool readKeyContent(TextScanner& scanner, std::int32_t& content) { return readContent(scanner, content); }
bool readKeyContent(TextScanner& scanner, float& content) { return readContent(scanner, content); }
bool readKeyContent(TextScanner& scanner, double& content) { return readContent(scanner, content); }
bool readKeyContent(TextScanner& scanner, IntegerPair& content) { return readContent(scanner, content); }
bool readKeyContent(TextScanner& scanner, DoublePair& content) { return readContent(scanner, content); }
bool readKeyContent(TextScanner& scanner, Colour& content) {
    bool isFourteenBits = false;
    if (!scanner.readBoolean(isFourteenBits)) return false;
    return readComponent(scanner, isFourteenBits, content.red) &&
           readComponent(scanner, isFourteenBits, content.green) &&
           readComponent(scanner, isFourteenBits, content.blue);
}
bool readKeyContent(TextScanner& scanner, FileName& content) { return readContent(scanner, content); }
bool readKeyContent(TextScanner& scanner, PathPoint& content) {
    return readContent(scanner, content.point) && readHandles(scanner, content);
}
bool readKeyContent(TextScanner& scanner, SmoothPathPoint& content) {
    if (!readContent(scanner, content.point)) return false;
    content = SmoothPathPoint::at(content.point);
    if (scanner.expectIdentifier("smooth")) return true;
    content.smooth = false;
    return readHandles(scanner, content);
}

}  // namespace chalkpane
