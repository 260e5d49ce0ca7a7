#pragma once

#include <cstdint>

#include "chalkpane/parameters/animation/animation_clock.h"
#include "chalkpane/parameters/colour.h"
#include "chalkpane/parameters/file_name.h"
#include "chalkpane/parameters/number_pair.h"
#include "chalkpane/parameters/undo_data.h"

namespace chalkpane {

// One key of an animated value: a time and, in the classes derived from it, what the value is then.
//
// Handles are tangent lengths as fractions of the span towards the neighbour; their sign is the key's mode: 0 (on both
// sides of a span) is linear, a positive handle eases flat into the key, a negative one runs along the slope.
// A key is owned by its animated value, or by an undo record once that has disposed of it.
class Key {
public:
    // A key made with `recordsUndo` hands over the record of its creation.
    explicit Key(bool recordsUndo = false);
    Key(const Key&) = delete;

    virtual ~Key() = default;
    virtual std::int32_t frame(const AnimationClock& clock) const;
    virtual void setTime(double newTime);
    // To the time that the new clock gives the frame that the old one saw.
    virtual void retime(const AnimationClock& oldClock, const AnimationClock& newClock);

    void setHandles(double in, double out);
    // Takes over time, handles and whether changes are recorded, but not the value.
    void copyTiming(const Key& other);

    double time = 0.0;  // not a frame
    double inHandle = 0.0;
    double outHandle = 0.0;
    bool undoable;  // life and changes are recorded

protected:
    Key& operator=(const Key&) = default;
};

// Frees the key, or, when it records undo, hands it over to the record of its disposal.
void disposeOfKey(Key* key);

// A key with its value.
template <typename Content>
class KeyValuePair final : public Key {
public:
    explicit KeyValuePair(const Content& content = Content(), bool recordsUndo = false)
        : Key(recordsUndo), value(content) {}
    KeyValuePair(const KeyValuePair&) = delete;
    KeyValuePair& operator=(const KeyValuePair&) = default;

    Content value;
};

// A point of a path with its handles, all absolute.
struct PathPoint {
    DoublePair point;
    DoublePair in;
    DoublePair out;

    // The point alone, or with its handles, which keep their offsets from it.
    static PathPoint at(const DoublePair& place) { return {place, place, place}; }
    void moveTo(const DoublePair& place);
};

// A path point whose handles follow its neighbours while it is smooth.
struct SmoothPathPoint : PathPoint {
    bool smooth = true;

    static SmoothPathPoint at(const DoublePair& place) { return {PathPoint::at(place), true}; }
};

using DoubleKeyValuePair = KeyValuePair<double>;
using FloatKeyValuePair = KeyValuePair<float>;
using IntKeyValuePair = KeyValuePair<std::int32_t>;
using BooleanKeyValuePair = KeyValuePair<bool>;
using IntXYKeyValuePair = KeyValuePair<IntegerPair>;
using DoubleXYKeyValuePair = KeyValuePair<DoublePair>;
using ColourKeyValuePair = KeyValuePair<Colour>;
using FileNameKeyValuePair = KeyValuePair<FileName>;
using PositionKeyValuePair = KeyValuePair<PathPoint>;
using Position3dKeyValuePair = KeyValuePair<SmoothPathPoint>;

// The record of a change of time or handles.
class UndoKeyValue final : public UndoData {
public:
    explicit UndoKeyValue(Key& changedKey) : target(changedKey) { oldState.copyTiming(target); }
    void undo() override {
        newState.copyTiming(target);
        target.copyTiming(oldState);
    }
    void redo() override { target.copyTiming(newState); }

private:
    Key& target;  // not owned
    Key oldState;
    Key newState;
};

// The record of a key's creation: dropped from the undone side of the stack, it takes the key with it.
template <typename Kept>
class UndoConstructorData final : public UndoData {
public:
    explicit UndoConstructorData(Kept* made) : target(made) {}
    ~UndoConstructorData() override {
        if (isRecordDiscardable()) delete target;
    }

private:
    Kept* target;
};

// The record of a key's disposal: dropped from the done side, where the disposal stands, it frees the key.
template <typename Kept>
class UndoDestructorData final : public UndoData {
public:
    explicit UndoDestructorData(Kept* disposed) : target(disposed) {}
    ~UndoDestructorData() override {
        if (!isRecordDiscardable()) delete target;
    }

private:
    Kept* target;
};

// The record of an edit of a smooth path point, over all of its key.
class UndoAnimatedPosition3dValue final : public UndoData {
public:
    explicit UndoAnimatedPosition3dValue(Position3dKeyValuePair& changedKey) : target(changedKey) { oldState = target; }
    void undo() override {
        newState = target;
        target = oldState;
    }
    void redo() override { target = newState; }

private:
    Position3dKeyValuePair& target;  // not owned
    Position3dKeyValuePair oldState;
    Position3dKeyValuePair newState;
};

}  // namespace chalkpane
