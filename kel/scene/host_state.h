#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "kel/scene/frame_buffer.h"
#include "kel/scene/frame_shrinker.h"
#include "kel/scene/gl_context.h"
#include "kel/scene/host.h"
#include "kel/scene/objects.h"
#include "kel/scene/pointer_queue.h"
#include "kel/scene/scene_changes.h"
#include "kel/scene/wrong_use.h"

namespace kel {

// The callbacks of a module, and being in none.
enum class Callback : std::uint32_t {
    None = 0,
    InitEx = 1U << 0U,
    InitFunction = 1U << 1U,
    CleanupFunction = 1U << 2U,
    GuiStatus = 1U << 3U,
    Changed = 1U << 4U,
    ExecAction = 1U << 5U,
    PerField = 1U << 6U,
    Mouse = 1U << 7U,
    Keyboard = 1U << 8U,
    PreRender = 1U << 9U,
    PostRender = 1U << 10U,
};

struct QueuedSetting {
    ObjectId container;
    std::size_t parameter;  // index in the order of registration
    ParameterValue value;
};
struct QueuedAction {
    ObjectId container;
    std::int32_t action;
};
struct QueuedKey {};

// The drawings alone as they were last made, so that only what has changed since is made anew.
struct DrawnOverlay {
    picture_io::Picture picture;          // colours multiplied by alpha
    FrameArea stale;                      // where the frame has changed since
    std::unique_ptr<FrameBuffer> target;  // what the scene is drawn into for it; null: it was never made

    FrameArea inked;             // all of where drawings are seen in the frame
    ObjectId copied = noObject;  // the container whose picture was copied into the frame; noObject: none was

    // The drawings with all else black and white, which tell the same whatever is shown behind them.
    struct OverPlain {
        FrameArea area;
        std::uint64_t drawings = 0;  // SceneChanges::Drawings
        picture_io::Picture black;
        picture_io::Picture white;
    };
    std::optional<OverPlain> overPlain;
};

// Everything the host knows: what `Host` changes from outside and the host functions from inside a module.
struct HostState {
    HostState(WindowSize size, GlSource source)
        : context(source), window(size), frame(std::make_unique<FrameBuffer>(size.width, size.height)) {}

    GlContext context;  // first: the objects below end while it is there
    WindowSize window;
    std::unique_ptr<FrameBuffer> frame;
    FrameShrinker shrinker;  // for what is shown of the frame
    ImageObject clearImage;  // one clear pixel, in place of a module's texture; built when it is first needed

    Objects objects;
    ObjectId scene = noObject;
    std::map<std::string, ObjectId, std::less<>> imageNames;
    std::vector<std::unique_ptr<Module>> modules;

    std::int32_t pointerX = 0;  // window pixels, where the last delivered event was
    std::int32_t pointerY = 0;
    PointerQueue pointerQueue;
    std::optional<PointerStep> deliveredPointer;  // in the last field
    std::vector<std::variant<QueuedSetting, QueuedAction, QueuedKey>> operatorQueue;
    std::int64_t fieldsRun = 0;  // steps between fields counted too
    bool isStep = false;         // what runs is such a step
    bool redraw = true;
    std::uint64_t pictureNumber = 0;  // of what was last rendered
    bool drawing = true;
    Redraw redraws = Redraw::Changed;
    SceneChanges changes;
    FrameArea changedArea;  // of the picture, since the host was last asked for it
    DrawnOverlay overlay;
    std::vector<GlCall>* noting = nullptr;  // where what the render callback asks of OpenGL is noted; null: nowhere

    Callback callback = Callback::None;
    Registration* registering = nullptr;  // in PLUGIN_INIT_EX
    Instance* calling = nullptr;          // the instance whose callback runs
    FieldTimes times;
    WrongUseLog wrongUses;

    // Something has changed that may show anywhere.
    void ShowAnew() {
        changes.AddEverything();
        redraw = true;
    }

    // Runs `call` as the instance's callback.
    template <typename Call>
    void CallInstance(Instance& instance, Callback which, Call call) {
        const Callback callbackBefore = std::exchange(callback, which);
        Instance* const callingBefore = std::exchange(calling, &instance);
        call(instance.TheModule().entryPoints, instance.Block());
        callback = callbackBefore;
        calling = callingBefore;
    }

    ~HostState();
    HostState(const HostState&) = delete;
    HostState& operator=(const HostState&) = delete;
    HostState(HostState&&) = delete;
    HostState& operator=(HostState&&) = delete;

    // The host that is at work on this thread, or was last: the host functions act on it. Null: there is none.
    static HostState* Current();
    // True while any thread's host is at work.
    static bool IsAnyAtWork();
};

// Around all that a host does: its OpenGL context is current, and the modules that it calls find it. Hosts on several
// threads work side by side; those of one thread take turns.
class AtWork {
public:
    explicit AtWork(HostState& state);
    ~AtWork();
    AtWork(const AtWork&) = delete;
    AtWork& operator=(const AtWork&) = delete;
    AtWork(AtWork&&) = delete;
    AtWork& operator=(AtWork&&) = delete;

private:
    HostState* m_before;
};

}  // namespace kel
