#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "kel/control/control_runner.h"
#include "kel/workspace/embedded_text.h"
#include "kel/workspace/workspace_actions.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/pixels.h"

namespace kel::testing {

// A workspace on a grey picture, without a window: what needs a display is only counted.
class BareTarget final : public ControlTarget {
public:
    static constexpr std::int32_t width = 320;
    static constexpr std::int32_t height = 240;

    explicit BareTarget(const std::string& file = "grey.png") {
        picture_io::WritePicture(Plain(width, height, {90, 90, 90, 255}), folder / "grey.png");
        WorkspaceOptions options;
        options.module = CHALKPANE_MODULE;
        options.recording = folder / "run.json";
        options.saves = folder.Path();
        workspace = std::make_unique<Workspace>(folder / file, options);
        keys = FitKeys(ParseKeys(std::string(DefaultKeysText()), "keys.json"), workspace->Chosen()->registration,
                       KeyFit::All);
        workspace->RunFields(1);
    }

    Workspace& TheWorkspace() override { return *workspace; }
    [[nodiscard]] const FittedKeys& Keys() override { return keys; }
    void DoAction(WorkspaceAction action) override {
        if (!DoWithoutDisplay(*workspace, action)) displayed.push_back(action);
    }
    void DoKey(const FittedKeys::Key& key) override {
        if (key.action)
            DoAction(*key.action);
        else if (key.module)
            workspace->Do(*key.module);
    }

    nlohmann::json Run(const std::string& line, ControlNumbers numbers = ControlNumbers::Exact) {
        return nlohmann::json::parse(RunControlLine(*this, line, numbers).json);
    }
    // The reason of the refusal; empty when it was done.
    std::string Refusal(const std::string& line) { return Run(line).value("error", ""); }
    nlohmann::json Value(const std::string& parameter) { return Run("get " + parameter)["value"]; }

    cli::testing::TemporaryFolder folder;
    std::unique_ptr<Workspace> workspace;
    FittedKeys keys;
    std::vector<WorkspaceAction> displayed;
};

}  // namespace kel::testing
