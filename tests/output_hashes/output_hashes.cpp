// Prints a hash of every output of the project: filters, blend modes, pasters, brushes, strokes, presets, and the
// canvases of sessions. A change of structure alone changes no line:
//
//     cmake --build --preset release --target output_hashes      before the change
//     build/release/tests/output_hashes/output_hashes > before
//     ...                                                         and after it
//     build/release/tests/output_hashes/output_hashes > after
//     diff before after
//
// --only PREFIX prints the lines whose names begin so, such as "filter/Median". Each line is a name, two blanks and the
// hash, in the order of the names. What OpenGL draws stands in lines that begin with "gl/": these differ between
// drivers. All others depend on the compiler and the mathematical library alone; from one machine to another the last
// digit of a sine may differ, so nothing here is compared with stored numbers.
//
// All but the sessions run with one worker and again with three. Exit code 1: some outputs differed between the two.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>

#include "apps/chalkpane/filtering/filter_run.h"
#include "chalkpane/base/multi_processor.h"
#include "kel/scene/host.h"
#include "kel/scene/host_state.h"
#include "kel/session/player.h"
#include "module/plugin_instance.h"
#include "tests/output_hashes/hash_report.h"

namespace chalkpane::hashes {

void Report::Print(std::ostream& out) const {
    for (const auto& [name, value] : m_lines) {
        char digits[17];
        std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(value));
        out << name << "  " << digits << '\n';
    }
}

namespace {

Hash HashOf(const picture_io::Picture& picture) {
    return Hash().Add(picture.width).Add(picture.height).Add(std::span(picture.rgba));
}

// The canvas and the finished shapes in the module's own memory, which every instance keeps in the block that the host
// gave it.
void AddCanvases(Report& report, const std::string& name, kel::HostState& state) {
    int number = 0;
    state.objects.ForEach<kel::ContainerObject>([&](kel::ObjectId, const kel::ContainerObject& container) {
        ++number;
        if (!container.instance) return;
        const Telestrator& telestrator = container.instance->Block()->telestrator;
        const std::string place = name + "/container " + std::to_string(number);
        if (telestrator.canvasSurface) report.Add(place + "/canvas", Hash().Add(telestrator.canvasSurface->canvas));
        if (telestrator.shapeSurface) report.Add(place + "/shapes", Hash().Add(telestrator.shapeSurface->canvas));
        report.Add(place + "/state", Hash()
                                         .Add(telestrator.undoIndex)
                                         .Add(telestrator.strokePointCount)
                                         .Add(telestrator.shapeCountdown)
                                         .Add(telestrator.aspect));
    });
}

std::string Digits(std::int64_t field) {
    char digits[24];
    std::snprintf(digits, sizeof digits, "%05lld", static_cast<long long>(field));
    return digits;
}

void PlaySession(Report& report, const std::string& name, const kel::Session& session) {
    constexpr std::int64_t looks = 12;
    kel::Host host({session.window.width, session.window.height});
    kel::Player player(session, host, CHALKPANE_MODULE);
    while (!player.IsOver()) {
        const std::int64_t field = player.NextField();
        const auto saves = player.PlayField(kel::Player::Rendering::NotWanted);
        const std::string place = name + "/field " + Digits(field);
        if (field % std::max<std::int64_t>(session.fields / looks, 1) == 0 || player.IsOver())
            AddCanvases(report, place, host.State());
        for (const std::string& save : saves)
            report.Add(std::string("gl/").append(place).append("/").append(save), HashOf(host.ReadFrame()));
    }
    report.Add("gl/" + name + "/end/frame", HashOf(host.ReadFrame()));
    if (const kel::ObjectId container = player.OverlayContainer(); container != kel::noObject) {
        report.Add("gl/" + name + "/end/canvas", HashOf(host.ReadPremultipliedCanvas(container)));
        report.Add("gl/" + name + "/end/overlay", HashOf(host.ReadOverlay()));
    }
}

}  // namespace

void HashSessions(Report& report) {
    for (const auto& entry : std::filesystem::directory_iterator(CHALKPANE_SOURCE_FOLDER "/examples")) {
        if (entry.path().extension() != ".json") continue;
        const std::string name = "session/" + entry.path().stem().string();
        if (report.Wants(name) || report.Wants("gl/" + name)) PlaySession(report, name, kel::ReadSession(entry.path()));
    }
}

namespace {

void HashEngine(Report& report, std::int32_t workers) {
    MultiProcessor::Restart(workers);
    const std::pair<const char*, void (*)(Report&)> parts[] = {
        {"filter/", HashFilters}, {"rows/", HashRows},      {"paste/", HashPastes},
        {"image/", HashImages},   {"brush/", HashBrushes},  {"strokes/", HashStrokesFiles},
        {"text/", HashTexts},     {"preset/", HashPresets},
    };
    for (const auto& [names, hash] : parts)
        if (report.Wants(names)) hash(report);
}

int Run(const std::string& only) {
    Report report(only);
    app::SettleLattice();  // otherwise the first filter that needs it would draw it from its own seed
    for (const std::int32_t workers : {1, 3}) HashEngine(report, workers);
    MultiProcessor::Restart(0);
    HashSessions(report);
    report.Print(std::cout);
    for (const std::string& name : report.Differing()) std::cerr << name << ": differs when it is made again\n";
    return report.Differing().empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace chalkpane::hashes

int main(int count, char** arguments) {
    const std::span<char*> words(arguments, static_cast<std::size_t>(count));
    const bool hasOnly = count == 3 && std::string_view(words[1]) == "--only";
    if (count != 1 && !hasOnly) {
        std::cerr << "usage: output_hashes [--only PREFIX]\n";
        return 2;
    }
    try {
        return chalkpane::hashes::Run(hasOnly ? words[2] : "");
    } catch (const std::exception& error) {
        std::cerr << "output_hashes: " << error.what() << '\n';
        return 2;
    }
}
