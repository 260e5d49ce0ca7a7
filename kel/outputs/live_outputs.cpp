#include "kel/outputs/live_outputs.h"

#include <exception>
#include <utility>

namespace kel {
namespace {

// Two seconds of a lively window; a picture of 1280 x 720 pixels is 4 MB.
constexpr std::size_t mostWaiting = 100;

}  // namespace

void LiveOutputs::Start(WindowSize window, double fieldsPerSecond) {
    if (!m_options.WantAnything()) return;
    try {
        m_outputs = std::make_unique<Outputs>(m_options, window, fieldsPerSecond, 0);
    } catch (const std::exception&) {
        return;
    }
    if (!m_outputs->AreLive())
        m_outputs.reset();
    else
        m_writer = std::thread([this] { WriteFields(); });
}

void LiveOutputs::TakeField(Host& host) {
    if (!m_outputs) return;
    PassOn();
    if (!m_outputs) return;
    m_last = m_outputs->Look(host);
    m_hasField = true;
}

void LiveOutputs::TakeFieldAgain(Host& host) {
    if (m_outputs && m_hasField) m_last = m_outputs->LookAgain(host);
}

void LiveOutputs::PassOn() {
    if (!m_hasField) return;
    bool isLate = false;
    {
        const std::lock_guard lock(m_mutex);
        isLate = m_hasFailed || m_waiting.size() >= mostWaiting;
        if (!isLate) m_waiting.push_back(std::exchange(m_last, {}));
    }
    if (isLate) return Abandon();
    m_changed.notify_one();
}

void LiveOutputs::Abandon() {
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.clear();
    }
    End();
    m_outputs.reset();
}

bool LiveOutputs::Finish() {
    if (m_outputs) PassOn();
    End();
    if (!m_outputs || m_hasFailed || !m_hasField) {
        m_outputs.reset();
        return false;
    }
    try {
        m_outputs->Finish();
    } catch (const std::exception&) {
        m_outputs.reset();
        return false;
    }
    return true;
}

// The writer has written what waits.
void LiveOutputs::End() {
    if (!m_writer.joinable()) return;
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
    }
    m_changed.notify_one();
    m_writer.join();
}

void LiveOutputs::WriteFields() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return !m_waiting.empty() || m_ends; });
        if (m_waiting.empty()) return;
        const std::vector<OutputField> fields = std::move(m_waiting.front());
        m_waiting.pop_front();
        lock.unlock();
        bool hasFailed = false;
        try {
            m_outputs->Take(fields);
        } catch (const std::exception&) {
            hasFailed = true;
        }
        lock.lock();
        if (!hasFailed) continue;
        m_hasFailed = true;
        return;
    }
}

}  // namespace kel
