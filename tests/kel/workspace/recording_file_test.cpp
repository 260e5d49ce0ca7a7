#include "kel/workspace/recording_file.h"

#include <doctest/doctest.h>
#include <signal.h>
#include <sys/resource.h>

#include <thread>

#include "tests/cli/temporary_folder.h"

namespace kel {
namespace {

using cli::testing::ReadText;

// Files of this process grow to so many bytes and no further.
class FileLimit {
public:
    explicit FileLimit(rlim_t bytes) {
        signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileLimit() { setrlimit(RLIMIT_FSIZE, &m_before); }
    FileLimit(const FileLimit&) = delete;
    FileLimit& operator=(const FileLimit&) = delete;
    FileLimit(FileLimit&&) = delete;
    FileLimit& operator=(FileLimit&&) = delete;

private:
    rlimit m_before{};
};

void WaitForTrouble(const RecordingFile& file, bool isThere) {
    while (file.Trouble().empty() == isThere) std::this_thread::yield();
}

}  // namespace

TEST_CASE("A recording file takes the place of what was there, and grows") {
    const cli::testing::TemporaryFolder folder;
    cli::testing::WriteText(folder / "run.json", "something older and longer\n");
    {
        RecordingFile file(folder / "run.json", "one\n");
        CHECK_EQ(ReadText(folder / "run.json"), "one\n");
        for (int i = 0; i < 100; ++i) file.Append("line " + std::to_string(i) + "\n");
    }
    std::string wanted = "one\n";
    for (int i = 0; i < 100; ++i) wanted += "line " + std::to_string(i) + "\n";
    CHECK_EQ(ReadText(folder / "run.json"), wanted);
}

TEST_CASE("A piece that the disk has no room for is told, leaves nothing torn, and comes when there is room again") {
    const cli::testing::TemporaryFolder folder;
    RecordingFile file(folder / "run.json", "first\n");
    {
        const FileLimit limit(10);
        file.Append("second line\n");
        WaitForTrouble(file, true);
        CHECK_NE(file.Trouble().find("run.json: cannot be written: File too large"), std::string::npos);
        CHECK_EQ(ReadText(folder / "run.json"), "first\n");
    }
    file.Append("third\n");
    WaitForTrouble(file, false);
    CHECK_EQ(ReadText(folder / "run.json"), "first\nsecond line\nthird\n");
}

}  // namespace kel
