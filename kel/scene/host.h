#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kel/module_loading/module.h"
#include "kel/scene/frame_buffer.h"
#include "kel/scene/gl_context.h"
#include "kel/scene/instance_history.h"
#include "kel/scene/pointer_queue.h"
#include "kel/scene/scene.h"
#include "picture_io/picture.h"

namespace kel {

struct HostState;
class CanvasSubstitute;

struct WindowSize {
    std::int32_t width = 0;  // pixels
    std::int32_t height = 0;
};

struct ParameterSetting {
    std::string name;
    ParameterValue value;
};

// What a render draws anew: what has changed since the last one, or all of the picture. The pictures are the same.
enum class Redraw { Changed, Whole };

// How long the modules' field callbacks took, those of all instances in a field together.
struct FieldTimes {
    std::chrono::nanoseconds last{};
    std::chrono::nanoseconds slowest{};  // of all fields so far but the first, in which modules make what they need
};

// The renderer: a scene, the modules attached to its containers, an OpenGL context, and the one loop that drives them,
// field by field. docs/host.md tells the order of a field.
//
// All functions of a host are called on the thread that made it, but hosts on several threads run side by side, each
// with its own OpenGL context and its own modules' instances. Several on one thread take turns, call by call. Errors
// are thrown as Error.
class Host {
public:
    // Throws when this machine offers no OpenGL, and for a side below 1 or above largestPictureSide.
    explicit Host(WindowSize window, GlSource source = GlSource::Own);
    ~Host();  // ends all instances
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    Host(Host&&) = delete;
    Host& operator=(Host&&) = delete;

    // Loads the module once and lets it register; the same file again gives the same module. Borrowed from the host.
    const Module& LoadModule(const std::filesystem::path& file);

    void SetCamera(const Camera& camera);

    // Containers are drawn in the order in which they were added: one that is to be seen through comes after what is
    // behind it. Without a picture a container is plain white.
    ObjectId AddContainer(const Placement& placement);
    // Shows `picture` from now on, for example the next frame of a video.
    void SetPicture(ObjectId container, const picture_io::Picture& picture);

    // The same for a picture whose rows run from the bottom, and which has the pixels of any other one then: memory
    // that can be used for the next.
    //   isOpaque  true: its alpha is full everywhere
    void ExchangePicture(ObjectId container, picture_io::Picture& upwards, bool isOpaque);

    // Puts an instance of the module on the container, which has none yet. Parameters that `values` leaves out have
    // their defaults.
    void Attach(ObjectId container, const Module& module, const std::vector<ParameterSetting>& values = {});

    // A picture that modules find by its name: what an image parameter names. The same name again replaces it for later
    // look-ups. A name that is not here, and the empty one, mean no image.
    void AddImage(const std::string& name, const picture_io::Picture& picture);

    // What the operator does. All of it waits for RunField: of the pointer at most one press or release is delivered in
    // a field, together with the moves before it; settings and buttons are delivered in their order.
    //   x, y      window pixels, y from the top; may lie outside
    //   pressure  0.0 .. 1.0, noted in the histories of instances; modules have no word for it
    void QueuePointer(PointerKind kind, std::int32_t x, std::int32_t y, double pressure = 1);
    // Throws when the container's module has no such parameter or the value is not within its limits.
    void SetParameter(ObjectId container, std::string_view name, const ParameterValue& value);
    void PushButton(ObjectId container, std::string_view name);
    void PressKey();
    [[nodiscard]] std::size_t QueuedButtons() const;  // presses and releases that no field has delivered yet
    [[nodiscard]] bool HasQueuedPointer() const { return QueuedButtons() > 0; }

