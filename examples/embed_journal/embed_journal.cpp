// Draws with a telestrator that keeps what is drawn, without any renderer: its strokes go into a journal, from which
// the next run goes on.
//   embed_journal drawing.journal out.ppm

#include <cmath>
#include <cstdio>
#include <string>

#include "examples/pixmap.h"
#include "telestrator/journal/journal_file.h"

namespace {

using chalkpane::CanvasPosition;
using chalkpane::JournaledTelestrator;
using chalkpane::TelestratorSettings;

// A path of a hand, t from 0 to 1; a field passes with each position, and then those until the line is recognised.
template <typename Path>
void Draw(JournaledTelestrator& telestrator, const TelestratorSettings& settings, const Path& path) {
    constexpr int steps = 40;
    telestrator.Press(settings, path(0));
    for (int step = 1; step < steps; ++step) {
        telestrator.Field(settings);
        telestrator.Move(settings, path(step / double{steps}));
    }
    telestrator.Release(settings, path(1));
    for (int field = 0; field <= settings.shapeDelay; ++field) {
        telestrator.Field(settings);
        telestrator.Commit();
    }
}

// A ring and an arrow; the arrow is chosen by a place near it, moved, taken away and brought back.
void DrawAndEdit(JournaledTelestrator& telestrator, const TelestratorSettings& settings) {
    const auto ring = [](double t) {
        return CanvasPosition{400 + 150 * std::cos(6.3 * t), 400 + 100 * std::sin(6.3 * t)};
    };
    const auto run = [](double t) { return CanvasPosition{200 + 500 * t, 700 + 40 * std::sin(3 * t)}; };
    Draw(telestrator, settings, ring);
    Draw(telestrator, settings, run);
    if (const auto number = telestrator.Drawing()->Nearest({200, 705}, 20)) {
        telestrator.MoveStroke(*number, 0, 100);
        telestrator.Remove(*number);
        telestrator.Undo();
    }
}

int Fail(const std::string& reason) {
    std::fprintf(stderr, "embed_journal: %s\n", reason.c_str());
    return 2;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) return Fail("give two files, drawing.journal and out.ppm");
    TelestratorSettings settings;
    settings.brushColour = 0xFF2020E0U;  // red, green, blue, alpha in memory
    settings.recogniseShapes = true;
    settings.arrow = true;
    settings.shapeDelay = 1;
    chalkpane::JournalFile journal(arguments[1]);
    JournaledTelestrator telestrator(&journal);
    if (journal.Error().empty() && !telestrator.Field(settings)) return Fail("no memory for the canvas");
    if (!journal.Error().empty()) return Fail(journal.Error());
    const std::string wrong = Follow(telestrator, journal.Former());
    if (!wrong.empty()) return Fail(wrong);
    DrawAndEdit(telestrator, settings);
    if (!journal.Error().empty()) return Fail(journal.Error());
    if (!WritePixmap(arguments[2], telestrator.Inner().canvasSurface->GetPixels()))
        return Fail(std::string(arguments[2]) + " cannot be written");
    std::printf("%zu strokes are on the canvas\n", telestrator.Drawing()->Strokes().size());
}
