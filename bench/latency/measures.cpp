#include "bench/latency/measures.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>
#include <thread>

#include "bench/latency/screen_watch.h"

namespace latency {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int strokeLength = 900;    // pixels
constexpr int halfStrip = 14;        // pixels above and below the pointer's line
constexpr int eventLength = 14;      // pixels from one measured event to the next
constexpr auto motionPeriod = 8ms;   // as a usual mouse reports
constexpr double motionSpeed = 600;  // pixels a second
constexpr auto longestWait = std::chrono::milliseconds(static_cast<int>(neverCame));  // for a change
constexpr auto picturePause = 4ms;  // between two looks at them: none is shown for less than two
constexpr auto tipWait = 250ms;     // after the change, for the ink to come to the pointer
constexpr auto lookTime = 500ms;    // before anything is done, in which a video shows that it plays
constexpr auto shapeTime = 2s;      // after a stroke, in which it may become a shape
constexpr auto lookPause = 150us;   // between two looks, so that the measuring leaves the processor to the others

double Milliseconds(Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

void WaitUntilStill(ScreenWatch& watch) {
    auto changed = Clock::now();
    const auto end = changed + 1s;
    while (Clock::now() - changed < 80ms && Clock::now() < end) {
        if (watch.Look()) changed = Clock::now();
        std::this_thread::sleep_for(2ms);
    }
}

// Pictures a second that are seen in so much time.
double PictureRate(ScreenWatch& pictures, Clock::duration time) {
    (void)pictures.Look();
    const auto start = Clock::now();
    int seen = 0;
    while (Clock::now() - start < time) {
        if (pictures.Look()) ++seen;
        std::this_thread::sleep_for(picturePause);
    }
    return seen / std::chrono::duration<double>(Clock::now() - start).count();
}

struct Answer {
    Clock::duration change = longestWait;
    Clock::duration tip = longestWait;
};

// Until there is ink at the place, or nothing comes any more. Over a video, only ink is a change.
Answer WaitForInk(ScreenWatch& watch, int x, bool isVideo, Clock::time_point start) {
    Answer answer;
    while (answer.tip == longestWait &&
           Clock::now() - start < std::min<Clock::duration>(longestWait, answer.change + tipWait)) {
        const bool isOther = watch.Look();
        const auto now = Clock::now() - start;
        if (isOther && !isVideo && answer.change == longestWait) answer.change = now;
        if (ScreenWatch::IsInk(watch.At(x, halfStrip))) answer.tip = now;
        std::this_thread::sleep_for(lookPause);
    }
    if (isVideo) answer.change = answer.tip;
    return answer;
}

// One event at a time: the pointer goes a little on, and what it passes is watched. A place that has the ink's colour
// without any is passed over.
void MeasureEvents(kel::testing::VirtualDisplay& display, ScreenWatch& watch, DrawingPlace place, int events,
                   bool isVideo, Figures& figures) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int> pause(0, 40'000);  // microseconds: at any moment of the program's own pace
    const int perLine = strokeLength / eventLength;
    for (int event = 0; event < events; ++event) {
        const int step = event % perLine;
        const int y = place.y + 30 * (1 + event / perLine % 5);
        if (step == 0) {
            display.PressButton(false);
            display.MovePointer(place.x, y);
            watch.MoveTo(place.x - halfStrip, y - halfStrip);
            if (!isVideo) WaitUntilStill(watch);
            display.PressButton(true);
        }
        if (!isVideo) WaitUntilStill(watch);
        std::this_thread::sleep_for(std::chrono::microseconds(pause(random)));
        const int x = (step + 1) * eventLength;
        (void)watch.Look();
        const bool isInked = ScreenWatch::IsInk(watch.At(x + halfStrip, halfStrip));
        const auto start = Clock::now();
        display.MovePointer(place.x + x, y);
        const Answer answer = WaitForInk(watch, x + halfStrip, isVideo, start);
        if (isInked) continue;
        figures.toChange.push_back(Milliseconds(answer.change));
        figures.toTip.push_back(Milliseconds(answer.tip));
    }
    display.PressButton(false);
}

// The stroke at a steady pace that is being drawn: where its pointer is, when it goes on.
class SteadyPointer {
public:
    SteadyPointer(kel::testing::VirtualDisplay& display, DrawingPlace from) : m_display(display), m_from(from) {}
    // Pixels gone by now; the display has been told.
    double Move(Clock::time_point now) {
        if (now < m_next) return m_gone;
        m_gone = std::min<double>(strokeLength, std::chrono::duration<double>(now - m_start).count() * motionSpeed);
        m_display.MovePointer(m_from.x + static_cast<int>(m_gone), m_from.y);
        m_next += motionPeriod;
        return m_gone;
    }

private:
    kel::testing::VirtualDisplay& m_display;
    DrawingPlace m_from;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_next = m_start;
    double m_gone = 0;
};

// A stroke at a steady pace: how far its end is behind the pointer whenever something changes.
void MeasureStroke(kel::testing::VirtualDisplay& display, const DrawingProgram& program, ScreenWatch& watch,
                   ScreenWatch& pictures, DrawingPlace place, Figures& figures) {
    const int y = place.y + 190;
    display.MovePointer(place.x, y);
    watch.MoveTo(place.x - halfStrip, y - halfStrip);
    WaitUntilStill(watch);
    display.PressButton(true);
    WaitUntilStill(watch);
    const int penRadius = std::max(0, watch.LastInkedColumn() - halfStrip);
    (void)pictures.Look();
    const double processorBefore = program.ProcessorSeconds();
    const auto start = Clock::now();
    SteadyPointer pointer(display, {place.x, y});
    auto nextPicture = start;
    int changes = 0;
    int videoPictures = 0;
    for (double gone = 0; gone < strokeLength;) {
        const auto now = Clock::now();
        gone = pointer.Move(now);
        if (watch.Look()) ++changes;
        if (now >= nextPicture) {
            if (pictures.Look()) ++videoPictures;
            nextPicture = now + picturePause;
        }
        const int end = watch.LastInkedColumn() - halfStrip - penRadius;
        if (gone > 60) figures.behind.push_back(std::max(0.0, gone - std::max(end, 0)));
        std::this_thread::sleep_for(1ms);
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    figures.drawingShare += (program.ProcessorSeconds() - processorBefore) / seconds;
    figures.pictures += changes / seconds;
    figures.videoDrawing += videoPictures / seconds;
    display.PressButton(false);
    WaitUntilStill(watch);
}

void Append(std::vector<double>& all, const std::vector<double>& more) {
    all.insert(all.end(), more.begin(), more.end());
}

}  // namespace

void Figures::Add(const Figures& other) {
    Append(toChange, other.toChange);
    Append(toTip, other.toTip);
    Append(behind, other.behind);
    idleShare += other.idleShare;
    drawingShare += other.drawingShare;
    pictures += other.pictures;
    videoIdle += other.videoIdle;
    videoDrawing += other.videoDrawing;
    rounds += other.rounds;
}

Figures Measure(kel::testing::VirtualDisplay& display, const DrawingProgram& program, DrawingPlace place, int events,
                double seconds) {
    constexpr int stripWidth = strokeLength + 2 * halfStrip;
    const std::chrono::duration<double> time(seconds);
    Figures figures;
    figures.rounds = 1;
    // From the picture's corner on: what is seen of a test picture's time in most of them.
    ScreenWatch pictures(display.Name(),
                         {place.x - place.left, place.y - place.above, place.left + strokeLength, place.above});
    const bool isVideo = PictureRate(pictures, lookTime) > 0;
    ScreenWatch strip(display.Name(), {place.x - halfStrip, place.y, stripWidth, 2 * halfStrip + 1});
    MeasureEvents(display, strip, place, events, isVideo, figures);
    MeasureStroke(display, program, strip, pictures, place, figures);
    std::this_thread::sleep_for(shapeTime);
    const auto start = Clock::now();
    const double before = program.ProcessorSeconds();
    figures.videoIdle = PictureRate(pictures, std::chrono::duration_cast<Clock::duration>(time));
    figures.idleShare =
        (program.ProcessorSeconds() - before) / std::chrono::duration<double>(Clock::now() - start).count();
    return figures;
}

double Quantile(std::vector<double> values, double share) {
    if (values.empty()) return neverCame;
    std::ranges::sort(values);
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

}  // namespace latency
