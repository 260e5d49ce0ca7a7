#pragma once

#include <doctest/doctest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/kel/pixels.h"
#include "tests/kel/probe.h"

namespace kel::testing {

inline constexpr std::int32_t side = 1024;  // of canvas and window: each pixel of the one falls on a pixel of the other
inline constexpr ColourBytes operatorRed{255, 0, 0, 255};
inline constexpr ColourBytes operatorOrange{250, 120, 30, 255};

// What is seen at the window's pixel is this colour, but for what a soft pen leaves uncovered: a single dab covers less
// than full even in its middle.
inline void CheckSeen(const picture_io::Picture& frame, std::int32_t x, std::int32_t y, const Pixel& colour) {
    constexpr int uncovered = 60;
    CAPTURE(x);
    CAPTURE(y);
    CHECK_MESSAGE(Difference(frame.At(x, y), colour) <= uncovered, Text(frame.At(x, y)), "is not ", Text(colour));
}

// The real module on a container that fills the window, the picture (or nothing) on it.
class Telestrator {
public:
    explicit Telestrator(std::int32_t textureUnit, const picture_io::Picture* base = nullptr,
                         const picture_io::Picture* behind = nullptr)
        : host({side, side}) {
        host.SetCamera(CameraInFront());
        if (behind != nullptr) host.SetPicture(host.AddContainer({}), *behind);
        container = host.AddContainer({});
        if (base != nullptr) host.SetPicture(container, *base);
        host.Attach(container, host.LoadModule(CHALKPANE_MODULE),
                    {{"TexUnit", textureUnit}, {"BrushWidth", 30}, {"BrushColor", operatorRed}});
        host.RunField();
    }

    // A stroke along the points, one a field.
    void Draw(const std::vector<std::array<std::int32_t, 2>>& points) {
        Queue(PointerKind::Press, points.front());
        for (const auto& point : points) Queue(PointerKind::Move, point);
        Queue(PointerKind::Release, points.back());
    }
    void Set(const std::string& name, const ParameterValue& value) {
        host.SetParameter(container, name, value);
        host.RunField();
    }
    void Push(const std::string& name) {
        host.PushButton(container, name);
        host.RunField();
    }
    void CheckSeen(std::int32_t x, std::int32_t y, const Pixel& colour) const {
        kel::testing::CheckSeen(host.ReadFrame(), x, y, colour);
    }

    Host host;
    ObjectId container = noObject;

private:
    void Queue(PointerKind kind, const std::array<std::int32_t, 2>& at) {
        host.QueuePointer(kind, at[0], at[1]);
        host.RunField();
    }
};

// All there is of coverage: straight and bent strokes, thick and thin, over one another, and erased again.
inline void Scribble(Telestrator& telestrator) {
    telestrator.Draw({{100, 100}, {500, 140}, {900, 400}, {500, 900}});
    telestrator.Set("BrushColor", operatorOrange);
    telestrator.Set("BrushWidth", 4);
    telestrator.Draw({{120, 900}, {300, 200}, {700, 500}, {1020, 20}});
    telestrator.Set("BrushType", 1);
    telestrator.Set("EraserWidth", 21);
    telestrator.Draw({{200, 50}, {600, 700}});
}

}  // namespace kel::testing
