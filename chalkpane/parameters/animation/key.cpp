#include "chalkpane/parameters/animation/key.h"

namespace chalkpane {

Key::Key(bool recordsUndo) : undoable(recordsUndo) {
    if (undoable) recordUndo<UndoConstructorData<Key>>(this);
}

std::int32_t Key::frame(const AnimationClock& clock) const { return clock.timeToFrame(time); }

void Key::setTime(double newTime) {
    if (undoable) recordUndo<UndoKeyValue>(*this);
    time = newTime;
}

void Key::retime(const AnimationClock& oldClock, const AnimationClock& newClock) {
    setTime(newClock.frameToTime(oldClock.timeToFrame(time)));
}

void Key::setHandles(double in, double out) {
    if (undoable) recordUndo<UndoKeyValue>(*this);
    inHandle = in;
    outHandle = out;
}

void Key::copyTiming(const Key& other) {
    time = other.time;
    inHandle = other.inHandle;
    outHandle = other.outHandle;
    undoable = other.undoable;
}

void disposeOfKey(Key* key) {
    if (key->undoable && pluggedUndoStack() != nullptr) {
        recordUndo<UndoDestructorData<Key>>(key);
    } else {
        delete key;
    }
}

void PathPoint::moveTo(const DoublePair& place) {
    in = {place.x + (in.x - point.x), place.y + (in.y - point.y)};
    out = {place.x + (out.x - point.x), place.y + (out.y - point.y)};
    point = place;
}

}  // namespace chalkpane
