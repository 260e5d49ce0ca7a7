#include "chalkpane/brush/image_loader.h"

#include <new>
#include <utility>

#include "chalkpane/base/memory_loss.h"

namespace chalkpane {

namespace {

ImageFileLoader& Loader() {
    static ImageFileLoader loader;
    return loader;
}

}  // namespace

void SetImageFileLoader(ImageFileLoader loader) { Loader() = std::move(loader); }

std::unique_ptr<Image> LoadImageFile(const std::string& name) {
    if (name.empty() || !Loader()) return nullptr;
    try {
        return Loader()(name);
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        return nullptr;
    }
}

}  // namespace chalkpane
