#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace kel {

// Lines for the operator, from several threads.
class LiveNews {
public:
    void Tell(std::string line) {
        constexpr std::size_t most = 20;  // nobody reads more; a stream that comes and goes tells no end of them
        const std::lock_guard lock(m_mutex);
        if (m_lines.size() < most) m_lines.push_back(std::move(line));
    }
    [[nodiscard]] std::vector<std::string> Take() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_lines, {});
    }

private:
    std::mutex m_mutex;
    std::vector<std::string> m_lines;  // guarded by m_mutex
};

}  // namespace kel
