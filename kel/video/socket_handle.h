#pragma once

#include <unistd.h>

#include <utility>

namespace kel {

// Closes a socket when it ends; -1: there is none.
class SocketHandle {
public:
    explicit SocketHandle(int handle = -1) : m_handle(handle) {}
    ~SocketHandle() {
        if (m_handle >= 0) close(m_handle);
    }
    SocketHandle(const SocketHandle&) = delete;
    SocketHandle& operator=(const SocketHandle&) = delete;
    SocketHandle(SocketHandle&& other) noexcept : m_handle(std::exchange(other.m_handle, -1)) {}
    SocketHandle& operator=(SocketHandle&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }

    [[nodiscard]] int Get() const { return m_handle; }

private:
    int m_handle;
};

}  // namespace kel
