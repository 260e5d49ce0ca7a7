#pragma once

#include <cstdint>
#include <string>

#include "chalkpane/parameters/file_name.h"
#include "chalkpane/parameters/number_pair.h"
#include "chalkpane/parameters/text/text_scanner.h"
#include "chalkpane/parameters/text/text_sink.h"

namespace chalkpane {

class ColourSpline;
class Font;
class ShapePointList;
struct Colour;
struct PathPoint;
struct Rect;
struct SmoothPathPoint;

// What values hold, written behind the word for whether they are set, and so with a blank (or a line feed) in front;
// and read back. Reading stores piece by piece: on false the pieces before the failure have been stored.
void writeHeld(TextOut& out, bool held);
void writeHeld(TextOut& out, std::uint8_t held);
void writeHeld(TextOut& out, std::int32_t held);
void writeHeld(TextOut& out, float held);
void writeHeld(TextOut& out, double held);
void writeHeld(TextOut& out, const IntegerPair& held);
void writeHeld(TextOut& out, const DoublePair& held);
void writeHeld(TextOut& out, const Colour& held);  // always in 14 bits
void writeHeld(TextOut& out, const Rect& held);    // left, top, right, bottom
void writeHeld(TextOut& out, const std::string& held);
void writeHeld(TextOut& out, const FileName& held);
void writeHeld(TextOut& out, const Font* held);
void writeHeld(TextOut& out, const ShapePointList& held);
void writeHeld(TextOut& out, const ColourSpline& held);

bool readHeld(TextScanner& scanner, bool& held);
bool readHeld(TextScanner& scanner, std::uint8_t& held);
bool readHeld(TextScanner& scanner, std::int32_t& held);
bool readHeld(TextScanner& scanner, float& held);
bool readHeld(TextScanner& scanner, double& held);
bool readHeld(TextScanner& scanner, IntegerPair& held);
bool readHeld(TextScanner& scanner, DoublePair& held);
bool readHeld(TextScanner& scanner, Colour& held);  // in 14 or 8 bits
bool readHeld(TextScanner& scanner, Rect& held);
bool readHeld(TextScanner& scanner, std::string& held);
bool readHeld(TextScanner& scanner, FileName& held);
bool readHeld(TextScanner& scanner, Font*& held);
bool readHeld(TextScanner& scanner, ShapePointList& held);
bool readHeld(TextScanner& scanner, ColourSpline& held);

// One component of a colour, in 14 or 8 bits.
bool readComponent(TextScanner& scanner, bool isFourteenBits, std::uint16_t& component);

// What keys hold, written behind the head of the key, which ends in a blank.
void writeKeyHeld(TextOut& out, bool held);
void writeKeyHeld(TextOut& out, std::int32_t held);
void writeKeyHeld(TextOut& out, float held);
void writeKeyHeld(TextOut& out, double held);
void writeKeyHeld(TextOut& out, const IntegerPair& held);
void writeKeyHeld(TextOut& out, const DoublePair& held);
void writeKeyHeld(TextOut& out, const Colour& held);
void writeKeyHeld(TextOut& out, const FileName& held);
void writeKeyHeld(TextOut& out, const PathPoint& held);
void writeKeyHeld(TextOut& out, const SmoothPathPoint& held);

bool readKeyHeld(TextScanner& scanner, bool& held);
bool readKeyHeld(TextScanner& scanner, std::int32_t& held);
bool readKeyHeld(TextScanner& scanner, float& held);
bool readKeyHeld(TextScanner& scanner, double& held);
bool readKeyHeld(TextScanner& scanner, IntegerPair& held);
bool readKeyHeld(TextScanner& scanner, DoublePair& held);
bool readKeyHeld(TextScanner& scanner, Colour& held);
bool readKeyHeld(TextScanner& scanner, FileName& held);
bool readKeyHeld(TextScanner& scanner, PathPoint& held);
bool readKeyHeld(TextScanner& scanner, SmoothPathPoint& held);  // a smooth one has its handles on its point

}  // namespace chalkpane
