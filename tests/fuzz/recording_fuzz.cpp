#include <cstdlib>

#include "kel/session/session_lines.h"
#include "kel/workspace/recording.h"
#include "tests/fuzz/fuzz_input.h"

// A session that is opened in the window: what is recorded on top of it is a session again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    kel::WorkspaceScene scene;
    scene.text = kel::WholeSessionText(fuzz::TextOf(bytes, size));
    bool isSession = false;
    fuzz::TakeOrRefuse([&] {
        scene.session = kel::ParseSession(scene.text, "fuzz.json");
        isSession = true;
    });
    if (!isSession) return 0;
    static const kel::Registration module;
    std::vector<const kel::Registration*> modules;
    for (const kel::SessionContainer& container : scene.session.containers)
        modules.push_back(container.plugin ? &module : nullptr);
    kel::Recording recording(scene, modules, "own.qop", {});
    recording.AddPointer(scene.session.fields, {kel::PointerKind::Press, 10, 20});
    if (scene.session.fields >= 999'990) return 0;
    // An Error here is a fault: it passes on to whoever watches.
    recording.AddFields(scene.session.fields + 5);
    (void)kel::ParseSession(recording.TakeLines(), "recorded.json");
    return 0;
}
