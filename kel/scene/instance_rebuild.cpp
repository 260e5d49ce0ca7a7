#include "kel/scene/instance_rebuild.h"

#include <memory>
#include <utility>

#include "kel/scene/picking.h"
#include "kel/scene/scene_renderer.h"

namespace kel {
namespace {

void SendGuiStatus(HostState& state, Instance& instance) {
    state.CallInstance(instance, Callback::GuiStatus,
                       [](const EntryPoints& module, chalkpane::PluginInstance* block) { module.guiStatus(block); });
}

// The pointer and the window's size, as they are while a history is lived through; afterwards what they were.
class PointerOfHistory {
public:
    explicit PointerOfHistory(HostState& state)
        : m_state(state), m_x(state.pointerX), m_y(state.pointerY), m_window(state.window) {
        m_state.pointerX = m_state.pointerY = 0;
    }
    ~PointerOfHistory() {
        m_state.pointerX = m_x;
        m_state.pointerY = m_y;
        m_state.window = m_window;
    }
    PointerOfHistory(const PointerOfHistory&) = delete;
    PointerOfHistory& operator=(const PointerOfHistory&) = delete;
    PointerOfHistory(PointerOfHistory&&) = delete;
    PointerOfHistory& operator=(PointerOfHistory&&) = delete;

    void Go(const InstanceInput& input) {
        m_state.pointerX = input.pointer->x;
        m_state.pointerY = input.pointer->y;
        m_state.window = {input.windowWidth, input.windowHeight};
    }

private:
    HostState& m_state;
    std::int32_t m_x;
    std::int32_t m_y;
    WindowSize m_window;
};

void Give(HostState& state, Instance& instance, const InstanceInput& input, PointerOfHistory& pointer) {
    if (input.pointer) {
        pointer.Go(input);
        if (input.pointer->kind != PointerKind::Move) MoveButton(state, instance, *input.pointer);
    }
    for (const auto& each : input.operatorInputs) {
        if (const auto* setting = std::get_if<SettingInput>(&each)) ChangeValue(state, instance, *setting);
        if (const auto* action = std::get_if<ActionInput>(&each)) DoAction(state, instance, *action);
        if (std::holds_alternative<KeyInput>(each)) PressKeyFor(state, instance);
    }
}

// The textures that the instance has put on the container, and their images, are gone with it. A module may leave some
// of them to the host, which would hold on to them for good.
void RemoveTextures(HostState& state, ContainerObject& container) {
    for (ObjectId& id : container.multiTextures) {
        const ObjectId texture = std::exchange(id, noObject);
        if (const auto* found = state.objects.Find<TextureObject>(texture)) state.objects.Remove(found->image);
        state.objects.Remove(texture);
    }
}

std::vector<ObjectId> ImagesOn(HostState& state, const ContainerObject& container) {
    std::vector<ObjectId> images;
    for (const ObjectId id : container.multiTextures)
        if (const auto* texture = state.objects.Find<TextureObject>(id)) images.push_back(texture->image);
    return images;
}

}  // namespace

void BeginInstance(HostState& state, Instance& instance) {
    state.CallInstance(instance, Callback::InitFunction,
                       [](const EntryPoints& module, chalkpane::PluginInstance* block) { module.initFunction(block); });
    SendGuiStatus(state, instance);
}

void EndInstance(HostState& state, Instance& instance) {
    state.CallInstance(
        instance, Callback::CleanupFunction,
        [](const EntryPoints& module, chalkpane::PluginInstance* block) { module.cleanupFunction(block); });
}

void ChangeValue(HostState& state, Instance& instance, const SettingInput& setting) {
    if (instance.Value(setting.parameter) == setting.value) return;
    instance.SetValue(setting.parameter, setting.value);
    state.CallInstance(instance, Callback::Changed, [&](const EntryPoints& module, chalkpane::PluginInstance* block) {
        module.changedCallback(block, static_cast<std::int32_t>(setting.parameter) + 1);
    });
    SendGuiStatus(state, instance);
}

void DoAction(HostState& state, Instance& instance, const ActionInput& action) {
    state.CallInstance(
        instance, Callback::ExecAction,
        [&](const EntryPoints& module, chalkpane::PluginInstance* block) { module.execAction(block, action.action); });
}

void PressKeyFor(HostState& state, Instance& instance) {
    state.CallInstance(instance, Callback::Keyboard, [](const EntryPoints& module, chalkpane::PluginInstance* block) {
        module.keyboardCallback(block);
    });
}

// The left button, which is the only one here.
void MoveButton(HostState& state, Instance& instance, const PointerStep& step) {
    constexpr std::int32_t leftButton = 1;
    constexpr std::int32_t activeWindow = 1;
    const std::int32_t pressed = step.kind == PointerKind::Press ? 1 : 0;
    state.CallInstance(instance, Callback::Mouse, [&](const EntryPoints& module, chalkpane::PluginInstance* block) {
        module.mouseCallback(block, 0, leftButton, pressed, activeWindow, step.x, step.y, 0, 0);
    });
}

void PassField(HostState& state, Instance& instance) {
    state.CallInstance(instance, Callback::PerField,
                       [](const EntryPoints& module, chalkpane::PluginInstance* block) { module.execPerField(block); });
}

void NotePointer(HostState& state, ContainerObject& container, const PointerStep& step) {
    InstanceInput& input = container.history.At(state.fieldsRun);
    input.pointer = step;
    input.windowWidth = state.window.width;
    input.windowHeight = state.window.height;
    input.isStep = state.isStep;
    InstanceHistory& history = container.history;
    if (step.kind == PointerKind::Release) history.isPressed = false;
    if (step.kind != PointerKind::Press) return;
    const auto* under = state.objects.Find<ContainerObject>(ContainerUnder(state, step.x, step.y));
    input.isOver = under == &container;
    if (input.isOver && !std::exchange(history.isPressed, true)) input.stroke = ++history.strokes;
}

void RebuildInstance(HostState& state, ContainerObject& container, const InstanceHistory& history) {
    auto fresh = std::make_unique<Instance>(container.instance->TheModule(), container.instance->Container());
    std::vector<ParameterValue> present;
    for (std::size_t i = 0; i < history.firstValues.size(); ++i) present.push_back(container.instance->Value(i));
    const std::vector<ObjectId> images = ImagesOn(state, container);
    EndInstance(state, *container.instance);
    RemoveTextures(state, container);
    for (const ObjectId image : images) state.objects.Remove(image);
    for (std::size_t i = 0; i < history.firstValues.size(); ++i) fresh->SetValue(i, history.firstValues[i]);
    container.instance = std::move(fresh);
    CanvasSubstitute* const substitute = std::exchange(container.substitute, nullptr);
    BeginInstance(state, *container.instance);
    PointerOfHistory pointer(state);
    auto input = history.inputs.begin();
    for (std::int64_t field = history.firstField; field < state.fieldsRun; ++field) {
        for (; input != history.inputs.end() && input->field <= field; ++input)
            Give(state, *container.instance, *input, pointer);
        state.redraw = false;
        PassField(state, *container.instance);
        if (state.redraw) RunRenderCallbacks(state, container);
    }
    for (std::size_t i = 0; i < present.size(); ++i) ChangeValue(state, *container.instance, {i, present[i]});
    container.substitute = substitute;
    state.ShowAnew();
}

}  // namespace kel
