#pragma once

#include <cstddef>
#include <fstream>

#include "telestrator/telestrator_surface.h"

// Three bytes a pixel, red first, over white: the canvas is premultiplied by its alpha.
inline bool WritePixmap(const char* path, const chalkpane::CanvasPixels& pixels) {
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << pixels.width << ' ' << pixels.height << "\n255\n";
    for (std::size_t i = 0; i < pixels.byteSize; i += 4) {
        const int background = 255 - static_cast<int>(pixels.bytes[i + 3]);
        for (std::size_t channel = 0; channel < 3; ++channel) {
            file.put(static_cast<char>(static_cast<int>(pixels.bytes[i + channel]) + background));
        }
    }
    return static_cast<bool>(file.flush());
}
