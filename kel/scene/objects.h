#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "kel/scene/canvas_substitute.h"
#include "kel/scene/frame_buffer.h"
#include "kel/scene/gl_call.h"
#include "kel/scene/gl_context.h"
#include "kel/scene/gl_texture.h"
#include "kel/scene/instance.h"
#include "kel/scene/instance_history.h"
#include "kel/scene/scene.h"
#include "picture_io/picture.h"

namespace kel {

struct SceneObject {
    static constexpr std::string_view kind = "scene";
    ObjectId camera = noObject;  // the current one
};

struct CameraObject {
    static constexpr std::string_view kind = "camera";
    Camera camera;
};

// Pixels in main memory and the texture that shows them. Rows run from the bottom, as OpenGL counts them.
struct ImageObject {
    static constexpr std::string_view kind = "image";
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint32_t format = 0;          // GL_ALPHA, GL_RGB or GL_RGBA; one byte a channel
    std::vector<std::uint8_t> pixels;  // without gaps between rows
    std::vector<std::uint8_t> shown;   // what the texture holds, where that is known: of modules' images in GL_RGBA
    FrameArea inked;                   // around all of that which is not clear black
    bool isOpaque = false;             // of the host's own pictures: known to be so everywhere
    bool mipmaps = false;              // the host's own pictures: smooth also when seen small or at a slant
    bool areMipmapsStale = false;      // they are made when they are first seen
    GlTexture texture;                 // none until the image is built
};

// How an image is shown. The numbers are OpenGL's, but for the quality.
struct TextureObject {
    static constexpr std::string_view kind = "texture";
    ObjectId image = noObject;
    std::int32_t environment = 0x2100;  // GL_MODULATE
    std::int32_t wrap = 0x812F;         // GL_CLAMP_TO_EDGE
    std::int32_t quality = 2;           // 0: nearest pixel; above: between the pixels
    std::int32_t mapType = 1;           // 1: by the container's coordinates, the one way there is
    std::int32_t optimise = 0;          // a hint that software has no use for
};

struct ContainerObject {
    static constexpr std::string_view kind = "container";
    Placement placement;
    ObjectId picture = noObject;  // texture on unit 0 where the module has put none
    std::array<ObjectId, textureUnits> multiTextures = NoTextures();
    std::unique_ptr<Instance> instance;      // null: no plug-in
    InstanceHistory history;                 // what the instance was given
    CanvasSubstitute* substitute = nullptr;  // borrowed; null: what the module draws is shown
    RenderCalls calls;                       // of the last render
    RenderCalls drawnCalls;                  // of the last one that was drawn

    static constexpr std::array<ObjectId, textureUnits> NoTextures() {
        std::array<ObjectId, textureUnits> none{};
        none.fill(noObject);
        return none;
    }
    // What the unit shows; noObject: nothing.
    [[nodiscard]] ObjectId TextureOn(std::size_t unit) const {
        return unit == 0 && multiTextures[0] == noObject ? picture : multiTextures[unit];
    }
};

// All that has an id. Ids ascend from 1 and are never used again.
class Objects {
public:
    template <typename T>
    ObjectId Add(T object) {
        m_objects.emplace(++m_last, std::move(object));
        return m_last;
    }
    // Null: there is no such object, or it is of another kind. Stays where it is until it is removed.
    template <typename T>
    [[nodiscard]] T* Find(ObjectId id) {
        const auto found = m_objects.find(id);
        return found == m_objects.end() ? nullptr : std::get_if<T>(&found->second);
    }
    [[nodiscard]] bool Contains(ObjectId id) const { return m_objects.contains(id); }
    void Remove(ObjectId id) { m_objects.erase(id); }

    // In the order in which they were added; the function may add and remove others.
    template <typename T, typename Function>
    void ForEach(Function function) {
        for (auto at = m_objects.begin(); at != m_objects.end();) {
            const ObjectId id = at->first;
            if (T* object = std::get_if<T>(&at->second)) function(id, *object);
            at = m_objects.upper_bound(id);
        }
    }

private:
    std::map<ObjectId, std::variant<SceneObject, CameraObject, ImageObject, TextureObject, ContainerObject>> m_objects;
    ObjectId m_last = 0;
};

}  // namespace kel
