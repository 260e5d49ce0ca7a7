#include "kel/workspace/recording_file.h"

#include <utility>

#include "cli/error.h"
#include "cli/file_bytes.h"

namespace kel {

RecordingFile::RecordingFile(std::filesystem::path file, const std::string& text) : m_file(std::move(file)) {
    cli::WriteFileWhole(m_file, {text.begin(), text.end()});
    m_writer = std::thread([this] { WriteAll(); });
}

RecordingFile::~RecordingFile() {
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
    }
    m_changed.notify_one();
    m_writer.join();
}

void RecordingFile::Write(std::string text) {
    {
        const std::lock_guard lock(m_mutex);
        m_waiting = std::move(text);
    }
    m_changed.notify_one();
}

std::string RecordingFile::Trouble() const {
    const std::lock_guard lock(m_mutex);
    return m_trouble;
}

void RecordingFile::WriteAll() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_waiting || m_ends; });
        if (!m_waiting) return;
        const std::string text = *std::exchange(m_waiting, std::nullopt);
        lock.unlock();
        std::string trouble;
        try {
            cli::WriteFileWhole(m_file, {text.begin(), text.end()});
        } catch (const std::exception& failure) {
            trouble = failure.what();
        }
        lock.lock();
        m_trouble = trouble;
    }
}

}  // namespace kel
