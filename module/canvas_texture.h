#pragma once

#include <cstdint>

#include "module/plugin_instance.h"

namespace chalkpane {

// The way of the canvas into the picture: host image and texture, uploads, combiners and blending.

// Makes both surfaces, the undo ring, the host's image and texture and, where RecoShapes asks for them, the recognition
// buffers; reads the container's box, so that the first picture lies right before any pointer event.
// False: memory ran out; all that stood is freed again, and the next call tries anew.
bool CreateCanvas(PluginInstance& instance) noexcept;

// Binds the canvas to TexUnit and, above 0, to the unit after it.
void ApplyTextureUnit(PluginInstance& instance);

// The texture unit after `unit`.
[[nodiscard]] std::int32_t NextUnit(std::int32_t unit);

// Loads what changed into the host's texture: the whole canvas when `fullUploadPending`, else `dirtyRect`, which stays.
//   pixels  the canvas, top row first, four bytes a pixel
void UploadCanvas(PluginInstance& instance, const std::byte* pixels, std::int32_t width, std::int32_t height);

// True: there is a canvas.
bool PreRender(PluginInstance& instance);
void PostRender(PluginInstance& instance);

}  // namespace chalkpane
