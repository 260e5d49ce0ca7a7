#pragma once

#include <functional>
#include <memory>
#include <string>

#include "chalkpane/image/image.h"

namespace chalkpane {

// The engine reads no picture files itself: a program that can sets a loader, and brushes whose mask or cutout is a
// file ask for it here.
//
// A loader answers null when the file cannot be read. It gives a picture of either depth with its lower left pixel at
// (0, 0): four channels, or one for a file that is to serve as a mask, such as a picture in greys.
using ImageFileLoader = std::function<std::unique_ptr<Image>(const std::string& name)>;

// An empty loader takes the last one away. Not while anyone paints.
void SetImageFileLoader(ImageFileLoader loader);

// Null when there is no loader, no name, no such file, or no memory for it.
[[nodiscard]] std::unique_ptr<Image> LoadImageFile(const std::string& name);

}  // namespace chalkpane
