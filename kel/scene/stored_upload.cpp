#include "kel/scene/stored_upload.h"

#include <algorithm>
#include <cstring>

#include "kel/scene/gl.h"
#include "kel/scene/inked_area.h"
#include "kel/scene/scene_changes.h"

namespace kel {
namespace {

constexpr std::size_t uploadPixelBytes = 4;

std::size_t PixelStorage(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return static_cast<std::size_t>(value);
}

// Where the rows of an upload begin, as OpenGL will read them.
class UploadRows {
public:
    UploadRows(const void* pixels, std::int32_t width) {
        const std::size_t length = PixelStorage(GL_UNPACK_ROW_LENGTH);
        const std::size_t alignment = std::max<std::size_t>(PixelStorage(GL_UNPACK_ALIGNMENT), 1);
        const std::size_t bytes = (length > 0 ? length : static_cast<std::size_t>(width)) * uploadPixelBytes;
        m_stride = (bytes + alignment - 1) / alignment * alignment;
        m_first = static_cast<const std::uint8_t*>(pixels) + PixelStorage(GL_UNPACK_SKIP_ROWS) * m_stride +
                  PixelStorage(GL_UNPACK_SKIP_PIXELS) * uploadPixelBytes;
    }
    [[nodiscard]] const std::uint8_t* Row(std::int32_t row) const {
        return m_first + static_cast<std::size_t>(row) * m_stride;
    }

private:
    const std::uint8_t* m_first = nullptr;
    std::size_t m_stride = 0;
};

}  // namespace

FrameArea StoreUpload(ImageObject& image, const FrameArea& region, std::int32_t format, const void* pixels) {
    if (format != GL_RGBA) image.shown.clear();
    if (image.shown.empty()) return region;
    const UploadRows rows(pixels, region.width);
    const std::size_t bytes = static_cast<std::size_t>(region.width) * uploadPixelBytes;
    std::int32_t first = region.height;
    std::int32_t last = -1;
    for (std::int32_t row = 0; row < region.height; ++row) {
        const std::size_t place = static_cast<std::size_t>(region.y + row) * static_cast<std::size_t>(image.width) +
                                  static_cast<std::size_t>(region.x);
        std::uint8_t* const shown = image.shown.data() + place * uploadPixelBytes;
        if (std::memcmp(shown, rows.Row(row), bytes) == 0) continue;
        std::memcpy(shown, rows.Row(row), bytes);
        first = std::min(first, row);
        last = row;
    }
    const FrameArea changed{region.x, region.y + first, region.width, last - first + 1};
    const bool isWhole = region.width == image.width && region.height == image.height;
    if (!changed.IsEmpty()) image.inked = isWhole ? BoxAroundInk(image) : Union(image.inked, changed);
    return changed;
}

}  // namespace kel
