#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>

#include "picture_io/row_reader.h"

namespace chalkpane::app {

// The rows of a picture file, decoded on a thread of its own a little ahead of whoever takes them.
class RowsAhead {
public:
    // count: rows at a time
    RowsAhead(picture_io::RowReader& reader, std::int32_t count);
    ~RowsAhead();
    RowsAhead(const RowsAhead&) = delete;
    RowsAhead& operator=(const RowsAhead&) = delete;
    RowsAhead(RowsAhead&&) = delete;
    RowsAhead& operator=(RowsAhead&&) = delete;

    // The next rows; the caller counts and asks for no more than there are. What reading throws comes out of here.
    [[nodiscard]] picture_io::AnyPicture Take();

private:
    void Decode();

    static constexpr std::size_t mostReady = 2;

    picture_io::RowReader& m_reader;
    std::int32_t m_count;
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::deque<picture_io::AnyPicture> m_ready;
    std::exception_ptr m_failure;
    bool m_isOver = false;
    std::jthread m_thread;
};

}  // namespace chalkpane::app
