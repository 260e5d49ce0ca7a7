#include <doctest/doctest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <string>
#include <thread>

#include "telestrator/journal/journal_file.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/session/session_text.h"

namespace kel {
namespace {

using cli::testing::ReadText;
using cli::testing::TemporaryFolder;
using cli::testing::WriteText;

// Strokes one after the other, without an end that a test would wait for.
nlohmann::json ManyStrokes() {
    nlohmann::json session = testing::PlainSession();
    session["events"] = nlohmann::json::array();
    constexpr int strokes = 3000;
    for (int i = 0; i < strokes; ++i)
        session["events"].push_back(
            {{"field", 2 + 8 * i}, {"fields", 6}, {"stroke", {{5 + i % 50, 8}, {30, 30}, {60 - i % 40, 60}}}});
    session["fields"] = 8 * strokes + 20;
    return session;
}

// `kel play` at work, which is killed, not asked, to end.
class KilledPlay {
public:
    KilledPlay(const TemporaryFolder& folder, const std::string& journal) {
        const std::string session = (folder / "s.json").string();
        m_process = fork();
        REQUIRE(m_process >= 0);
        if (m_process == 0) {
            execl(KEL_PROGRAM, KEL_PROGRAM, "play", session.c_str(), "--module", CHALKPANE_MODULE, "--journal",
                  journal.c_str(), static_cast<char*>(nullptr));
            _exit(1);
        }
    }
    void Kill() const {
        REQUIRE_EQ(kill(m_process, SIGKILL), 0);
        int status = 0;
        REQUIRE_EQ(waitpid(m_process, &status, 0), m_process);
        CHECK(WIFSIGNALED(status));
    }

private:
    pid_t m_process = -1;
};

std::size_t Lines(const std::string& text) { return static_cast<std::size_t>(std::ranges::count(text, '\n')); }

}  // namespace

TEST_CASE("a play that is killed leaves a journal with every record up to the last whole one") {
    const TemporaryFolder folder;
    WriteText(folder / "s.json", ManyStrokes().dump());
    std::mt19937 random(7);
    std::string longest;
    for (int i = 0; i < 4; ++i) {
        const std::filesystem::path journal = folder / ("run-" + std::to_string(i) + ".journal");
        const KilledPlay play(folder, journal.string());
        // From the first records on, at any instant.
        constexpr std::size_t someLines = 3;
        while (!std::filesystem::exists(journal) || Lines(ReadText(journal)) < someLines)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 60000));
        const std::size_t seen = Lines(ReadText(journal));
        play.Kill();
        const std::string text = ReadText(journal);
        const chalkpane::ReadJournal read = chalkpane::ParseJournal(text);
        CAPTURE(i);
        CHECK_EQ(read.error, "");
        CHECK_GE(read.records.size() + 1, seen);
        CHECK_EQ(read.records.size() + 1, Lines(text));
        // One play writes what another does, as far as each of them comes.
        const std::string whole = text.substr(0, read.wholeBytes);
        const std::size_t common = std::min(whole.size(), longest.size());
        CHECK(whole.substr(0, common) == longest.substr(0, common));
        if (whole.size() > longest.size()) longest = whole;
    }
}

}  // namespace kel
