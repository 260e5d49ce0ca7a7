#include "chalkpane/parameters/animation/animated_value.h"
#include "chalkpane/parameters/text/text_scanner.h"
#include "chalkpane/parameters/text/text_sink.h"

namespace chalkpane {

namespace {

void writeHead(TextOut& out, const Key& key) { out << key.time << " " << key.inHandle << " " << key.outHandle << " "; }

}  // namespace

void AnimatedValue::appendText(std::string& out) const {
    for (std::int32_t i = 0; i < keyCount(); ++i) {
        out += '\n';
        appendKeyText(out, i);
    }
}

void AnimatedValue::writeToStream(TextSink& sink) const {
    for (std::int32_t i = 0; i < keyCount(); ++i) {
        sink << "\n";
        writeKeyToStream(sink, i);
    }
}

bool AnimatedValue::readText(TextScanner& scanner) {
    clearKeys();
    bool ended = false;
    while (readKey(scanner, ended)) {
    }
    return ended;
}

void AnimatedValue::appendKeyText(std::string& target, std::int32_t index) const {
    if (!isIndex(index)) return;
    TextOut out(target);
    writeHead(out, *keyAt(index));
    appendValueText(target, *keyAt(index));
}

void AnimatedValue::writeKeyToStream(TextSink& target, std::int32_t index) const {
    if (!isIndex(index)) return;
    TextOut out(target);
    out << "\t\t\t\t";
    writeHead(out, *keyAt(index));
    writeValueToStream(target, *keyAt(index));
}

bool AnimatedValue::readKey(TextScanner& scanner, bool& outEnded) {
    double time = 0.0;
    double inHandle = 0.0;
    double outHandle = 0.0;
    outEnded = false;
    if (!scanner.readReal(time)) {
        outEnded = !scanner.isMalformed();
        return false;
    }
    return scanner.readReal(inHandle) && scanner.readReal(outHandle) &&
           readKeyValue(scanner, time, inHandle, outHandle);
}

}  // namespace chalkpane
