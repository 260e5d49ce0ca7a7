#include "cli/file_bytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>

#include "cli/error.h"
#include "cli/file_kind.h"
#include "cli/open_file.h"
#include "cli/staged_file.h"

namespace cli {
namespace {

using Bytes = std::vector<std::uint8_t>;

[[noreturn]] void RefuseReading(const std::filesystem::path& file, int number) {
    throw Error(file.string(), {}, "cannot be read: " + std::generic_category().message(number));
}

// Takes no more memory than the file is long; a stream, whose length nobody knows, doubles it.
Bytes ReadToEnd(int descriptor, std::size_t expected, const std::filesystem::path& file, std::size_t limit) {
    constexpr std::size_t smallest = std::size_t{1} << 12;
    const std::size_t most = limit == std::numeric_limits<std::size_t>::max() ? limit : limit + 1;
    Bytes bytes(std::min(expected + 1, most));  // one more, to meet the end of the file without growing
    std::size_t size = 0;
    for (;;) {
        if (size == bytes.size()) bytes.resize(std::min(most, std::max(smallest, 2 * size)));
        const ssize_t got = read(descriptor, bytes.data() + size, bytes.size() - size);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) RefuseReading(file, errno);
        size += static_cast<std::size_t>(got);
        if (size > limit) throw Error(file.string(), {}, "is larger than " + std::to_string(limit >> 20U) + " MiB");
        if (got == 0) break;
    }
    bytes.resize(size);
    return bytes;
}

}  // namespace

Bytes ReadFileBytes(const std::filesystem::path& file, std::size_t limit) {
    // A FIFO would be waited for.
    const OpenFile opened(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!opened || fstat(opened.Descriptor(), &status) != 0) {
        const int failure = errno;
        RequireRegularFile(file);  // a socket does not even open
        RefuseReading(file, failure);
    }
    RefuseUnlessRegular(file, status.st_mode, "");
    return ReadToEnd(opened.Descriptor(), static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)), file, limit);
}

Bytes ReadStandardInput(std::size_t limit) { return ReadToEnd(STDIN_FILENO, 0, "standard input", limit); }

void WriteStandardOutput(std::span<const std::uint8_t> bytes) {
    if (const int failure = WriteAll(STDOUT_FILENO, bytes); failure != 0)
        throw Error("standard output", {}, "cannot be written: " + std::generic_category().message(failure));
}

void WriteFileWhole(const std::filesystem::path& file, std::span<const std::uint8_t> bytes) {
    StagedFile staged(file);
    staged.Write(bytes);
    staged.Commit();
}

void WriteFileWhole(const std::filesystem::path& file, std::string_view text) {
    WriteFileWhole(file, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

}  // namespace cli
