#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "chalkpane/brush/sources/brush_source.h"
#include "chalkpane/parameters/data_set.h"
#include "tests/chalkpane/composite/paste_fixture.h"

namespace chalkpane {

// Values for the parameters of a source, as a brush keeps them; the defaults at first.
class SourceValues {
public:
    using Code = SourceParameter;

    SourceValues() {
        for (const auto& definition : BrushSource::ClassParameters())
            values.addParameter(definition.get(), false, nullptr);
    }
    ParameterValue& operator[](Code code) const { return *values.findValue(BrushSource::ClassParameters().find(code)); }
    SourceValues& Integer(Code code, std::int32_t number) {
        (*this)[code].setInteger(number);
        return *this;
    }
    template <typename Enumeration>
    SourceValues& Choice(Code code, Enumeration choice) {
        (*this)[code].setEnumeration(static_cast<std::uint8_t>(choice));
        return *this;
    }
    SourceValues& Offset(double x, double y) {
        (*this)[SourceParameter::Offset].setDoubleXY(x, y);
        return *this;
    }
    void Give(BrushSource& source) const {
        for (const auto& value : values) source.setParameter(value.get());
    }
    // Sets the source up as a brush does.
    void SetUp(BrushSource& source, Depth depth = Depth::Eight, const Matrix3& matrix = Matrix3()) const {
        source.SetTargetDepth(depth);
        Give(source);
        source.Prepare(0, nullptr, matrix);
    }

private:
    DataSet values;
};

// One dab; without images when there was none.
struct DabImages {
    bool made = false;
    std::unique_ptr<Image> colour;
    std::unique_ptr<Image> mask;
};

inline DabImages DabAt(BrushSource& source, double x, double y, double angle = 0.0) {
    DabImages dab;
    dab.made = source.MakeDab(x, y, angle, dab.colour, dab.mask);
    return dab;
}

inline DabImages MaskDabAt(BrushSource& source, double x, double y, double angle = 0.0) {
    DabImages dab;
    dab.made = source.MakeMaskDab(x, y, angle, dab.colour, dab.mask);
    return dab;
}

// A picture whose pixels tell where they are: blue 10 * x, green 10 * y, red 50, opaque.
inline Image MapPicture(std::int32_t width, std::int32_t height) {
    Image image = Image::Colour(width, height, Depth::Eight, AlphaForm::Straight);
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            auto* pixel = reinterpret_cast<std::uint8_t*>(image.Address(x, y));
            pixel[0] = static_cast<std::uint8_t>(10 * x);
            pixel[1] = static_cast<std::uint8_t>(10 * y);
            pixel[2] = 50;
            pixel[3] = 255;
        }
    }
    return image;
}

}  // namespace chalkpane
