#include "kel/workspace/recording_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "cli/error.h"
#include "cli/file_bytes.h"

namespace kel {

RecordingFile::RecordingFile(std::filesystem::path file, const std::string& text) : m_file(std::move(file)) {
    cli::WriteFileWhole(m_file, text);
    m_descriptor = open(m_file.c_str(), O_WRONLY | O_CLOEXEC);
    if (m_descriptor < 0)
        throw cli::Error(m_file.string(), {}, "cannot be written: " + std::generic_category().message(errno));
    m_length = static_cast<std::int64_t>(text.size());
    m_writer = std::thread([this] { WriteAll(); });
}

RecordingFile::~RecordingFile() {
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
    }
    m_changed.notify_one();
    m_writer.join();
    close(m_descriptor);
}

void RecordingFile::Append(const std::string& text) {
    {
        const std::lock_guard lock(m_mutex);
        m_waiting += text;
        m_hasNews = true;
    }
    m_changed.notify_one();
}

std::string RecordingFile::Trouble() const {
    const std::lock_guard lock(m_mutex);
    return m_trouble;
}

// What is wrong; empty: it is written. Of a piece that could not be written as a whole nothing stays behind.
std::string RecordingFile::WritePiece(const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const auto at = static_cast<off_t>(m_length) + static_cast<off_t>(done);
        const ssize_t count = pwrite(m_descriptor, text.data() + done, text.size() - done, at);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) {
            const int reason = count < 0 ? errno : ENOSPC;
            std::string trouble = m_file.string() + ": cannot be written: " + std::generic_category().message(reason);
            if (ftruncate(m_descriptor, static_cast<off_t>(m_length)) != 0) trouble += "; its last line is torn";
            return trouble;
        }
        done += static_cast<std::size_t>(count);
    }
    m_length += static_cast<std::int64_t>(text.size());
    return {};
}

void RecordingFile::WriteAll() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_hasNews || m_ends; });
        m_hasNews = false;
        if (m_waiting.empty() && m_ends) return;
        const std::string text = std::exchange(m_waiting, {});
        lock.unlock();
        std::string trouble = WritePiece(text);
        lock.lock();
        m_trouble = std::move(trouble);
        if (m_trouble.empty()) continue;
        m_waiting.insert(0, text);
        if (m_ends) return;
    }
}

}  // namespace kel
