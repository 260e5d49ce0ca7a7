#pragma once

#include <sys/types.h>

#include <filesystem>

namespace cli {

// The programs read and write regular files, and standard input and output where a name is "-". Everything else that a
// name can lead to is refused: a FIFO would be waited for, and a device has no end.

// Throws Error, "FILE: PREFIXis a folder" or "is not a regular file", for what is there and is no regular file. Links
// are followed; nothing there passes.
void RefuseUnlessRegular(const std::filesystem::path& file, const char* prefix);
void RefuseUnlessRegular(const std::filesystem::path& file, mode_t mode, const char* prefix);

// Where a file that is written under this name lies: links are followed, also those that lead to nothing yet. Throws
// Error when they lead round in a circle.
[[nodiscard]] std::filesystem::path BehindLinks(const std::filesystem::path& file);

// The folder that a file is in; "." where its name has none.
[[nodiscard]] std::filesystem::path FolderOf(const std::filesystem::path& file);

}  // namespace cli
