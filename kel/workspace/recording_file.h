#pragma once

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>

namespace kel {

// A file that grows by whole pieces of text, on a thread of its own so that no field waits for the disk. Nothing that
// stands in it is written again.
class RecordingFile {
public:
    // Puts the first piece in place of whatever is there before it returns. Throws Error naming the file and the
    // reason.
    RecordingFile(std::filesystem::path file, const std::string& text);
    ~RecordingFile();  // writes what is not written yet
    RecordingFile(const RecordingFile&) = delete;
    RecordingFile& operator=(const RecordingFile&) = delete;
    RecordingFile(RecordingFile&&) = delete;
    RecordingFile& operator=(RecordingFile&&) = delete;

    // Returns at once. What cannot be written waits for the next piece.
    void Append(const std::string& text);

    // Why the last piece could not be written; empty when it was.
    [[nodiscard]] std::string Trouble() const;

private:
    void WriteAll();
    [[nodiscard]] std::string WritePiece(const std::string& text);

    std::filesystem::path m_file;
    int m_descriptor = -1;
    std::int64_t m_length = 0;  // bytes that are whole
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_waiting;   // guarded by m_mutex, as are the next three
    bool m_hasNews = false;  // something was appended since the last try
    bool m_ends = false;
    std::string m_trouble;
    std::thread m_writer;
};

}  // namespace kel
