#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "apps/chalkpane/filtering/picture_look.h"
#include "apps/chalkpane/presets/preset.h"
#include "cli/error.h"
#include "picture_io/output_files.h"

namespace chalkpane::app {

inline const CLI::Range rateRange(0.001, 100000.0);

inline void AddRateOption(CLI::App& command, double& rate) {
    command.add_option("--rate", rate, "Frames to a second of the preset's times")
        ->type_name("RATE")
        ->capture_default_str()
        ->check(rateRange);
}

// --frames A..B. usualFrames: what is taken without it, for the help.
inline void AddFramesOption(CLI::App& command, std::string& frames, const std::string& usualFrames) {
    command.add_option("--frames", frames, "The frames, such as 0..99 (default: " + usualFrames + ")")
        ->type_name("A..B");
}

inline void AddFrameOptions(CLI::App& command, std::string& frames, double& rate, const std::string& usualFrames) {
    AddFramesOption(command, frames, usualFrames);
    AddRateOption(command, rate);
}

// --save-preset FILE and --overwrite.
struct SavedPreset {
    std::string file;  // empty: none is to be written
    bool overwrites = false;
};

// --quality, --compression, --background and --strip.
inline void AddLookOptions(CLI::App& command, PictureLook& look) {
    command
        .add_option("--quality", look.quality,
                    "Of a JPEG, 1 to 100 (default: 95); of a WebP, AVIF or HEIC, 100 loses nothing")
        ->type_name("NUMBER")
        ->check(CLI::Range(1, 100));
    command.add_option("--compression", look.compression, "Of a PNG, 0 (none, fastest) to 9 (default: 4)")
        ->type_name("NUMBER")
        ->check(CLI::Range(0, 9));
    command.add_option("--background", look.background, "What shows through in formats without alpha (default: white)")
        ->type_name("COLOR");
    command.add_flag("--strip", look.strips, "Leaves out color profile, EXIF, resolution and text of the input");
}

inline void AddSaveOption(CLI::App& command, SavedPreset& saved, const std::string& what) {
    command.add_option("--save-preset", saved.file, what)->type_name("PRESET");
    command.add_flag("--overwrite", saved.overwrites, "Lets --save-preset replace a file that is no preset");
}

// Says early that the preset will be written. Throws cli::Error when it cannot be, or when the file there is no preset
// and nobody said that it may go.
inline void AnnouncePreset(const SavedPreset& saved, picture_io::OutputFiles& outputs) {
    if (saved.file.empty()) return;
    outputs.AnnounceOther(saved.file);
    if (!saved.overwrites && !IsNothingOrPreset(saved.file))
        throw cli::Error(saved.file, {}, "is no preset; --overwrite replaces it all the same");
}

}  // namespace chalkpane::app
