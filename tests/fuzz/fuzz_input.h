#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "cli/error.h"

// What the targets share. A target gives bytes from nowhere to one reader; it may refuse them with an Error, and
// whatever else happens to it, an exception, a crash, a leak or an undefined value, is found.

namespace fuzz {

inline std::string TextOf(const std::uint8_t* bytes, std::size_t size) {
    return {reinterpret_cast<const char*>(bytes), size};
}

template <typename Call>
void TakeOrRefuse(Call call) {
    try {
        call();
    } catch (const cli::Error&) {  // what readers are asked to say
    }
}

// The bytes as a regular file that no disk sees, for readers that open what they are given by name.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* bytes, std::size_t size) : m_handle(memfd_create("fuzz", MFD_CLOEXEC)) {
        if (m_handle < 0 || write(m_handle, bytes, size) != static_cast<ssize_t>(size)) std::abort();
    }
    ~MemoryFile() { close(m_handle); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    MemoryFile(MemoryFile&&) = delete;
    MemoryFile& operator=(MemoryFile&&) = delete;

    [[nodiscard]] std::filesystem::path Path() const { return "/proc/self/fd/" + std::to_string(m_handle); }

private:
    int m_handle;
};

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);
