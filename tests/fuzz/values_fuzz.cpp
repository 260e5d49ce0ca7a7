#include "apps/chalkpane/values/value_parsing.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

// A text that is told of what was read gives the same again.
void ReadAndTell(const std::string& text) {
    using namespace chalkpane::app;
    fuzz::TakeOrRefuse([&] { (void)ParseInteger(text); });
    fuzz::TakeOrRefuse([&] {
        const double number = ParseNumber(text);
        if (ParseNumber(TextOfNumber(number)) != number) std::abort();
    });
    fuzz::TakeOrRefuse([&] { (void)ParseBoolean(text); });
    fuzz::TakeOrRefuse([&] { (void)ParseNumbers(text, 2); });
    fuzz::TakeOrRefuse([&] { (void)ParseIntegers(text, 4); });
    fuzz::TakeOrRefuse([&] { (void)ParseColour(TextOfColour(ParseColour(text).colour)); });
    fuzz::TakeOrRefuse([&] {
        const std::string told = TextOfGraph(ParseGraph(text));
        if (TextOfGraph(ParseGraph(told)) != told) std::abort();
    });
    fuzz::TakeOrRefuse([&] { (void)TextOfColourSpline(ParseColourSpline(text)); });
}

}  // namespace

// What the command line and files give as the value of a setting.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    ReadAndTell(fuzz::TextOf(bytes, size));
    return 0;
}
