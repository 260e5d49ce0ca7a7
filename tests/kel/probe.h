#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kel/scene/host.h"
#include "tests/probe_module/probe_module.h"

namespace kel::testing {

// A host with one container, 100 x 100 in its own coordinates and in the world's plane z = 0, seen straight on so that
// it fills the square window exactly, and the probe module on it. The module registers "Switch" (bool), "Count" (int, 1
// to 9) and "Name" (image) and the button "Go" with action 7.
class ProbedHost {
public:
    explicit ProbedHost(std::int32_t windowSide = 64);
    ~ProbedHost();
    ProbedHost(const ProbedHost&) = delete;
    ProbedHost& operator=(const ProbedHost&) = delete;
    ProbedHost(ProbedHost&&) = delete;
    ProbedHost& operator=(ProbedHost&&) = delete;

    // Runs a field with `call` inside PLUGIN_EXEC_PER_FIELD, or inside the pre render.
    void InField(const std::function<void()>& call);
    void InRender(const std::function<void()>& call);

    ProbeHooks hooks;
    std::unique_ptr<Host> host;
    ObjectId container = noObject;
};

// Straight on, so that 100 x 100 in the plane z = 0 fill a square window exactly.
[[nodiscard]] Camera CameraInFront();

// The hooks that the probe module uses from now on; null for none. Loads the module.
void UseHooks(ProbeHooks* hooks);

// What the probe registers in a ProbedHost.
void RegisterProbe();

}  // namespace kel::testing
