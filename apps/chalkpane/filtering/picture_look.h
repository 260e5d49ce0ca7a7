#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "chalkpane/image/image.h"
#include "picture_io/output_files.h"
#include "picture_io/picture_file.h"

namespace chalkpane::app {

// How pictures are written, as the command line says.
struct PictureLook {
    int quality = 0;         // 1 to 100; 0: the usual
    bool strips = false;     // leaves out what the input's file said besides its pixels
    std::string background;  // a colour; empty: white
};

// Throws cli::Error when a picture of an image of this depth cannot be written under the name.
void RequireDepth(const std::filesystem::path& file, std::int32_t depth);

// A picture ready for a file of this name, and how it is written there. Where the format has no alpha and the picture
// shows through, it is laid on the background, and a line on standard error says so. `info` is what the input said.
// Throws cli::Error for a name that is no picture's and for a background that is no colour.
struct LookedAfter {
    picture_io::AnyPicture picture;
    picture_io::WriteOptions options;
};
[[nodiscard]] LookedAfter LookAfter(picture_io::AnyPicture picture, const std::filesystem::path& file,
                                    const PictureLook& look, const picture_io::PictureInfo* info);

// The bytes of a picture file from an image, which is gone then. Throws std::bad_alloc when the engine has left
// anything out for lack of memory, and cli::Error naming the file.
[[nodiscard]] std::vector<std::uint8_t> EncodeImage(std::unique_ptr<Image> image, const std::filesystem::path& file,
                                                    const PictureLook& look, const picture_io::PictureInfo* info);
// The same among the outputs of a command; "-" is standard output, which gets a PNG.
void StageImage(std::unique_ptr<Image> image, const std::filesystem::path& file, picture_io::OutputFiles& outputs,
                const PictureLook& look = {}, const picture_io::PictureInfo* info = nullptr);

}  // namespace chalkpane::app
