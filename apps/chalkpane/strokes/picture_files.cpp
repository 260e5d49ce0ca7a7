#include "apps/chalkpane/strokes/picture_files.h"

#include <algorithm>
#include <utility>

#include "apps/chalkpane/filtering/picture_image.h"
#include "chalkpane/brush/image_loader.h"
#include "chalkpane/parameters/file_name.h"
#include "cli/error.h"

namespace chalkpane::app {
namespace {

using cli::Error;

template <typename Read>
const Image& ReadOnce(std::map<std::filesystem::path, std::unique_ptr<Image>>& images,
                      const std::filesystem::path& file, const std::string& place, Read read) {
    auto& image = images[file];
    try {
        if (!image) image = read();
    } catch (const Error& error) {
        throw Error(place, {}, error.what());
    }
    return *image;
}

}  // namespace

// Colours are handed to a brush; masks are what it asks for by name.
PictureFiles::PictureFiles(Depth depth, ReadNotification beforeReading)
    : m_depth(depth), m_beforeReading(std::move(beforeReading)) {
    SetImageFileLoader([this](const std::string& name) { return LoadMask(name); });
}

PictureFiles::~PictureFiles() { SetImageFileLoader({}); }

const Image& PictureFiles::Colours(const std::filesystem::path& file, const std::string& place) {
    Remember(file);
    return ReadOnce(m_colours, file, place, [&] { return ReadImage(file, m_depth, AlphaForm::Straight); });
}

const Image& PictureFiles::Mask(const std::filesystem::path& file, const std::string& place) {
    Remember(file);
    return ReadOnce(m_masks, file, place, [&] { return MaskOf(picture_io::ReadAnyPicture(file), m_depth); });
}

void PictureFiles::Remember(const std::filesystem::path& file) {
    const bool isNew = m_files.insert_or_assign(FileName(file.string()).string(), file).second;
    if (isNew && m_beforeReading) m_beforeReading(file);
}

std::filesystem::path PictureFiles::FileOf(const std::string& engineName) const {
    if (const auto known = m_files.find(engineName); known != m_files.end()) return known->second;
    std::string name = engineName;
    std::ranges::replace(name, '\\', '/');
    return name;
}

std::unique_ptr<Image> PictureFiles::LoadMask(const std::string& engineName) {
    try {
        return std::make_unique<Image>(Mask(FileOf(engineName), engineName));
    } catch (const Error&) {
        return nullptr;
    }
}

}  // namespace chalkpane::app
