#include "kel/video/frames_ahead.h"

#include <algorithm>
#include <utility>

namespace kel {

FramesAhead::FramesAhead(const std::filesystem::path& file) : m_reader(file), m_thread([this] { DecodeFrames(); }) {}

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
    std::erase_if(m_decoded,
                  [&](const auto& each) { return std::ranges::find(m_wanted, each.first) == m_wanted.end(); });
    m_changed.notify_all();
    m_changed.wait(lock, [&] { return m_decoded.contains(frame); });
    Decoded taken = std::move(m_decoded.at(frame));
    m_decoded.erase(frame);
    m_wanted.erase(m_wanted.begin());
    if (taken.damage) std::rethrow_exception(taken.damage);
    return std::move(taken.picture);
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

FramesAhead::Decoded FramesAhead::Decode(std::int64_t frame) {
    Decoded decoded;
    try {
        decoded.picture = m_reader.ReadFrame(frame);
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
        lock.unlock();
        Decoded decoded = Decode(frame);
        lock.lock();
        const bool isWanted = setting == m_setting && std::ranges::find(m_wanted, frame) != m_wanted.end();
        if (isWanted) m_decoded.insert_or_assign(frame, std::move(decoded));
        m_changed.notify_all();
    }
}

}  // namespace kel