    // One field.
    //   fieldsDue  how many fields follow each other at once, this one counted; at least 1. What waits of the pointer
    //              is spread over them
    void RunField(int fieldsDue = 1);
    // What the next field gets of the pointer, if it is due alone; empty: nothing.
    [[nodiscard]] std::optional<PointerKind> NextPointer() const;
    // Between two fields: delivers what waits of the pointer, as a field does, with a field callback and a render of
    // its own. What of an operator waits besides goes on waiting. A module's changed rectangle is thereby uploaded
    // before it is replaced by the next one.
    void RunStep();
    // What the instance on this container was given so far.
    [[nodiscard]] const InstanceHistory& History(ObjectId container) const;
    // Puts a fresh instance in the place of the one on this container, which lives through all fields so far with what
    // `history` says instead, and then has the present values. What is given from now on goes on in the container's own
    // history, which stays. Takes the time of all those fields, without their drawing.
    void Rebuild(ObjectId container, const InstanceHistory& history);
    // From the next render on this is shown where the container's module draws, which knows nothing of it. Borrowed;
    // null: what the module draws from then on.
    void Substitute(ObjectId container, CanvasSubstitute* substitute);
    // The bytes of the texture that the container's module has put on it, as Substitute has them; empty: they are not
    // known.
    [[nodiscard]] std::span<const std::uint8_t> TextureBytes(ObjectId container) const;
    // The present values of the instance on this container, in the order of registration.
    [[nodiscard]] std::vector<ParameterValue> Values(ObjectId container) const;
    // The fields of all histories so far; steps count as fields there.
    [[nodiscard]] std::int64_t FieldsRun() const;

    // What that field or step got of the pointer; empty: it did nothing.
    [[nodiscard]] const std::optional<PointerStep>& DeliveredPointer() const;

    // What the operator's panel shows.
    [[nodiscard]] ParameterValue GetParameter(ObjectId container, std::string_view name) const;
    [[nodiscard]] bool IsParameterShown(ObjectId container, std::string_view name) const;

    // Off: renders do all that they do but draw, which is most of their work, so fields whose picture nobody reads go
    // by quickly. On, as at the start: asks for a redraw, so that the next field's picture is whole.
    void SetDrawing(bool on);

    void SetRedraw(Redraw redraw);  // Changed, as at the start
    // Draws the scene once more with the pictures that it has now, between two fields and without any callback.
    void DrawAgain();
    // What of the picture has changed since this was last asked, or a rectangle around it.
    [[nodiscard]] FrameArea TakeChangedArea();

    // Of the picture last rendered. As long as it stays the same, so does that picture, to the last pixel, and with it
    // what ReadOverlay answers.
    [[nodiscard]] std::uint64_t PictureNumber() const;

    // The picture last rendered; opaque.
    [[nodiscard]] picture_io::Picture ReadFrame() const;
    // A part of it, which is not empty, with the top row first, a pixel as blue, green, red and anything, `rowPixels`
    // from one row to the next. For OpenGL in software by Mesa.
    void ReadForScreen(const FrameArea& part, void* pixels, std::int32_t rowPixels) const;
    // Shows that picture in `area` of the framebuffer `target`, 0 being the current context's window, smoothly scaled
    // where the sizes differ. Leaves the target bound and OpenGL's state plain, for others to draw there.
    void ShowFrame(const FrameArea& area, std::uint32_t target = 0) const;
    // The same for what of it lies within `part` of the target; nothing else there is touched. An empty part shows
    // nothing.
    void ShowFramePart(const FrameArea& area, const FrameArea& part, std::uint32_t target = 0) const;
    // What the module on this container draws, alone and upright, as of the last render. Throws when it has put no
    // texture on the container yet.
    [[nodiscard]] picture_io::Picture ReadCanvas(ObjectId container) const;
    // The same as the module has it, its colours multiplied by its alpha.
    [[nodiscard]] picture_io::Picture ReadPremultipliedCanvas(ObjectId container) const;

    // What all modules draw, in the window's size and at its place: composited over the picture as it would be without
    // drawings, it gives the picture last rendered (docs/output.md). Draws what has changed since the last call three
    // times more, and leaves that picture as it was.
    [[nodiscard]] picture_io::Picture ReadOverlay();
    // The same with colours multiplied by alpha, as it is composited.
    [[nodiscard]] picture_io::Picture ReadPremultipliedOverlay();

    [[nodiscard]] WindowSize Window() const;
    void ResizeWindow(WindowSize window);  // asks for a redraw

    [[nodiscard]] FieldTimes Times() const;

    // All that the host knows, as the host functions see it (kel/scene/host_state.h).
    [[nodiscard]] HostState& State() { return *m_state; }

    // What modules did wrong so far, one line for each kind; each also went to standard error.
    [[nodiscard]] const std::vector<std::string>& WrongUses() const;

private:
    void DeliverPointer(int fieldsDue);
    void DeliverOperator();
    void RunFieldCallbacks();
    void Render();

    std::unique_ptr<HostState> m_state;
};

}  // namespace kel
