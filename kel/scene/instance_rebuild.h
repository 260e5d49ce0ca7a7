#pragma once

#include "kel/scene/host_state.h"

namespace kel {

// Takes note of what an instance is given in the present field.
void NotePointer(HostState& state, ContainerObject& container, const PointerStep& step);

// Ends the container's instance and puts a fresh one of its module in its place, which lives through all fields so far
// with what `history` says, its render callbacks included; nothing is drawn meanwhile. Afterwards it has the values
// that the former one had. The container's own history stays as it is. The host is at work.
void RebuildInstance(HostState& state, ContainerObject& container, const InstanceHistory& history);

// The callbacks of an instance, as the host makes them.
void BeginInstance(HostState& state, Instance& instance);
void EndInstance(HostState& state, Instance& instance);
void ChangeValue(HostState& state, Instance& instance, const SettingInput& setting);
void DoAction(HostState& state, Instance& instance, const ActionInput& action);
void PressKeyFor(HostState& state, Instance& instance);
void MoveButton(HostState& state, Instance& instance, const PointerStep& step);
void PassField(HostState& state, Instance& instance);

}  // namespace kel
