#include "tests/kel/probe.h"

#include <dlfcn.h>

#include <cmath>
#include <numbers>

#include "module/abi/host_api.h"

namespace kel::testing {

// The height seen at distance d is 2 d tan(f / 2): at 100 / 2 / tan(20 degrees) it is 100.
Camera CameraInFront() {
    Camera camera;
    camera.fieldOfView = 40;
    camera.position = {0, 0, 50 / std::tan(20 * std::numbers::pi / 180)};
    return camera;
}

void UseHooks(ProbeHooks* hooks) {
    void* module = dlopen(PROBE_MODULE, RTLD_NOW | RTLD_NODELETE);
    reinterpret_cast<ProbeSetHooks>(dlsym(module, "ProbeHooksAre"))(hooks);
    dlclose(module);
}

void RegisterProbe() {
    qoRegisterPlugin("Probe");
    qoRegisterParameterBool("Switch", "The Switch", 1);
    qoRegisterParameterInt("Count", "The Count", 3, 1, 9);
    qoRegisterParameterImage("Name", "The Name", "");
    qoRegisterPushButton("Go", "Go On", 7);
    qoRegisterTotalSize(64);
}

ProbedHost::ProbedHost(std::int32_t windowSide) {
    hooks.registration = RegisterProbe;
    UseHooks(&hooks);
    host = std::make_unique<Host>(WindowSize{windowSide, windowSide});
    host->SetCamera(CameraInFront());
    container = host->AddContainer({});
    host->Attach(container, host->LoadModule(PROBE_MODULE));
}

ProbedHost::~ProbedHost() {
    host.reset();
    UseHooks(nullptr);
}

void ProbedHost::InField(const std::function<void()>& call) {
    hooks.perField = call;
    host->RunField();
    hooks.perField = nullptr;
}

void ProbedHost::InRender(const std::function<void()>& call) {
    hooks.preRender = call;
    InField([] { _api__scene_redraw(); });
    hooks.preRender = nullptr;
}

}  // namespace kel::testing
