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
constexpr auto tipWait = 250ms;    // after the change, for the ink to come to the pointer
constexpr auto shapeTime = 2s;     // after a stroke, in which it may become a shape
constexpr auto lookPause = 150us;  // between two looks, so that the measuring leaves the processor to the others

double Milliseconds(Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

// False: it goes on changing, as over a video that plays.
bool WaitUntilStill(ScreenWatch& watch) {
    auto changed = Clock::now();
    const auto end = changed + 1s;
    while (Clock::now() - changed < 80ms && Clock::now() < end) {
        if (watch.Look()) changed = Clock::now();
        std::this_thread::sleep_for(2ms);
    }
    return Clock::now() - changed >= 80ms;
}

struct Answer {
    Clock::duration change = longestWait;
    Clock::duration tip = longestWait;
};

// Until there is ink at the place, or nothing comes any more. Where all changes by itself, only ink is a change.
Answer WaitForInk(ScreenWatch& watch, int x, bool isStill, Clock::time_point start) {
    Answer answer;
    while (answer.tip == longestWait &&
           Clock::now() - start < std::min<Clock::duration>(longestWait, answer.change + tipWait)) {
        const bool isOther = watch.Look();
        const auto now = Clock::now() - start;
        if (isOther && isStill && answer.change == longestWait) answer.change = now;
        if (ScreenWatch::IsInk(watch.At(x, halfStrip))) answer.tip = now;
        std::this_thread::sleep_for(lookPause);
    }
    if (!isStill) answer.change = answer.tip;
    return answer;
}

// One event at a time: the pointer goes a little on, and what it passes is watched. A place that has the ink's colour
// without any is passed over.
void MeasureEvents(kel::testing::VirtualDisplay& display, ScreenWatch& watch, DrawingPlace place, int events,
                   Figures& figures) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int> pause(0, 40'000);  // microseconds: at any moment of the program's own pace
    const int perLine = strokeLength / eventLength;
    bool isStill = true;
    for (int event = 0; event < events; ++event) {
        const int step = event % perLine;
        const int y = place.y + 30 * (1 + event / perLine % 5);
        if (step == 0) {
            display.PressButton(false);
            display.MovePointer(place.x, y);
            watch.MoveTo(place.x - halfStrip, y - halfStrip);
            isStill = WaitUntilStill(watch);
            display.PressButton(true);
        }
        if (isStill) isStill = WaitUntilStill(watch);
        std::this_thread::sleep_for(std::chrono::microseconds(pause(random)));
        const int x = (step + 1) * eventLength;
        (void)watch.Look();
        const bool isInked = ScreenWatch::IsInk(watch.At(x + halfStrip, halfStrip));
        const auto start = Clock::now();
        display.MovePointer(place.x + x, y);
        const Answer answer = WaitForInk(watch, x + halfStrip, isStill, start);
        if (isInked) continue;
        figures.toChange.push_back(Milliseconds(answer.change));
        figures.toTip.push_back(Milliseconds(answer.tip));
    }
    display.PressButton(false);
}

// A stroke at a steady pace: how far its end is behind the pointer whenever something changes.
void MeasureStroke(kel::testing::VirtualDisplay& display, const DrawingProgram& program, ScreenWatch& watch,
                   DrawingPlace place, Figures& figures) {
    const int y = place.y + 190;
    display.MovePointer(place.x, y);
    watch.MoveTo(place.x - halfStrip, y - halfStrip);
    WaitUntilStill(watch);
    display.PressButton(true);
    WaitUntilStill(watch);
    const int penRadius = std::max(0, watch.LastInkedColumn() - halfStrip);
    const double processorBefore = program.ProcessorSeconds();
    const auto start = Clock::now();
    auto nextMotion = start;
    double pointer = 0;
    int pictures = 0;
    while (pointer < strokeLength) {
        const auto now = Clock::now();
        if (now >= nextMotion) {
            pointer = std::min<double>(strokeLength, std::chrono::duration<double>(now - start).count() * motionSpeed);
            display.MovePointer(place.x + static_cast<int>(pointer), y);
            nextMotion += motionPeriod;
        }
        if (watch.Look()) ++pictures;
        const int end = watch.LastInkedColumn() - halfStrip - penRadius;
        if (pointer > 60) figures.behind.push_back(std::max(0.0, pointer - std::max(end, 0)));
        std::this_thread::sleep_for(1ms);
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    figures.drawingShare += (program.ProcessorSeconds() - processorBefore) / seconds;
    figures.pictures += pictures / seconds;
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
    idlePictures += other.idlePictures;
    drawingShare += other.drawingShare;
    pictures += other.pictures;
    rounds += other.rounds;
}

Figures Measure(kel::testing::VirtualDisplay& display, const DrawingProgram& program, DrawingPlace place, int events,
                double seconds) {
    Figures figures;
    figures.rounds = 1;
    ScreenWatch strip(display.Name(), {place.x - halfStrip, place.y, strokeLength + 2 * halfStrip, 2 * halfStrip + 1});
    MeasureEvents(display, strip, place, events, figures);
    MeasureStroke(display, program, strip, place, figures);
    std::this_thread::sleep_for(shapeTime);
    const double before = program.ProcessorSeconds();
    const auto start = Clock::now();
    int pictures = 0;
    while (Clock::now() - start < std::chrono::duration<double>(seconds)) {
        if (strip.Look()) ++pictures;
        std::this_thread::sleep_for(3ms);
    }
    const double passed = std::chrono::duration<double>(Clock::now() - start).count();
    figures.idleShare = (program.ProcessorSeconds() - before) / passed;
    figures.idlePictures = pictures / passed;
    return figures;
}

double Quantile(std::vector<double> values, double share) {
    if (values.empty()) return neverCame;
    std::ranges::sort(values);
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

}  // namespace latency
