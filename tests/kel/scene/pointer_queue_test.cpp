#include "kel/scene/pointer_queue.h"

#include <doctest/doctest.h>

#include <vector>

namespace kel {
namespace {

PointerStep Move(std::int32_t x) { return {PointerKind::Move, x, 0}; }
PointerStep Press(std::int32_t x) { return {PointerKind::Press, x, 0}; }
PointerStep Release(std::int32_t x) { return {PointerKind::Release, x, 0}; }

PointerQueue Waiting(const std::vector<PointerStep>& steps) {
    PointerQueue pointer;
    for (const auto& step : steps) pointer.Add(step);
    return pointer;
}

}  // namespace

TEST_CASE("A field has the last place of the pointer, or one press or release") {
    PointerQueue pointer = Waiting({Move(1), Move(2), Press(3), Move(4), Move(5), Release(6), Move(7)});
    CHECK_EQ(pointer.TakeField(1) == Press(3), true);
    CHECK_EQ(pointer.TakeField(1) == Release(6), true);
    CHECK_EQ(pointer.TakeField(1) == Move(7), true);
    CHECK_EQ(pointer.TakeField(1).has_value(), false);
}

TEST_CASE("Moves that wait are no press and no release") {
    PointerQueue pointer = Waiting({Move(1), Release(2), Move(3)});
    CHECK_EQ(pointer.Buttons(), 1);
    CHECK_EQ(pointer.TakeField() == Release(2), true);
    CHECK_EQ(pointer.Buttons(), 0);
}

TEST_CASE("What waited while the machine was busy is spread over the fields that are due") {
    PointerQueue pointer = Waiting({Move(1), Move(2), Move(3), Move(4), Move(5), Move(6), Move(7)});
    CHECK_EQ(pointer.TakeField(3) == Move(3), true);  // three of seven
    CHECK_EQ(pointer.TakeField(2) == Move(5), true);  // two of four
    CHECK_EQ(pointer.TakeField(1) == Move(7), true);
    CHECK_EQ(pointer.TakeField(1).has_value(), false);
}

}  // namespace kel
