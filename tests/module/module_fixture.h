#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "module/abi/entry_points.h"
#include "module/memory_report.h"
#include "module/plugin_instance.h"
#include "tests/module/recording_host.h"
#include "tests/telestrator/telestrator_fixture.h"

namespace chalkpane::testing {

// What a freshly registered instance holds.
inline PluginParameters DefaultParameters() {
    PluginParameters values{};
    values.Active = 1;
    values.TexUnit = 1;
    values.Transparent = 1;
    values.Alpha = 100;
    values.BrushImage = "";
    values.BrushWidth = 5;
    values.EraserWidth = 10;
    values.BrushColor = 0xF0000000;
    values.RecoEllipse = 1;
    values.RecoCross = 1;
    values.ShapeDelay = 50;
    values.Arrow = 1;
    values.ArrowLength = 30;
    values.ArrowWidth = 20;
    values.MaxUndos = 10;
    return values;
}

// A host and one instance in a block of the registered size, full of noise where the host writes nothing.
class ModuleFixture {
public:
    explicit ModuleFixture(const PluginParameters& values = DefaultParameters()) : plugin(Construct(values)) {}
    ~ModuleFixture() {
        if (!cleanedUp_) PLUGIN_CLEANUP_FUNCTION(&plugin);
    }
    ModuleFixture(const ModuleFixture&) = delete;
    ModuleFixture& operator=(const ModuleFixture&) = delete;

    void Field() { PLUGIN_EXEC_PER_FIELD(&plugin); }
    void Fields(int count) {
        for (int i = 0; i < count; ++i) Field();
    }
    std::int32_t Press(std::int32_t x, std::int32_t y) {
        return PLUGIN_MOUSE_CALLBACK(&plugin, 0, 1, 1, 1, x, y, 0, 0);
    }
    std::int32_t Release(std::int32_t x, std::int32_t y) {
        return PLUGIN_MOUSE_CALLBACK(&plugin, 0, 1, 0, 1, x, y, 0, 0);
    }
    // The pointer goes there and a field passes.
    void Move(std::int32_t x, std::int32_t y) {
        host.pointerX = x;
        host.pointerY = y;
        Field();
    }
    std::int32_t PreRender() { return PLUGIN_PRE_RENDER_OPENGL(&plugin, 0, 0); }
    std::int32_t PostRender() { return PLUGIN_POST_RENDER_OPENGL(&plugin, 0, 0); }
    void CleanUp() {
        PLUGIN_CLEANUP_FUNCTION(&plugin);
        cleanedUp_ = true;
    }

    RecordingHost host;
    alignas(std::max_align_t) std::array<std::byte, instanceBlockSize> block;
    PluginInstance& plugin;

private:
    PluginInstance& Construct(const PluginParameters& values) {
        block.fill(std::byte{0xA5});
        std::memcpy(block.data(), &values, sizeof values);
        void* address = block.data();
        return *PLUGIN_INIT_FUNCTION(static_cast<PluginInstance*>(address));
    }

    bool cleanedUp_ = false;
};

// What the telestrator of an instance does on its own, told as the module tells it.
inline void SizeRecognitionBuffers(PluginInstance& plugin, bool wanted) {
    plugin.telestrator.SizeRecognitionBuffers(wanted);
    ReportMemoryFailures(plugin);
}
[[nodiscard]] inline ShapeInput Input(PluginInstance& plugin) {
    static TelestratorSettings settings;  // the input borrows them
    settings = SettingsOf(plugin);
    return plugin.telestrator.RecognitionInput(settings);
}
inline void FinishStroke(PluginInstance& plugin) {
    plugin.telestrator.FinishStroke(SettingsOf(plugin));
    ReportMemoryFailures(plugin);
}

// Collects what goes to standard output.
class OutputCapture {
public:
    OutputCapture() : saved_(stdout) { stdout = open_memstream(&text_, &size_); }
    ~OutputCapture() { Stop(); }
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;

    std::string Stop() {
        if (saved_ != nullptr) {
            std::fclose(stdout);
            stdout = saved_;
            saved_ = nullptr;
            collected_.assign(text_, size_);
            std::free(text_);
        }
        return collected_;
    }

private:
    FILE* saved_;
    char* text_ = nullptr;
    std::size_t size_ = 0;
    std::string collected_;
};

inline const std::string noMemoryMessage = "Chalkpane Exception: No Memory left!\n";

}  // namespace chalkpane::testing
