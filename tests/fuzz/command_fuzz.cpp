#include "kel/control/control_command.h"
#include "kel/control/control_words.h"
#include "tests/fuzz/fuzz_input.h"

// A line that somebody outside sends; its words written again have to be read as the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string line = fuzz::TextOf(bytes, size);
    fuzz::TakeOrRefuse([&] {
        const std::vector<std::string> words = kel::SplitControlWords(line);
        std::string again;
        for (const std::string& word : words) again += kel::ControlWordText(word) + ' ';
        if (again.size() <= kel::longestControlLine && kel::SplitControlWords(again) != words) std::abort();
    });
    fuzz::TakeOrRefuse([&] { (void)kel::ParseControlCommand(line); });
    return 0;
}
