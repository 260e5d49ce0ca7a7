#pragma once

#include <cstdint>
#include <span>

#include "telestrator/telestrator_surface.h"

namespace chalkpane {

struct FadeSettings {
    std::int32_t waitFields = -1;  // from when the operator last stopped drawing; below 0: ink does not fade
    std::int32_t overFields = 50;  // so many fields later it is gone; below 1: at once
};

// When ink leaves: all of it together, some time after the operator last drew or changed something. What is drawn
// during the wait, or while it fades, keeps all of it.
class InkFade {
public:
    // The operator does something: the wait begins anew.
    void Restart() { fields_ = 0; }
    // A field passes with ink on the canvas and nobody drawing. True: with it the ink is gone.
    bool PassField(const FadeSettings& settings);
    // By what all ink is to be multiplied at the output: 1.0 until the wait is over, then down to 0.0 in equal steps.
    [[nodiscard]] double Factor(const FadeSettings& settings) const;

private:
    std::int32_t fields_ = 0;
};

// The canvas as it is put out: every byte times the factor, rounded to the nearest; the canvas itself keeps its bytes.
//   out  as large as the canvas
void WriteFaded(const CanvasPixels& canvas, double factor, std::span<std::byte> out);

}  // namespace chalkpane
