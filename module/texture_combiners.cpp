#include "module/texture_combiners.h"

#include <array>

#include "module/abi/host_api.h"
#include "module/gl_constants.h"

namespace chalkpane {
namespace {

constexpr std::uint32_t leftAlone = 0;

// A row of the table: one setting of the texture environment for each combiner, in the order of `Combiner`.
struct CombinerSetting {
    std::uint32_t name;
    std::array<std::uint32_t, 4> values;
};

constexpr std::array combinerSettings{
    CombinerSetting{gl::textureEnvironmentMode, {gl::combine, gl::combine, gl::combine, gl::combine}},
    CombinerSetting{gl::combineRgb, {gl::interpolate, gl::modulate, gl::modulate, gl::add}},
    CombinerSetting{gl::combineAlpha, {gl::add, gl::modulate, gl::add, gl::replace}},
    CombinerSetting{gl::source0Rgb, {gl::texture, gl::texture, gl::previous, gl::previous}},
    CombinerSetting{gl::source0Alpha, {gl::texture, gl::texture, gl::previous, gl::previous}},
    CombinerSetting{gl::source1Rgb, {gl::previous, gl::previous, gl::texture, gl::texture}},
    CombinerSetting{gl::source1Alpha, {gl::previous, gl::previous, gl::texture, gl::texture}},
    CombinerSetting{gl::source2Rgb, {gl::texture, leftAlone, leftAlone, leftAlone}},
    CombinerSetting{gl::operand0Rgb, {gl::sourceColour, gl::sourceColour, gl::sourceColour, gl::sourceColour}},
    CombinerSetting{gl::operand0Alpha, {gl::sourceAlpha, gl::sourceAlpha, gl::sourceAlpha, gl::sourceAlpha}},
    CombinerSetting{gl::operand1Rgb, {gl::sourceColour, gl::sourceAlpha, gl::oneMinusSourceAlpha, gl::sourceColour}},
    CombinerSetting{gl::operand1Alpha, {gl::sourceAlpha, gl::sourceAlpha, gl::sourceAlpha, gl::sourceAlpha}},
    CombinerSetting{gl::operand2Rgb, {gl::sourceAlpha, leftAlone, leftAlone, leftAlone}},
    CombinerSetting{gl::operand2Alpha, {gl::sourceAlpha, leftAlone, leftAlone, leftAlone}},
};

}  // namespace

void SetCombiner(Combiner combiner) {
    for (const CombinerSetting& setting : combinerSettings) {
        const std::uint32_t value = setting.values[static_cast<std::size_t>(combiner)];
        if (value != leftAlone) kelGL_glTexEnvi(gl::textureEnvironment, setting.name, gl::Word(value));
    }
}

}  // namespace chalkpane
