#include "picture_io/picture.h"
#include "tests/fuzz/fuzz_input.h"

// A picture of any format and depth.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const fuzz::MemoryFile file(bytes, size);
    fuzz::TakeOrRefuse([&] { (void)picture_io::ReadAnyPicture(file.Path()); });
    fuzz::TakeOrRefuse([&] { (void)picture_io::ReadPicture(file.Path()); });
    return 0;
}
