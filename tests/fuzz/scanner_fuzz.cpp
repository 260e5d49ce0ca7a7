#include "chalkpane/parameters/text/text_scanner.h"
#include "tests/fuzz/fuzz_input.h"

// The reader of the text form of values. The first byte chooses its settings, the text says which token is asked for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size == 0) return 0;
    chalkpane::TextScanner scanner(fuzz::TextOf(bytes + 1, size - 1));
    scanner.setEscapes((bytes[0] & 1U) != 0);
    scanner.setConvertText((bytes[0] & 2U) != 0);
    scanner.setPathFlavour(static_cast<chalkpane::PathFlavour>((bytes[0] >> 2U) % 3U));
    if ((bytes[0] & 0x40U) != 0) scanner.setExtraIdentifierStart('$');
    bool truth = false;
    double real = 0.0;
    std::int32_t integer = 0;
    std::string text;
    while (!scanner.isAtEnd() && !scanner.isMalformed()) {
        const bool isRead = scanner.readBoolean(truth) || scanner.readInteger(integer) || scanner.readReal(real) ||
                            scanner.expectPoint() || scanner.expectIdentifier("name") || scanner.readFileName(text) ||
                            scanner.readString(text);
        bool isPunctuation = false;
        for (int character = 1; !isRead && !isPunctuation && character < 256; ++character)
            isPunctuation = scanner.expectPunctuation(static_cast<char>(character));
        if (!isRead && !isPunctuation) break;
    }
    (void)scanner.getLineNumber();
    return 0;
}
