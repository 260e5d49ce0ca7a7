#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "chalkpane/image/image.h"

namespace chalkpane::app {

// The picture files that brushes read, each read once; and what the engine asks when a brush's parameter names a file.
//
// A file serves in two ways. As colours it is four channels, not premultiplied. As a mask it is one channel: how light
// a pixel is, times its alpha, so that white on black and white on nothing are the same mask. Either has its lower left
// pixel at (0, 0).
//
// There is one at a time: it is the engine's loader of image files from its making to its end. The images belong to it.
class PictureFiles {
public:
    using ReadNotification = std::function<void(const std::filesystem::path& file)>;

    // depth: of all images
    // beforeReading: called with each file once, before it is opened; what it throws comes out of the readers; may be
    // empty
    explicit PictureFiles(Depth depth, ReadNotification beforeReading = {});
    ~PictureFiles();
    PictureFiles(const PictureFiles&) = delete;
    PictureFiles& operator=(const PictureFiles&) = delete;
    PictureFiles(PictureFiles&&) = delete;
    PictureFiles& operator=(PictureFiles&&) = delete;

    [[nodiscard]] Depth GetDepth() const { return m_depth; }
    // Throw cli::Error that begins with `place`, where the file is named.
    [[nodiscard]] const Image& Colours(const std::filesystem::path& file, const std::string& place);
    [[nodiscard]] const Image& Mask(const std::filesystem::path& file, const std::string& place);
    // The file that the engine calls by this name, in which slashes are backslashes.
    [[nodiscard]] std::filesystem::path FileOf(const std::string& engineName) const;

private:
    using Images = std::map<std::filesystem::path, std::unique_ptr<Image>>;

    void Remember(const std::filesystem::path& file);
    [[nodiscard]] std::unique_ptr<Image> LoadMask(const std::string& engineName);

    Depth m_depth;
    ReadNotification m_beforeReading;
    Images m_colours;
    Images m_masks;
    std::map<std::string, std::filesystem::path> m_files;  // by the engine's names
};

}  // namespace chalkpane::app
