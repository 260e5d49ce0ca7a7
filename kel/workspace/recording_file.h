#pragma once

#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace kel {

// A file that always holds the last text it was given, whole, whatever becomes of the program: each is written under
// another name beside it and renamed, on a thread of its own so that no field waits for the disk.
class RecordingFile {
public:
    // Writes the first text before it returns. Throws Error naming the file and the reason.
    RecordingFile(std::filesystem::path file, const std::string& text);
    ~RecordingFile();  // writes what is not written yet
    RecordingFile(const RecordingFile&) = delete;
    RecordingFile& operator=(const RecordingFile&) = delete;
    RecordingFile(RecordingFile&&) = delete;
    RecordingFile& operator=(RecordingFile&&) = delete;

    // Returns at once. Of texts that come faster than they are written the last one counts.
    void Write(std::string text);

    // Why the last text could not be written; empty when it was.
    [[nodiscard]] std::string Trouble() const;

private:
    void WriteAll();

    std::filesystem::path m_file;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<std::string> m_waiting;  // guarded by m_mutex, as are the next two
    bool m_ends = false;
    std::string m_trouble;
    std::thread m_writer;
};

}  // namespace kel
