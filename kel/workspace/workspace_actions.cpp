#include "kel/workspace/workspace_actions.h"

namespace kel {
namespace {

bool DoInk(Workspace& workspace, WorkspaceAction action) {
    using Recalled = chalkpane::InkDrawing::Recall;
    if (action == WorkspaceAction::Fade) {
        Workspace::Fading fading = workspace.InkFading();
        fading.isOn = !fading.isOn;
        workspace.SetFading(fading);
    } else if (const int kept = SlotOf(action, WorkspaceAction::Keep); kept != 0) {
        workspace.Keep(kept);
    } else if (const int over = SlotOf(action, WorkspaceAction::Recall); over != 0) {
        workspace.Recall(over, Recalled::Over);
    } else if (const int alone = SlotOf(action, WorkspaceAction::RecallInPlace); alone != 0) {
        workspace.Recall(alone, Recalled::InPlace);
    } else {
        return false;
    }
    return true;
}

bool IsOfVideo(WorkspaceAction action) {
    switch (action) {
        case WorkspaceAction::Pause:
        case WorkspaceAction::Step:
        case WorkspaceAction::StepBack:
        case WorkspaceAction::Start:
        case WorkspaceAction::Loop:
        case WorkspaceAction::Jump:
        case WorkspaceAction::JumpBack:
        case WorkspaceAction::Slower:
        case WorkspaceAction::Faster:
        case WorkspaceAction::MarkIn:
        case WorkspaceAction::MarkOut:
        case WorkspaceAction::NoMarks:
        case WorkspaceAction::Live:
        case WorkspaceAction::SaveClip:
            return true;
        default:
            return false;
    }
}

}  // namespace

bool DoWithoutDisplay(Workspace& workspace, WorkspaceAction action) {
    switch (action) {
        case WorkspaceAction::SavePicture:
            workspace.SavePicture();
            return true;
        case WorkspaceAction::SaveOverlay:
            workspace.SaveOverlay();
            return true;
        case WorkspaceAction::Undo:
            workspace.Undo();
            return true;
        case WorkspaceAction::Redo:
            workspace.Redo();
            return true;
        case WorkspaceAction::InkLeaves:
            workspace.SetInkLeaves(!workspace.DoesInkLeave());
            return true;
        default:
            if (DoInk(workspace, action)) return true;
            if (!IsOfVideo(action)) return false;
            workspace.DoVideo(action);
            return true;
    }
}

}  // namespace kel
