#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "chalkpane/image/image.h"
#include "picture_io/output_files.h"
#include "picture_io/picture_file.h"

namespace chalkpane::app {

// How pictures are written, as the command line says.
struct PictureLook {
    int quality = 0;         // 1 to 100; 0: the usual
    int compression = -1;    // of a PNG, 0 to 9; -1: the usual
    bool strips = false;     // leaves out what the input's file said besides its pixels
    std::string background;  // a colour; empty: white
};

// Throws cli::Error when a picture of an image of this depth cannot be written under the name.
void RequireDepth(const std::filesystem::path& file, Depth depth);

// Those of the format that a name asks for; "-" is a PNG. Throws cli::Error for a name that is no picture's.
[[nodiscard]] const picture_io::FormatRow& FormatFor(const std::filesystem::path& file);

// How a picture is written. `info` is what the input said; null: there was none.
[[nodiscard]] picture_io::WriteOptions OptionsFor(const PictureLook& look, const picture_io::PictureInfo* info);

// Pictures on their way into a file whose format has no alpha: where they show through they are laid on a background.
class Background {
public:
    // Throws cli::Error for a name that is no picture's and for a background that is no colour.
    Background(std::filesystem::path file, const PictureLook& look);

    // A whole picture, or rows of one.
    [[nodiscard]] picture_io::AnyPicture Behind(picture_io::AnyPicture picture);
    // A line on standard error where any picture was laid on it.
    void Tell() const;

private:
    std::filesystem::path m_file;
    const picture_io::FormatRow& m_format;
    std::string m_name;
    std::array<std::uint8_t, 3> m_colour;
    bool m_isSeen = false;
};

// The bytes of a picture file from an image, which is gone then. Throws std::bad_alloc when the engine has left
// anything out for lack of memory, and cli::Error naming the file.
[[nodiscard]] std::vector<std::uint8_t> EncodeImage(std::unique_ptr<Image> image, const std::filesystem::path& file,
                                                    const PictureLook& look, const picture_io::PictureInfo* info);
// The same among the outputs of a command; "-" is standard output, which gets a PNG.
void StageImage(std::unique_ptr<Image> image, const std::filesystem::path& file, picture_io::OutputFiles& outputs,
                const PictureLook& look = {}, const picture_io::PictureInfo* info = nullptr);

}  // namespace chalkpane::app
