#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>

namespace cli {

// --memory SIZE, of a command that counts what its inputs take with a MemoryBudget.
inline void AddMemoryOption(CLI::App& command, std::uint64_t& memory) {
    command.add_option("--memory", memory, "What may be taken, such as 4G (default: half of the machine's)")
        ->transform(CLI::AsSizeValue(false))
        ->type_name("SIZE");
}

}  // namespace cli
