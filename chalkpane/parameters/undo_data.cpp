#include "chalkpane/parameters/undo_data.h"

namespace chalkpane {

namespace {
UndoStack* undoStack = nullptr;
}

UndoStack* plugUndoStack(UndoStack* stack) { return std::exchange(undoStack, stack); }

UndoStack* pluggedUndoStack() { return undoStack; }

void UndoSink(std::unique_ptr<UndoData> record) {
    if (undoStack != nullptr) undoStack->take(std::move(record));
}

bool isRecordDiscardable() { return undoStack != nullptr && undoStack->isRecordDiscardable(); }

}  // namespace chalkpane
