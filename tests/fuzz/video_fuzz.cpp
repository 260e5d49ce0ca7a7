#include "kel/video/video_reader.h"
#include "tests/fuzz/fuzz_input.h"

// A video: its frames are counted, and some are decoded, forwards and backwards.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const fuzz::MemoryFile file(bytes, size);
    fuzz::TakeOrRefuse([&] {
        kel::VideoReader video(file.Path());
        if (std::int64_t{video.Width()} * video.Height() > 512 * 512) return;
        for (const std::int64_t frame : {std::int64_t{0}, std::int64_t{1}, video.FrameCount() - 1, std::int64_t{0}})
            fuzz::TakeOrRefuse([&] { (void)video.ReadFrame(frame); });
    });
    return 0;
}
