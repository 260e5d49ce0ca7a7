// Exported to the modules, which are the only ones to call these.
#pragma GCC visibility push(default)
#include "module/abi/host_api.h"
#pragma GCC visibility pop

#include <algorithm>
#include <array>
#include <new>

#include "kel/host_functions/host_call.h"
#include "kel/scene/gl.h"
#include "kel/scene/image_texture.h"
#include "kel/scene/stored_upload.h"

// Images and textures.
namespace {

using kel::HostCall;
using kel::ImageObject;
using kel::TextureObject;
using kel::WrongUse;

std::size_t BytesPerPixel(std::int32_t format) {
    switch (format) {
        case GL_ALPHA:
            return 1;
        case GL_RGB:
            return 3;
        case GL_RGBA:
            return 4;
        default:
            return 0;
    }
}

bool IsFormat(const HostCall& call, std::int32_t format) {
    if (BytesPerPixel(format) != 0) return true;
    call.Report(WrongUse::BadNumber, "there is no image format " + std::to_string(format));
    return false;
}

bool IsSide(std::int32_t pixels) { return pixels >= 1 && pixels <= picture_io::largestPictureSide; }

struct Region {
    std::int32_t x, y, width, height;
};

// True: there is something to upload, and all of it inside the image.
bool IsUploadable(const HostCall& call, const ImageObject& image, const Region& region) {
    if (region.width == 0 || region.height == 0) return false;
    const bool inside = region.width > 0 && region.height > 0 && region.x >= 0 && region.y >= 0 &&
                        region.width <= image.width && region.height <= image.height &&
                        region.x <= image.width - region.width && region.y <= image.height - region.height;
    if (!inside)
        call.Report(WrongUse::OutsideImage, std::to_string(region.width) + " x " + std::to_string(region.height) +
                                                " pixels at (" + std::to_string(region.x) + ", " +
                                                std::to_string(region.y) + ") lie outside the image of " +
                                                std::to_string(image.width) + " x " + std::to_string(image.height));
    return inside;
}

// Removes an object of the kind by its handle, which then names none.
template <typename T>
void Delete(const char* function, std::int32_t* handle) {
    const HostCall call(function, kel::inInstance);
    if (!call || !call.HasPlace(handle) || call.Find<T>(*handle) == nullptr) return;
    call.State().objects.Remove(*handle);
    call.State().changes.AddEverything();
    *handle = kel::noObject;
}

// Sets a field of a texture to one of the numbers that it can take.
template <std::size_t N>
void SetTextureField(const char* function, std::int32_t id, std::int32_t value, std::int32_t TextureObject::*field,
                     const std::array<std::int32_t, N>& possible) {
    const HostCall call(function, kel::inInstance);
    auto* texture = call ? call.Find<TextureObject>(id) : nullptr;
    if (texture == nullptr) return;
    if (std::ranges::find(possible, value) == possible.end())
        return call.Report(WrongUse::BadNumber, "there is no setting " + std::to_string(value));
    if (texture->*field != value) call.State().changes.AddEverything();
    texture->*field = value;
}

constexpr std::array<std::int32_t, 6> environments{GL_MODULATE, GL_DECAL, GL_BLEND, GL_REPLACE, GL_ADD, GL_COMBINE};
constexpr std::array<std::int32_t, 5> wraps{GL_CLAMP, GL_REPEAT, GL_CLAMP_TO_EDGE, GL_CLAMP_TO_BORDER,
                                            GL_MIRRORED_REPEAT};
constexpr std::array<std::int32_t, 3> qualities{0, 1, 2};
constexpr std::array<std::int32_t, 1> mapTypes{1};
constexpr std::array<std::int32_t, 2> switches{0, 1};

}  // namespace

std::int32_t _api__get_image_objectid(const char* name) {
    const HostCall call(__func__, kel::inInstance);
    if (!call || !call.HasPlace(name)) return kel::noObject;
    const auto& names = call.State().imageNames;
    const auto found = names.find(std::string_view(name));
    return found == names.end() ? kel::noObject : found->second;
}

void _api__get_image_size(std::int32_t id, std::int32_t* width, std::int32_t* height) {
    const HostCall call(__func__, kel::inInstance);
    const auto* image = call ? call.Find<ImageObject>(id) : nullptr;
    if (image == nullptr) return;
    call.Answer(width, image->width);
    call.Answer(height, image->height);
}

