#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <span>
#include <utility>

namespace cli {

// A file descriptor, closed at the end.
class OpenFile {
public:
    explicit OpenFile(int descriptor) : m_descriptor(descriptor) {}
    ~OpenFile() {
        if (m_descriptor >= 0) close(m_descriptor);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    OpenFile(OpenFile&&) = delete;
    OpenFile& operator=(OpenFile&&) = delete;

    explicit operator bool() const { return m_descriptor >= 0; }
    [[nodiscard]] int Descriptor() const { return m_descriptor; }
    // 0, or the error's number: a full disk may show only now.
    [[nodiscard]] int Close() { return close(std::exchange(m_descriptor, -1)) == 0 ? 0 : errno; }

private:
    int m_descriptor;
};

// 0, or the error's number.
inline int WriteAll(int descriptor, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) return errno;
        if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return 0;
}

}  // namespace cli
