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
void writeContent(TextOut& out, bool content);
void writeContent(TextOut& out, std::uint8_t content);
void writeContent(TextOut& out, std::int32_t content);
void writeContent(TextOut& out, float content);
void writeContent(TextOut& out, double content);
void writeContent(TextOut& out, const IntegerPair& content);
void writeContent(TextOut& out, const DoublePair& content);
void writeContent(TextOut& out, const Colour& content);  // always in 14 bits
void writeContent(TextOut& out, const Rect& content);    // left, top, right, bottom
void writeContent(TextOut& out, const std::string& content);
void writeContent(TextOut& out, const FileName& content);
void writeContent(TextOut& out, const Font* content);
void writeContent(TextOut& out, const ShapePointList& content);
void writeContent(TextOut& out, const ColourSpline& content);

bool readContent(TextScanner& scanner, bool& content);
bool readContent(TextScanner& scanner, std::uint8_t& content);
bool readContent(TextScanner& scanner, std::int32_t& content);
bool readContent(TextScanner& scanner, float& content);
bool readContent(TextScanner& scanner, double& content);
bool readContent(TextScanner& scanner, IntegerPair& content);
bool readContent(TextScanner& scanner, DoublePair& content);
bool readContent(TextScanner& scanner, Colour& content);  // in 14 or 8 bits
bool readContent(TextScanner& scanner, Rect& content);
bool readContent(TextScanner& scanner, std::string& content);
bool readContent(TextScanner& scanner, FileName& content);
bool readContent(TextScanner& scanner, Font*& content);
bool readContent(TextScanner& scanner, ShapePointList& content);
bool readContent(TextScanner& scanner, ColourSpline& content);

// One component of a colour, in 14 or 8 bits.
bool readComponent(TextScanner& scanner, bool isFourteenBits, std::uint16_t& component);

// What keys hold, written behind the head of the key, which ends in a blank.
void writeKeyContent(TextOut& out, bool content);
void writeKeyContent(TextOut& out, std::int32_t content);
void writeKeyContent(TextOut& out, float content);
void writeKeyContent(TextOut& out, double content);
void writeKeyContent(TextOut& out, const IntegerPair& content);
void writeKeyContent(TextOut& out, const DoublePair& content);
void writeKeyContent(TextOut& out, const Colour& content);
void writeKeyContent(TextOut& out, const FileName& content);
void writeKeyContent(TextOut& out, const PathPoint& content);
void writeKeyContent(TextOut& out, const SmoothPathPoint& content);

bool readKeyContent(TextScanner& scanner, bool& content);
bool readKeyContent(TextScanner& scanner, std::int32_t& content);
bool readKeyContent(TextScanner& scanner, float& content);
bool readKeyContent(TextScanner& scanner, double& content);
bool readKeyContent(TextScanner& scanner, IntegerPair& content);
bool readKeyContent(TextScanner& scanner, DoublePair& content);
bool readKeyContent(TextScanner& scanner, Colour& content);
bool readKeyContent(TextScanner& scanner, FileName& content);
bool readKeyContent(TextScanner& scanner, PathPoint& content);
bool readKeyContent(TextScanner& scanner, SmoothPathPoint& content);  // a smooth one has its handles on its point

}  // namespace chalkpane
