#pragma once

#include <memory>
#include <utility>

namespace chalkpane {

// The root of the undo records. A record is made before a change, with the old state in it; `undo` puts the old state
// back and keeps the present one for `redo`. Both store directly: they make no further record.
class UndoData {
public:
    UndoData() = default;
    UndoData(const UndoData&) = delete;
    UndoData& operator=(const UndoData&) = delete;
    virtual ~UndoData() = default;
    virtual void undo() {}
    virtual void redo() {}
};

// An undo stack to plug in behind UndoSink. It owns each record it takes, undoes and redoes in strict last-in-first-out
// order and groups records as it likes. Records refer to values and keys without owning them, so a stack drops its
// records before the values that they belong to go, and before it is unplugged.
class UndoStack {
public:
    virtual ~UndoStack() = default;
    virtual void take(std::unique_ptr<UndoData> record) = 0;
    // True while the record being destroyed comes from the undone side of the stack: its change is not in force, so
    // what it created goes with it and what it removed lives on.
    virtual bool isRecordDiscardable() const = 0;
};

// Returns the stack plugged in before; null unplugs. Not owned. At first there is none.
UndoStack* plugUndoStack(UndoStack* stack);
UndoStack* pluggedUndoStack();

// The one place that every record passes through. Without a stack the record is freed here.
void UndoSink(std::unique_ptr<UndoData> record);
// The stack's answer; false without one.
bool isRecordDiscardable();

// Makes the record, before the change that it is for, and hands it to UndoSink. Nobody would see a record made without
// a stack, so none is made then: parameters are set at every field and should not allocate.
template <typename Record, typename... Arguments>
void recordUndo(Arguments&&... arguments) {
    if (pluggedUndoStack() != nullptr) UndoSink(std::make_unique<Record>(std::forward<Arguments>(arguments)...));
}

}  // namespace chalkpane
