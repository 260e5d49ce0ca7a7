#include <sys/utsname.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "bench/latency/measures.h"

// How far the window is behind the pen: beside a program that shows only the changed rectangle and one that draws all
// of its window, in turns, on a display of their own. docs/latency.md says what is measured.
//
//   latency [--once] [--load PROCESSES] [--rounds N] [WORD...]   the words go to `kel window`
//
// Exit code 77: there is no Xvfb.
namespace {

using latency::DrawingProgram;
using latency::Figures;

struct Rival {
    std::string name;
    std::vector<std::string> line;
    std::string titleEnd;
    Figures figures;
};

struct Line {
    int events = 60;
    double idleSeconds = 2;
    int rounds = 2;
    int load = 0;
    std::vector<std::string> words;
};

Line ReadLine(int argc, char** argv) {
    Line line;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--once") {
            line.events = 3;
            line.idleSeconds = 0.1;
            line.rounds = 1;
        } else if ((word == "--load" || word == "--rounds") && i + 1 < argc) {
            (word == "--load" ? line.load : line.rounds) = std::max(std::atoi(argv[++i]), word == "--load" ? 0 : 1);
        } else {
            line.words.push_back(word);
        }
    }
    return line;
}

std::vector<Rival> Rivals(const Line& line) {
    std::vector<std::string> kel{KEL_PROGRAM, "window"};
    kel.insert(kel.end(), line.words.begin(), line.words.end());
    return {{"changed rectangle", {ANNOTATOR, "part", "1280", "720"}, "annotator", {}},
            {"whole window", {ANNOTATOR, "whole", "1280", "720"}, "annotator", {}},
            {"kel window", kel, " - kel", {}}};
}

kel::testing::WindowPlace WaitForWindow(const kel::testing::VirtualDisplay& display, const std::string& titleEnd) {
    for (int tries = 0; tries < 1200; ++tries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        if (const auto place = display.FindWindow(titleEnd)) return *place;
    }
    throw std::runtime_error("no window \"" + titleEnd + "\" comes");
}

void RunRound(kel::testing::VirtualDisplay& display, Rival& rival, const Line& line) {
    const DrawingProgram program(display.Name(), rival.line);
    const auto place = WaitForWindow(display, rival.titleEnd);
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));  // until all has been made that is made once
    constexpr latency::DrawingPlace inWindow{120, 240, 120, 240};
    display.MovePointer(place.x + inWindow.x + 10, place.y + inWindow.y);
    display.TypeKey("3");  // the window's red
    display.TypeKey("l");  // a video begins again, so that it plays as long as it is measured
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const std::optional<latency::Load> load(std::in_place, line.load);
    rival.figures.Add(latency::Measure(display, program,
                                       {place.x + inWindow.x, place.y + inWindow.y, inWindow.left, inWindow.above},
                                       line.events, line.idleSeconds));
}

void PrintRow(const Rival& rival, const Figures& least) {
    const Figures& figures = rival.figures;
    const auto ratio = [](double own, double other) { return other > 0 ? own / other : 0.0; };
    const std::array shares{0.5, 0.95};
    std::printf("| %s |", rival.name.c_str());
    for (const double share : shares) {
        const double own = latency::Quantile(figures.toChange, share);
        std::printf(" %.1f (%.2f x) |", own, ratio(own, latency::Quantile(least.toChange, share)));
    }
    for (const double share : shares) {
        const double tip = latency::Quantile(figures.toTip, share);
        if (tip < latency::neverCame)
            std::printf(" %.1f |", tip);
        else
            std::printf(" never |");
    }
    for (const double share : shares) std::printf(" %.0f |", latency::Quantile(figures.behind, share));
    std::printf(" %.1f %% | %.1f %% | %.0f | %.1f |\n", 100 * figures.idleShare / figures.rounds,
                100 * figures.drawingShare / figures.rounds, figures.pictures / figures.rounds,
                figures.pictures > 0 ? 1000 * figures.drawingShare / figures.pictures : 0.0);
}

void Print(const std::vector<Rival>& rivals, const Line& line) {
    utsname machine{};
    uname(&machine);
    std::printf("%s, %u cores, %d processes of load, %d events a program\n\n", machine.machine,
                std::thread::hardware_concurrency(), line.load, line.events * line.rounds);
    std::printf(
        "| program | to the first pixel, ms: median (ratio) | 95 %% (ratio) | to the pointer, ms: median | 95 %% "
        "| ink behind, px: median | 95 %% | idle | drawing | pictures/s | ms a picture |\n"
        "|---|---|---|---|---|---|---|---|---|---|---|\n");
    for (const Rival& rival : rivals) PrintRow(rival, rivals.front().figures);
    const Figures& kel = rivals.back().figures;
    if (const double untouched = kel.videoIdle / kel.rounds; untouched > 0)
        std::printf(
            "\nThe video: %.1f pictures a second untouched, with %.1f ms of the processor for each; %.1f a second "
            "while "
            "one draws on it\n",
            untouched, 1000 * kel.idleShare / kel.rounds / untouched, kel.videoDrawing / kel.rounds);
}

}  // namespace

int main(int argc, char** argv) {
    if (!kel::testing::VirtualDisplay::IsPossible()) {
        std::fprintf(stderr, "latency: there is no Xvfb to measure on\n");
        return 77;
    }
    const Line line = ReadLine(argc, argv);
    try {
        kel::testing::VirtualDisplay display({2560, 1440});
        std::vector<Rival> rivals = Rivals(line);
        for (int round = 0; round < line.rounds; ++round)
            for (Rival& rival : rivals) RunRound(display, rival, line);
        Print(rivals, line);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "latency: %s\n", failure.what());
        return 1;
    }
    return 0;
}
