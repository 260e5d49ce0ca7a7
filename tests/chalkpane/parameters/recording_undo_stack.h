#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "chalkpane/parameters/undo_data.h"

namespace chalkpane {

// An undo stack as a program would plug one in, but that every record is a step of its own: a program undoes all
// records of an edit together, and so must a test before it drops the undone side. Plugged in while it lives; drops its
// records while the values that they belong to still stand.
class RecordingUndoStack final : public UndoStack {
public:
    RecordingUndoStack() : before(plugUndoStack(this)) {}
    ~RecordingUndoStack() override {
        drop();
        plugUndoStack(before);
    }
    RecordingUndoStack(const RecordingUndoStack&) = delete;
    RecordingUndoStack& operator=(const RecordingUndoStack&) = delete;

    void take(std::unique_ptr<UndoData> record) override {
        dropUndone();
        done.push_back(std::move(record));
    }
    bool isRecordDiscardable() const override { return droppingUndone; }

    // Answer false when there is nothing to do.
    bool undo() { return move(done, undone, &UndoData::undo); }
    bool redo() { return move(undone, done, &UndoData::redo); }
    void undoAll() {
        while (undo()) {
        }
    }
    void redoAll() {
        while (redo()) {
        }
    }
    // Both sides, the undone one first and each from its youngest step.
    void drop() {
        dropUndone();
        while (!done.empty()) done.pop_back();
    }

    std::size_t size() const { return done.size(); }
    UndoData& last() const { return *done.back(); }
    template <typename Record>
    std::size_t count() const {
        std::size_t found = 0;
        for (const auto& record : done) found += dynamic_cast<Record*>(record.get()) != nullptr;
        return found;
    }

private:
    using Records = std::vector<std::unique_ptr<UndoData>>;

    static bool move(Records& from, Records& to, void (UndoData::*step)()) {
        if (from.empty()) return false;
        std::unique_ptr<UndoData> record = std::move(from.back());
        from.pop_back();
        ((*record).*step)();
        to.push_back(std::move(record));
        return true;
    }
    void dropUndone() {
        droppingUndone = true;
        undone.clear();
        droppingUndone = false;
    }

    UndoStack* before;
    Records done;
    Records undone;
    bool droppingUndone = false;
};

}  // namespace chalkpane
