#include "cli/file_bytes.h"

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

// 0, or the error's number.
int WriteAll(const std::filesystem::path& file, const std::vector<std::uint8_t>& bytes) {
    File stream(std::fopen(file.c_str(), "wb"));
    if (!stream) return errno;
    if (std::fwrite(bytes.data(), 1, bytes.size(), stream.get()) != bytes.size()) return errno;
    return std::fclose(stream.release()) == 0 ? 0 : errno;  // a full disk may show only now
}

}  // namespace

std::vector<std::uint8_t> ReadFileBytes(const std::filesystem::path& file) {
    const File stream(std::fopen(file.c_str(), "rb"));
    if (!stream) Refuse(file, "cannot be read", errno);
    std::vector<std::uint8_t> bytes;
    constexpr std::size_t step = std::size_t{1} << 16;
    for (std::size_t got = step; got == step;) {
        const std::size_t before = bytes.size();
        bytes.resize(before + step);
        got = std::fread(bytes.data() + before, 1, step, stream.get());
        bytes.resize(before + got);
    }
    if (std::ferror(stream.get()) != 0) Refuse(file, "cannot be read", errno);
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
