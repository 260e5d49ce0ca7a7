#include "kel/video/frames_ahead.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kel {

FramesAhead::FramesAhead(VideoReader reader) : m_reader(std::move(reader)), m_thread([this] { DecodeFrames(); }) {}

FramesAhead::~FramesAhead() {
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

picture_io::Picture FramesAhead::Take(std::int64_t frame, const std::vector<std::int64_t>& coming) {
    std::unique_lock lock(m_mutex);
    m_wanted = {frame};
    m_wanted.insert(m_wanted.end(), coming.begin(), coming.end());
    ForgetUnwanted();
    m_changed.notify_all();
    m_changed.wait(lock, [&] { return m_decoded.contains(frame); });
    Decoded taken = std::move(m_decoded.at(frame));
    m_decoded.erase(frame);
    m_wanted.erase(m_wanted.begin());
    if (taken.damage) std::rethrow_exception(taken.damage);
    return std::move(taken.picture);
}

// Guarded by m_mutex.
void FramesAhead::ForgetUnwanted() {
    for (auto each = m_decoded.begin(); each != m_decoded.end();) {
        const bool isWanted = std::ranges::find(m_wanted, each->first) != m_wanted.end();
        if (!isWanted) Spare(std::move(each->second.picture));
        each = isWanted ? std::next(each) : m_decoded.erase(each);
    }
}

// Guarded by m_mutex.
void FramesAhead::Spare(picture_io::Picture picture) {
    constexpr std::size_t most = 2;  // one is shown, and the others wait to be
    if (m_spare.size() < most) m_spare.push_back(std::move(picture));
}

void FramesAhead::GiveBack(picture_io::Picture picture) {
    const std::lock_guard lock(m_mutex);
    Spare(std::move(picture));
}

void FramesAhead::SetConversion(VideoConversion conversion) {
    const std::lock_guard lock(m_mutex);
    if (conversion == m_conversion) return;
    m_conversion = conversion;
    ++m_setting;
    m_decoded.clear();
    m_wanted.clear();
}

const std::int64_t* FramesAhead::NextWanted() const {
    const auto next = std::ranges::find_if(m_wanted, [&](std::int64_t frame) { return !m_decoded.contains(frame); });
    return next == m_wanted.end() ? nullptr : &*next;
}

FramesAhead::Decoded FramesAhead::Decode(std::int64_t frame, picture_io::Picture memory) {
    Decoded decoded;
    decoded.picture = std::move(memory);
    try {
        m_reader.ReadFrameUp(frame, decoded.picture);
    } catch (...) {
        decoded.damage = std::current_exception();
    }
    return decoded;
}

void FramesAhead::DecodeFrames() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_ends || NextWanted() != nullptr; });
        if (m_ends) return;
        const std::int64_t frame = *NextWanted();
        const std::int64_t setting = m_setting;
        m_reader.SetConversion(m_conversion);
        picture_io::Picture memory;
        if (!m_spare.empty()) {
            memory = std::move(m_spare.back());
            m_spare.pop_back();
        }
        lock.unlock();
        Decoded decoded = Decode(frame, std::move(memory));
        lock.lock();
        const bool isWanted = setting == m_setting && std::ranges::find(m_wanted, frame) != m_wanted.end();
        if (isWanted)
            m_decoded.insert_or_assign(frame, std::move(decoded));
        else
            Spare(std::move(decoded.picture));
        m_changed.notify_all();
    }
}

}  // namespace kel
