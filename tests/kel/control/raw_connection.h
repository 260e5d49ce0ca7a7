#pragma once

#include <string>

namespace kel::testing {

// A plain connection over loopback that says what it is told to, right or wrong.
class RawConnection {
public:
    explicit RawConnection(int port);
    ~RawConnection();
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;
    RawConnection(RawConnection&& other) noexcept;
    RawConnection& operator=(RawConnection&&) = delete;

    [[nodiscard]] bool IsConnected() const { return m_handle >= 0; }
    // False: the other side takes no more.
    bool Send(const std::string& bytes) const;
    // All that comes until `end` has come, or the connection ends.
    [[nodiscard]] std::string ReadUntil(const std::string& end);
    [[nodiscard]] std::string ReadToTheEnd() { return ReadUntil({}); }

private:
    int m_handle = -1;
};

// The status line's number of what a whole HTTP request gets; 0: nothing. `body` gets what stands behind the headers.
int StatusOf(int port, const std::string& request, std::string* body = nullptr);

}  // namespace kel::testing
