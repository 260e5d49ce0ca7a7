#include <doctest/doctest.h>

#include <functional>
#include <random>

#include "chalkpane/parameters/animation/animated_file_name.h"
#include "chalkpane/parameters/animation/animated_map_xy.h"
#include "chalkpane/parameters/animation/animated_position.h"
#include "tests/chalkpane/parameters/frame_clock.h"
#include "tests/chalkpane/parameters/recording_undo_stack.h"

namespace {

using namespace chalkpane;

#define ALL_ANIMATED                                                                                              \
    AnimatedDouble, AnimatedFloat, AnimatedInt, AnimatedBoolean, AnimatedIntXY, AnimatedDoubleXY, AnimatedColour, \
        AnimatedLogDouble, AnimatedFileName, AnimatedMapXY, AnimatedPosition, AnimatedPosition3d

const FrameClock frames;

// A key of whatever type the value has.
void AddKey(AnimatedValue& value, std::int32_t frame, std::int32_t number) {
    value.addKeyDouble(frame, number);
    value.addKeyDoubleXY(frame, number, number * 2.0);
    value.addKeyIntegerXY(frame, number, number * 2);
    value.addKeyColour(frame, {static_cast<std::uint16_t>(number), 1, 2});
    value.addKeyBoolean(frame, number % 2 == 0);
    if (auto* whole = dynamic_cast<AnimatedInt*>(&value)) whole->setIntegerXY(frame, number);
    if (auto* name = dynamic_cast<AnimatedFileName*>(&value)) name->addKey(frame, FileName(std::to_string(number)));
}

// All there is of the keys.
std::string Snapshot(const AnimatedValue& value) {
    std::string text;
    value.appendText(text);
    return text;
}

TEST_CASE_TEMPLATE("Adding a key is undone and redone", Value, ALL_ANIMATED) {
    Value value(nullptr, true, &frames);
    RecordingUndoStack stack;
    AddKey(value, 10, 4);
    REQUIRE_EQ(value.keyCount(), 1);
    const std::string one = Snapshot(value);
    stack.undoAll();
    CHECK_EQ(value.keyCount(), 0);
    stack.redoAll();
    CHECK_EQ(Snapshot(value), one);
    CHECK_EQ(stack.count<UndoAnimatedValueData>(), 1);
    CHECK_EQ(stack.count<UndoConstructorData<Key>>(), 1);
}

TEST_CASE_TEMPLATE("Replacing a key is undone and redone", Value, ALL_ANIMATED) {
    Value value(nullptr, true, &frames);
    RecordingUndoStack stack;
    AddKey(value, 10, 4);
    const std::string before = Snapshot(value);
    const std::size_t steps = stack.size();
    AddKey(value, 10, 7);
    const std::string after = Snapshot(value);
    CHECK_NE(before, after);
    CHECK_EQ(stack.count<UndoDestructorData<Key>>(), 1);
    while (stack.size() > steps) stack.undo();
    CHECK_EQ(Snapshot(value), before);
    stack.redoAll();
    CHECK_EQ(Snapshot(value), after);
}

TEST_CASE_TEMPLATE("A value that does not record leaves the stack empty", Value, ALL_ANIMATED) {
    Value value(nullptr, false, &frames);
    const RecordingUndoStack stack;
    AddKey(value, 10, 4);
    AddKey(value, 20, 5);
    AddKey(value, 20, 6);
    value.keyAt(0)->setTime(30.0);
    value.resortKey(0);
    value.removeKey(0);
    value.clearKeys();
    CHECK_EQ(stack.size(), 0);
}

TEST_CASE_TEMPLATE("A recording value without a stack behaves the same and leaks nothing", Value, ALL_ANIMATED) {
    Value value(nullptr, true, &frames);
    AddKey(value, 10, 4);
    AddKey(value, 10, 5);
    AddKey(value, 20, 5);
    value.removeKey(0);
    value.clearKeys();
    AddKey(value, 20, 5);
    CHECK_EQ(value.keyCount(), 1);
}

TEST_CASE_TEMPLATE("A clone is empty and of the same class; copied keys are the same keys anew", Value, ALL_ANIMATED) {
    Value value(nullptr, false, &frames);
    AddKey(value, 10, 4);
    AddKey(value, 20, 6);
    value.keyAt(0)->setHandles(0.25, -0.5);
    const ValuePointer made = value.clone();
    REQUIRE(made != nullptr);
    auto& copy = dynamic_cast<Value&>(*made);
    CHECK(typeid(copy) == typeid(value));
    CHECK_EQ(copy.keyCount(), 0);
    AddKey(copy, 99, 1);
    copy.copyKeysFrom(value);
    CHECK_EQ(Snapshot(copy), Snapshot(value));
    CHECK_NE(copy.keyAt(0), value.keyAt(0));
    copy.copyKeysFrom(copy);
    CHECK_EQ(copy.keyCount(), 2);
    AnimatedDouble number(nullptr, false, &frames);
    AnimatedBoolean flag(nullptr, false, &frames);
    copy.copyKeysFrom(flag);
    copy.copyKeysFrom(number);
    CHECK_EQ(copy.keyCount(), (std::is_same_v<Value, AnimatedDouble> || std::is_same_v<Value, AnimatedBoolean>)
                                  ? 0
                                  : 2);  // an empty list of the same class is copied
}

// Random edits, each of them a number of records. After each the state is kept; undo and redo must pass through the
// same states, and edits after an undo drop what was undone.
TEST_CASE_TEMPLATE("Any sequence of edits, undo and redo passes the same states", Value, ALL_ANIMATED) {
    constexpr unsigned seed = 814;
    CAPTURE(seed);
    std::mt19937 random(seed);
    const auto below = [&random](std::int32_t limit) {
        return static_cast<std::int32_t>(random() % static_cast<unsigned>(limit));
    };
    const FrameClock oldClock(2.0);
    Value value(nullptr, true, &frames);
    Value other(nullptr, false, &frames);
    for (const std::int32_t frame : {3, 5, 8}) AddKey(other, frame, frame);
    std::string text;
    other.appendText(text);
    RecordingUndoStack stack;

    const std::function<void()> edits[] = {
        [&] { AddKey(value, below(12), below(100)); },
        [&] { AddKey(value, below(12), below(100)); },
        [&] { value.addKeyAtFrame(below(12)); },
        [&] { value.removeKey(below(5)); },
        [&] {
            const std::int32_t index = below(5);
            if (index >= value.keyCount()) return;
            value.keyAt(index)->setTime(below(12));
            value.resortKey(index);
        },
        [&] {
            if (value.keyCount() > 0) value.keyAt(below(value.keyCount()))->setHandles(0.5, -0.25 * below(4));
        },
        [&] { value.removeCoincidentKeys(below(5)); },
        [&] { value.setNormalisedKeyValue(below(5), below(50), below(2)); },
        [&] {
            if (below(4) == 0) value.clearKeys();
        },
        [&] {
            if (below(4) == 0) value.copyKeysFrom(other);
        },
        [&] {
            if (below(4) == 0) value.retimeKeys(oldClock);
        },
        [&] {
            TextScanner scanner(text);
            if (below(4) == 0) value.readText(scanner);
        },
        [&] {
            if constexpr (std::is_same_v<Value, AnimatedPosition3d>) {
                value.setSmooth(below(5));
                value.setCorner(below(5));
            }
        },
    };

    struct State {
        std::size_t steps;
        std::string keys;
    };
    std::vector<State> states = {{0, Snapshot(value)}};
    for (int round = 0; round < 300; ++round) {
        CAPTURE(round);
        if (below(4) != 0) {
            edits[static_cast<std::size_t>(below(static_cast<std::int32_t>(std::size(edits))))]();
            if (stack.size() == states.back().steps) {
                REQUIRE_EQ(Snapshot(value), states.back().keys);  // nothing recorded, nothing changed
            } else {
                states.push_back({stack.size(), Snapshot(value)});
            }
            continue;
        }
        const auto back = static_cast<std::size_t>(below(static_cast<std::int32_t>(states.size())));
        for (std::size_t i = states.size(); i-- > back;) {
            while (stack.size() > states[i].steps) REQUIRE(stack.undo());
            REQUIRE_EQ(Snapshot(value), states[i].keys);
        }
        if (below(2) == 0) {
            for (std::size_t i = back; i < states.size(); ++i) {
                while (stack.size() < states[i].steps) REQUIRE(stack.redo());
                REQUIRE_EQ(Snapshot(value), states[i].keys);
            }
        } else {
            states.resize(back + 1);
            const std::size_t before = stack.size();
            AddKey(value, below(12), below(100));
            REQUIRE_GT(stack.size(), before);
            states.push_back({stack.size(), Snapshot(value)});
        }
    }
}

TEST_CASE("A change of time is recorded with the handles") {
    AnimatedDouble value(nullptr, true, &frames);
    RecordingUndoStack stack;
    value.addKeyDouble(10, 1.0);
    Key& key = *value.keyAt(0);
    key.setTime(20.0);
    CHECK_EQ(stack.count<UndoKeyValue>(), 1);
    key.inHandle = 0.5;  // by hand, without a record
    stack.undo();
    CHECK_EQ(key.time, 10.0);
    CHECK_EQ(key.inHandle, 0.0);
    stack.redo();
    CHECK_EQ(key.time, 20.0);
    CHECK_EQ(key.inHandle, 0.5);
}

TEST_CASE("resortKey of a key in order records nothing, of another once") {
    AnimatedDouble value(nullptr, true, &frames);
    RecordingUndoStack stack;
    for (const std::int32_t frame : {0, 10, 20}) value.addKeyDouble(frame, frame);
    value.keyAt(0)->setTime(5.0);
    std::size_t before = stack.size();
    value.resortKey(0);
    CHECK_EQ(stack.size(), before);
    value.keyAt(0)->setTime(15.0);
    before = stack.size();
    CHECK_EQ(value.resortKey(0), 1);
    CHECK_EQ(stack.size(), before + 1);
}

TEST_CASE("removeCoincidentKeys records once however many keys go, and not at all when none does") {
    AnimatedDouble value(nullptr, true, &frames);
    RecordingUndoStack stack;
    for (const std::int32_t frame : {0, 10, 20, 30}) value.addKeyDouble(frame, frame);
    const std::size_t before = stack.count<UndoAnimatedValueData>();
    value.removeCoincidentKeys(1);
    CHECK_EQ(stack.count<UndoAnimatedValueData>(), before);
    for (std::int32_t i = 0; i < 4; ++i) value.keyAt(i)->setTime(5.0);
    CHECK_EQ(value.removeCoincidentKeys(1), 0);
    CHECK_EQ(stack.count<UndoAnimatedValueData>(), before + 1);
    CHECK_EQ(stack.count<UndoDestructorData<Key>>(), 3);
}

TEST_CASE("Each edit of a smooth point's handles is recorded over all of its key") {
    AnimatedPosition3d path(nullptr, true, &frames);
    RecordingUndoStack stack;
    for (const std::int32_t frame : {0, 10, 20}) path.addKeyDoubleXY(frame, frame, 0.0);
    const std::size_t before = stack.count<UndoAnimatedPosition3dValue>();
    const SmoothPathPoint old = path.keyValue(1);
    path.setCorner(1);
    CHECK_EQ(stack.count<UndoAnimatedPosition3dValue>(), before + 1);
    stack.undo();
    CHECK(path.keyValue(1).smooth);
    CHECK(path.keyValue(1).in == old.in);
    stack.redo();
    CHECK_FALSE(path.keyValue(1).smooth);
    CHECK(path.keyValue(1).in == old.point);
}

TEST_CASE("A stack that goes while its steps are undone takes with it the keys that they made") {
    AnimatedDouble value(nullptr, true, &frames);
    {
        RecordingUndoStack stack;
        value.addKeyDouble(0, 1.0);
        value.addKeyDouble(0, 2.0);
        value.addKeyDouble(10, 3.0);
        for (int i = 0; i < 5; ++i) stack.undo();  // back to before the second key was made
    }
    REQUIRE_EQ(value.keyCount(), 1);
    CHECK_EQ(value.keyValue(0), 1.0);
}

}  // namespace
