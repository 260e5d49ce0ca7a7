#pragma once

#include <filesystem>
#include <optional>

#include "kel/control/control_service.h"
#include "kel/outputs/live_outputs.h"
#include "kel/outputs/live_streams.h"
#include "kel/workspace/keys_table.h"
#include "kel/workspace/workspace.h"

namespace kel {

struct WindowOptions {
    std::filesystem::path file;  // a picture, a video or a session; no meaning where live pictures are open
    WorkspaceOptions workspace;  // what it says of OpenGL and of sizes is the window's own business
    KeysTable keys;
    bool areKeysGiven = false;          // by the operator: keys that the module has no use for are errors
    bool hasSteps = true;               // the module is stepped as the pressed pointer moves, not with fields alone
    bool hasTail = true;                // the pen's way is shown to the pointer before the module draws it
    bool hasPen = true;                 // the end of a pen that erases makes the brush an eraser
    bool hasCleanOutput = false;        // a second window with the picture alone
    std::optional<int> cleanDisplay;    // the one that it fills, counted from 1
    PacketRing::Limits replay;          // of live pictures that are opened in the window
    bool hasKeyFill = false;            // two windows with the strokes alone, for a mixer
    std::optional<int> keyFillDisplay;  // the one that the fill fills, counted from 1; the key has the next
    bool isKeyFillStraight = false;     // the fill's colours are not multiplied by alpha
    bool followsVideo = false;          // what is written has a field for each frame of the video that is open
    LiveOutputs* live = nullptr;        // borrowed; gets every field of the file as it is drawn; null: nobody does
    LiveStreams* streams = nullptr;     // borrowed; gets every picture that is drawn; null: nobody does
    ControlService* control = nullptr;  // borrowed; commands come through it; null: from nobody
};

// Opens the workspace in a window and returns when the operator has closed it. Throws Error when that cannot be done.
void RunWorkspaceWindow(WindowOptions options);

}  // namespace kel
