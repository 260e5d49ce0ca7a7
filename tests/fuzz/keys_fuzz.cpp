#include "kel/workspace/keys_table.h"
#include "tests/fuzz/fuzz_input.h"

// What the keys of the window do.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz::TakeOrRefuse([&] { (void)kel::ParseKeys(fuzz::TextOf(bytes, size), "fuzz.json"); });
    return 0;
}
