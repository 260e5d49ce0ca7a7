#include "chalkpane/parameters/animation/key.h"
#include "chalkpane/parameters/number_conversion.h"
#include "chalkpane/parameters/text/value_text.h"

namespace chalkpane {

namespace {

void writePair(TextOut& out, const DoublePair& pair) { out << pair.x << " " << pair.y; }

// KEEP: handles on the point leave their place to a comma. The sink's text stops there; the string's goes on with the
// other numbers, which a reader takes for the next key.
void writeHandles(TextOut& out, const PathPoint& held) {
    const bool onPoint = held.in == held.point && held.out == held.point;
    if (onPoint) {
        out << ",";
        if (out.isStream()) return;
    } else {
        out << held.in.x;
    }
    out << " " << held.in.y << " ";
    writePair(out, held.out);
}

// The numbers, or what stands in their place: a comma, or "nan" four times.
bool readHandles(TextScanner& scanner, PathPoint& held) {
    held = PathPoint::at(held.point);
    if (scanner.expectPunctuation(',')) return true;
    if (scanner.expectIdentifier("nan")) {
        for (int i = 0; i < 3; ++i)
            if (!scanner.expectIdentifier("nan")) return false;
        return true;
    }
    return readHeld(scanner, held.in) && readHeld(scanner, held.out);
}

}  // namespace

void writeKeyHeld(TextOut& out, bool held) { out << held; }
void writeKeyHeld(TextOut& out, std::int32_t held) { out << held; }
void writeKeyHeld(TextOut& out, float held) { out << double{held}; }
void writeKeyHeld(TextOut& out, double held) { out << held; }
void writeKeyHeld(TextOut& out, const IntegerPair& held) { out << held.x << " " << held.y; }
void writeKeyHeld(TextOut& out, const DoublePair& held) { writePair(out, held); }
void writeKeyHeld(TextOut& out, const Colour& held) {
    out << "true " << std::int32_t{held.red} << " " << std::int32_t{held.green} << " " << std::int32_t{held.blue};
}
void writeKeyHeld(TextOut& out, const FileName& held) { writeHeld(out, held); }
void writeKeyHeld(TextOut& out, const PathPoint& held) {
    writePair(out, held.point);
    out << " ";
    writeHandles(out, held);
}
void writeKeyHeld(TextOut& out, const SmoothPathPoint& held) {
    if (!held.smooth) {
        writeKeyHeld(out, static_cast<const PathPoint&>(held));
        return;
    }
    writePair(out, held.point);
    out << " smooth ";
}

bool readKeyHeld(TextScanner& scanner, bool& held) { return readHeld(scanner, held); }
bool readKeyHeld(TextScanner& scanner, std::int32_t& held) { return readHeld(scanner, held); }
bool readKeyHeld(TextScanner& scanner, float& held) { return readHeld(scanner, held); }
bool readKeyHeld(TextScanner& scanner, double& held) { return readHeld(scanner, held); }
bool readKeyHeld(TextScanner& scanner, IntegerPair& held) { return readHeld(scanner, held); }
bool readKeyHeld(TextScanner& scanner, DoublePair& held) { return readHeld(scanner, held); }
bool readKeyHeld(TextScanner& scanner, Colour& held) {
    bool isFourteenBits = false;
    if (!scanner.readBoolean(isFourteenBits)) return false;
    return readComponent(scanner, isFourteenBits, held.red) && readComponent(scanner, isFourteenBits, held.green) &&
           readComponent(scanner, isFourteenBits, held.blue);
}
bool readKeyHeld(TextScanner& scanner, FileName& held) { return readHeld(scanner, held); }
bool readKeyHeld(TextScanner& scanner, PathPoint& held) {
    return readHeld(scanner, held.point) && readHandles(scanner, held);
}
bool readKeyHeld(TextScanner& scanner, SmoothPathPoint& held) {
    if (!readHeld(scanner, held.point)) return false;
    held = SmoothPathPoint::at(held.point);
    if (scanner.expectIdentifier("smooth")) return true;
    held.smooth = false;
    return readHandles(scanner, held);
}

}  // namespace chalkpane
