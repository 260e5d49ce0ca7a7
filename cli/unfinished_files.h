#pragma once

#include <filesystem>

namespace cli {

// The names of files that are being written, ".unfinished-PROCESS-MACHINE-RANDOM.ending", and what becomes of them when
// the process that writes them is ended.

// A name in `folder` that cannot be foreseen.
[[nodiscard]] std::filesystem::path UnfinishedName(const std::filesystem::path& folder,
                                                   const std::filesystem::path& ending);

// Deletes what processes of this machine that live no more have left in `folder`; once per process and folder. Those of
// other machines that share the folder stay: nobody here knows who of them lives.
void SweepUnfinished(const std::filesystem::path& folder);

// From here on INT, TERM and HUP delete the file before they end the process, where they would end it at once. Answers
// a number to forget it by; -1 when the list is full, as it is in commands that write many files, which stop at a place
// of their own choosing (interrupt_guard.h).
[[nodiscard]] int DeleteOnSignal(const std::filesystem::path& file);
void ForgetOnSignal(int slot);

}  // namespace cli
