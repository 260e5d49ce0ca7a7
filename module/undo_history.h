#pragma once

#include "module/plugin_instance.h"

namespace chalkpane {

// The undo of the telestrator: a ring of whole-canvas copies, no command log. There is no count of valid entries, so
// after as many undos as the ring has entries the walk comes round to newer states again; and no redo.
// Without a canvas none of these does anything.

// The ring's greatest size, whatever MaxUndos says.
constexpr std::int32_t undoLimit = 10;

// Allocates `currentSnapshot` and a ring of MaxUndos copies of the canvas. Throws std::bad_alloc.
void FillUndoRing(PluginInstance& instance);

// Lets the ring follow MaxUndos. False: memory ran out and the ring stays as far as it came.
bool AdjustUndoRing(PluginInstance& instance) noexcept;

// Saves the state before the last change and takes the canvas as the new one.
void PushUndoSnapshot(PluginInstance& instance);
// Puts both surfaces back by one state. With an empty ring nothing happens.
void RestoreUndoSnapshot(PluginInstance& instance);
// Clears both surfaces; can itself be taken back.
void ClearCanvas(PluginInstance& instance);

}  // namespace chalkpane
