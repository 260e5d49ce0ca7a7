#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace chalkpane::app {

inline void AddRateOption(CLI::App& command, double& rate) {
    command.add_option("--rate", rate, "Frames to a second of the preset's times")
        ->type_name("RATE")
        ->capture_default_str()
        ->check(CLI::Range(0.001, 100000.0));
}

// --frames A..B and --rate R. usualFrames: what is taken without --frames, for the help.
inline void AddFrameOptions(CLI::App& command, std::string& frames, double& rate, const std::string& usualFrames) {
    command.add_option("--frames", frames, "The frames, such as 0..99 (default: " + usualFrames + ")")
        ->type_name("A..B");
    AddRateOption(command, rate);
}

inline void AddSaveOption(CLI::App& command, std::string& file, const std::string& what) {
    command.add_option("--save-preset", file, what)->type_name("PRESET");
}

}  // namespace chalkpane::app
