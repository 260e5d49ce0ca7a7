#include "cli/file_bytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>
#include <system_error>

#include "cli/error.h"

namespace cli {
namespace {

struct CloseFile {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& what, int number) {
    throw Error(file.string(), {}, what + ": " + std::generic_category().message(number));
}

void CheckKind(const std::filesystem::path& file, const struct stat& status) {
    if (S_ISDIR(status.st_mode)) throw Error(file.string(), {}, "is a folder");
    if (!S_ISREG(status.st_mode)) throw Error(file.string(), {}, "is not a regular file");
}

// Opened before it is looked at, so that what is read is what was checked; without waiting, as a pipe would.
File OpenRegular(const std::filesystem::path& file) {
    const int handle = ::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (handle < 0) {
        const int failure = errno;
        RequireRegularFile(file);  // a socket does not even open
        Refuse(file, "cannot be read", failure);
    }
    File stream(::fdopen(handle, "rb"));
    if (!stream) ::close(handle);
    struct stat status {};
    if (!stream || ::fstat(handle, &status) != 0) Refuse(file, "cannot be read", errno);
    CheckKind(file, status);
    return stream;
}

// 0, or the error's number.
int WriteAll(const std::filesystem::path& file, const std::vector<std::uint8_t>& bytes) {
    File stream(std::fopen(file.c_str(), "wb"));
    if (!stream) return errno;
    if (std::fwrite(bytes.data(), 1, bytes.size(), stream.get()) != bytes.size()) return errno;
    return std::fclose(stream.release()) == 0 ? 0 : errno;  // a full disk may show only now
}

}  // namespace

void RequireRegularFile(const std::filesystem::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) == 0) CheckKind(file, status);
}

std::vector<std::uint8_t> ReadFileBytes(const std::filesystem::path& file, std::size_t largest) {
    const File stream = OpenRegular(file);
    std::vector<std::uint8_t> bytes;
    constexpr std::size_t step = std::size_t{1} << 16;
    for (std::size_t got = step; got == step && bytes.size() <= largest;) {
        const std::size_t before = bytes.size();
        bytes.resize(before + step);
        got = std::fread(bytes.data() + before, 1, step, stream.get());
        bytes.resize(before + got);
    }
    if (std::ferror(stream.get()) != 0) Refuse(file, "cannot be read", errno);
    if (bytes.size() > largest)
        throw Error(file.string(), {}, "is larger than " + std::to_string(largest >> 20U) + " MiB");
    return bytes;
}

void WriteFileWhole(const std::filesystem::path& file, const std::vector<std::uint8_t>& bytes) {
    std::filesystem::path unfinished = file;
    unfinished += ".unfinished." + std::to_string(::getpid());
    int failure = WriteAll(unfinished, bytes);
    if (failure == 0 && std::rename(unfinished.c_str(), file.c_str()) != 0) failure = errno;
    if (failure == 0) return;
    std::remove(unfinished.c_str());
    Refuse(file, "cannot be written", failure);
}

}  // namespace cli
