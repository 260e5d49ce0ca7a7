#include "chalkpane/parameters/animation/animated_file_name.h"

#include "chalkpane/parameters/string_value.h"

namespace chalkpane {

ValuePointer AnimatedFileName::clone() const { return makeValue<AnimatedFileName>(parameter, undoable, clock); }

FileNameBlend AnimatedFileName::blendAt(std::int32_t frame) const {
    FileNameBlend blend;
    const KeySpan span = findKeySpan(frame);
    if (span.exact) {
        const Key& key = *keyAt(span.index);
        blend.nameA = storedAt(span.index);
        blend.timeA = key.inHandle;
        blend.timeB = key.outHandle;
    } else if (span.between) {
        const std::int32_t left = span.index;
        const std::int32_t right = left + 1;
        const std::int32_t before = left == 0 ? left : left - 1;
        const std::int32_t after = right + 1 < keyCount() ? right + 1 : right;
        blend.nameA = storedAt(left);
        blend.nameB = storedAt(right);
        blend.weight = evaluateKeySegment(frameOf(left), frameOf(right), frame, keyAt(left)->outHandle, 1.0,
                                          -1.0 / framesBetween(before, right), keyAt(right)->inHandle, 0.0,
                                          -1.0 / framesBetween(left, after));
    } else if (const ParameterValue* above = getParent()) {
        FileNameValue::ask(*above, blend.nameA);
    }
    return blend;
}

void AnimatedFileName::evaluate(std::int32_t frame, FileName& out) const { out = blendAt(frame).nameA; }

}  // namespace chalkpane