void _api__get_image_data(std::int32_t id, void** data) {
    const HostCall call(__func__, kel::inInstance);
    auto* image = call ? call.Find<ImageObject>(id) : nullptr;
    if (image != nullptr) call.Answer(data, static_cast<void*>(image->pixels.data()));
}

void _api__get_image_format(std::int32_t id, std::int32_t* format) {
    const HostCall call(__func__, kel::inInstance);
    const auto* image = call ? call.Find<ImageObject>(id) : nullptr;
    if (image != nullptr) call.Answer(format, static_cast<std::int32_t>(image->format));
}

std::int32_t _api__create_image(std::int32_t /*reserved*/, std::int32_t width, std::int32_t height,
                                std::int32_t format) {
    const HostCall call(__func__, kel::inInstance);
    if (!call || !IsFormat(call, format)) return kel::noObject;
    if (!IsSide(width) || !IsSide(height)) {
        call.Report(WrongUse::BadNumber,
                    "an image of " + std::to_string(width) + " x " + std::to_string(height) + " is not possible");
        return kel::noObject;
    }
    try {
        ImageObject image;
        image.width = width;
        image.height = height;
        image.format = static_cast<std::uint32_t>(format);
        image.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * BytesPerPixel(format));
        return call.State().objects.Add(std::move(image));
    } catch (const std::bad_alloc&) {
        return kel::noObject;
    }
}

void _api__image_delete_image(std::int32_t* image) { Delete<ImageObject>(__func__, image); }

void _api__rebuild_texture(std::int32_t image) {
    const HostCall call(__func__, kel::inInstance);
    auto* found = call ? call.Find<ImageObject>(image) : nullptr;
    if (found == nullptr) return;
    kel::BuildTexture(*found);
    call.State().changes.AddEverything();
}

void _api__image_subtexload(std::int32_t image, std::int32_t /*reserved*/, std::int32_t x, std::int32_t y,
                            std::int32_t width, std::int32_t height, std::int32_t format, std::int32_t type,
                            const void* pixels) {
    const HostCall call(__func__, kel::inInstance);
    auto* found = call ? call.Find<ImageObject>(image) : nullptr;
    if (found == nullptr || !IsUploadable(call, *found, {x, y, width, height}) || !IsFormat(call, format) ||
        !call.HasPlace(static_cast<const std::byte*>(pixels)))
        return;
    if (type != GL_UNSIGNED_BYTE)
        return call.Report(WrongUse::BadNumber, "there is no pixel type " + std::to_string(type));
    if (found->texture.Name() == 0) kel::BuildTexture(*found);
    const kel::FrameArea region{x, y, width, height};
    const kel::FrameArea changed = kel::StoreUpload(*found, region, format, pixels);
    if (changed.IsEmpty()) return;
    const kel::BoundTexture bound(found->texture);
    glTexSubImage2D(GL_TEXTURE_2D, 0, x, y, width, height, static_cast<GLenum>(format), GL_UNSIGNED_BYTE, pixels);
    call.State().changes.AddUpload({image, changed});
}

void _api__texture_create_texture(std::int32_t* texture, std::int32_t image) {
    const HostCall call(__func__, kel::inInstance);
    if (!call || !call.HasPlace(texture)) return;
    *texture = kel::noObject;
    if (call.Find<ImageObject>(image) == nullptr) return;
    TextureObject created;
    created.image = image;
    *texture = call.State().objects.Add(created);
}

void _api__texture_delete_texture(std::int32_t* texture) { Delete<TextureObject>(__func__, texture); }

void _api__set_texture_map_type(std::int32_t texture, std::int32_t value) {
    SetTextureField(__func__, texture, value, &TextureObject::mapType, mapTypes);
}

void _api__set_texture_env_type(std::int32_t texture, std::int32_t value) {
    SetTextureField(__func__, texture, value, &TextureObject::environment, environments);
}

void _api__set_texture_qual_type(std::int32_t texture, std::int32_t value) {
    SetTextureField(__func__, texture, value, &TextureObject::quality, qualities);
}

void _api__set_texture_wrap_type(std::int32_t texture, std::int32_t value) {
    SetTextureField(__func__, texture, value, &TextureObject::wrap, wraps);
}

void _api__texture_set_optimize(std::int32_t texture, std::int32_t value) {
    SetTextureField(__func__, texture, value, &TextureObject::optimise, switches);
}
