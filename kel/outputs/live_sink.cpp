#include "kel/outputs/live_sink.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <exception>
#include <utility>

namespace kel {
namespace {

// A sixth of a second of a lively window: what is older is of no use to somebody who looks on.
constexpr std::size_t mostQueued = 8;
constexpr auto longestEnd = std::chrono::milliseconds(500);

std::chrono::nanoseconds ThreadTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

}  // namespace

LiveSink::LiveSink(LivePlan plan) : m_plan(std::move(plan)), m_output(m_plan.scheme->open(m_plan.address)) {
    m_figures.address = m_output->Address();
    m_figures.what = DescribeLive(m_plan);
}

LiveSink::~LiveSink() { StopThread(); }

void LiveSink::StopThread() {
    m_output->Stop();
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
        m_waiting.clear();
    }
    m_changed.notify_all();
    if (m_thread.joinable()) m_thread.join();
}

LiveFigures LiveSink::Figures() const {
    const std::lock_guard lock(m_mutex);
    return m_figures;
}

// The scene may be another one now, and time begins anew; to the reader it goes on.
void LiveSink::Open(const SinkSettings& settings) {
    m_rate = std::min(settings.fieldsPerSecond, m_plan.rate.value_or(settings.fieldsPerSecond));
    m_number = -1;
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.clear();
        m_openRate = m_rate;
    }
    if (!m_thread.joinable()) m_thread = std::thread([this] { Run(); });
}

std::int64_t LiveSink::NumberOf(double seconds) const { return std::llround(seconds * m_rate); }

bool LiveSink::Wants(double seconds) {
    if (NumberOf(seconds) <= m_number) return false;
    const std::lock_guard lock(m_mutex);
    if (!m_figures.hasReader) return false;
    if (m_waiting.size() < mostQueued) return true;
    m_number = NumberOf(seconds);
    ++m_figures.dropped;
    return false;
}

void LiveSink::TakeField(const OutputField& field) {
    if (!Wants(field.seconds)) return;
    m_number = NumberOf(field.seconds);
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.push_back(field);
        m_waiting.back().number = m_number;
    }
    m_changed.notify_all();
}

void LiveSink::FinishSoon() {
    const std::lock_guard lock(m_mutex);
    if (m_ends) return;
    m_ends = true;
    m_latestEnd = std::chrono::steady_clock::now() + longestEnd;
    m_changed.notify_all();
}

void LiveSink::Close() {
    FinishSoon();
    {
        Lock lock(m_mutex);
        m_changed.wait_until(lock, m_latestEnd, [this] { return m_isOver || !m_figures.hasReader; });
    }
    StopThread();
}

void LiveSink::Run() {
    std::string trouble;
    try {
        RunReaders();
    } catch (const std::exception& error) {
        trouble = error.what();
    }
    m_writer.reset();
    m_output->Leave();
    const std::lock_guard lock(m_mutex);
    m_figures.trouble = trouble;
    m_figures.hasReader = false;
    m_isOver = true;
    m_changed.notify_all();
}

void LiveSink::RunReaders() {
    bool goesOn = true;
    while (goesOn && m_output->WaitForReader()) {
        {
            const std::lock_guard lock(m_mutex);
            m_figures.hasReader = true;
            ++m_figures.readers;
        }
        goesOn = ServeReader();
        {
            const std::lock_guard lock(m_mutex);
            m_figures.hasReader = false;
            m_waiting.clear();
        }
        m_writer.reset();
        m_last.reset();
        m_sound = {};  // what is kept for it, such as a minute of live pictures, is given back
        m_output->Leave();
    }
}

// False: it was the last one.
bool LiveSink::ServeReader() {
    const std::chrono::nanoseconds before = ThreadTime();
    std::chrono::nanoseconds counted = before;
    while (const std::optional<OutputField> field = NextField()) {
        if (!Send(*field)) return true;
        const std::chrono::nanoseconds now = ThreadTime();
        const std::lock_guard lock(m_mutex);
        ++m_figures.sent;
        m_figures.processorTime += now - std::exchange(counted, now);
    }
    if (m_writer) (void)m_writer->End();
    return false;
}

std::optional<OutputField> LiveSink::NextField() {
    Lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_waiting.empty() || m_ends; });
    if (m_waiting.empty()) return {};
    OutputField field = std::move(m_waiting.front());
    m_waiting.pop_front();
    return field;
}

void LiveSink::Begin(const picture_io::Picture& picture) {
    {
        const std::lock_guard lock(m_mutex);
        m_writtenRate = m_openRate;
    }
    const bool hasAlpha = m_plan.view == View::Overlay;
    const VideoSettings settings{picture.width, picture.height, m_writtenRate, hasAlpha, {}};
    m_writer = std::make_unique<StreamWriter>(*m_plan.format, settings, *m_output,
                                              m_hasSound ? StreamWriter::Sound::Beside : StreamWriter::Sound::None);
    m_sound.BeginAnew();
}

bool LiveSink::SendSound(const OutputField& field) {
    if (!m_hasSound) return true;
    const auto number = static_cast<double>(field.number);
    return m_writer->WriteSound(m_sound.Take(field.sound, number / m_writtenRate, (number + 1) / m_writtenRate));
}

// A picture of another size, the first one with sound, or one of another scene whose time begins anew, is a stream of
// its own, for which readers come again.
bool LiveSink::Send(const OutputField& field) {
    const SharedPicture& picture = field.Of(m_plan.view);
    const bool hasSound = m_plan.view == View::Rendered && m_sound.IsThere(field.sound);
    const bool isOther = m_last && ((hasSound && !m_hasSound) || picture->width != m_last->width ||
                                    picture->height != m_last->height || field.number <= m_lastNumber);
    if (isOther) {
        (void)m_writer->End();
        return false;
    }
    if (!m_writer) {
        m_hasSound = hasSound;
        Begin(*picture);
    }
    const bool isSame = picture == m_last;
    m_last = picture;
    m_lastNumber = field.number;
    const bool isTaken = isSame ? m_writer->Repeat(field.number) : m_writer->Write(*picture, field.number);
    return isTaken && SendSound(field);
}

}  // namespace kel
