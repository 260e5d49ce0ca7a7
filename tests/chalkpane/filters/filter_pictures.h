#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <stdexcept>
#include <string_view>

#include "chalkpane/filters/filter.h"
#include "chalkpane/image/image.h"
#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/parameter_def.h"

namespace chalkpane::test {

// A picture of random channels, a fifth of them at the ends of the scale. Reproducible by its seed.
inline Image NoisePicture(const Rect& bounds, PixelType type, Depth depth, AlphaForm form, unsigned seed) {
    Image image(bounds, type, depth, form);
    std::mt19937 random(seed);
    const std::uint32_t full = depth == Depth::Eight ? 255 : 16383;
    const auto channel = [&] {
        const auto draw = random();
        return draw % 10 == 0 ? 0 : (draw % 10 == 1 ? full : random() % (full + 1));
    };
    for (std::int32_t y = image.y0; y <= image.y1; ++y) {
        if (depth == Depth::Eight)
            for (auto& value : image.Row8(y)) value = static_cast<std::uint8_t>(channel());
        else
            for (auto& value : image.Row14(y)) value = static_cast<std::uint16_t>(channel());
    }
    if (form == AlphaForm::Premultiplied && type != PixelType::Mask) image.Premultiply(image);
    return image;
}

// Same bounds, format and channels.
inline bool SamePixels(const Image& a, const Image& b) {
    if (a.Bounds() != b.Bounds() || a.type != b.type || a.depth != b.depth || a.flag != b.flag) return false;
    for (std::int32_t y = a.y0; y <= a.y1; ++y) {
        if (a.GetDepth() == Depth::Eight) {
            const auto left = a.Row8(y);
            const auto right = b.Row8(y);
            if (!std::equal(left.begin(), left.end(), right.begin(), right.end())) return false;
        } else {
            const auto left = a.Row14(y);
            const auto right = b.Row14(y);
            if (!std::equal(left.begin(), left.end(), right.begin(), right.end())) return false;
        }
    }
    return true;
}

// The way a value set reaches a filter: through the declaration of its parameter and `setParameter`.
template <typename Set>
void SetParameter(Filter& filter, std::string_view label, Set set) {
    if (!filter.m_values) filter.MakeValues(false, nullptr, nullptr);
    for (const auto& value : *filter.m_values) {
        if (value->getParameter()->label != label) continue;
        set(*value);
        filter.setParameter(value.get());
        return;
    }
    throw std::runtime_error("no such parameter");
}

inline void SetNumber(Filter& filter, std::string_view label, double number) {
    SetParameter(filter, label, [number](ParameterValue& value) {
        switch (value.getParameter()->type) {
            case ParameterType::integer:
                value.setInteger(static_cast<std::int32_t>(number));
                break;
            case ParameterType::boolean:
                value.setBoolean(number != 0.0);
                break;
            case ParameterType::enumeration:
                value.setEnumeration(static_cast<std::uint8_t>(number));
                break;
            case ParameterType::real:
                value.setDouble(number);
                break;
            default:
                value.setFloat(static_cast<float>(number));
        }
    });
}

inline std::unique_ptr<Image> Applied(Filter& filter, const Image& source, const Rect* region = nullptr,
                                      bool expand = false) {
    std::unique_ptr<Image> result;
    filter.Apply(source, result, false, region, expand);
    return result;
}

}  // namespace chalkpane::test
