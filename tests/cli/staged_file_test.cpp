#include "cli/staged_file.h"

#include <doctest/doctest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <csignal>
#include <string>
#include <vector>

#include "cli/file_bytes.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"

namespace cli {
namespace {

namespace fs = std::filesystem;
using testing::ReadText;
using testing::TemporaryFolder;
using testing::Thrown;
using testing::WriteText;

mode_t ModeOf(const fs::path& file) {
    struct stat status {};
    return stat(file.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

void Stop(pid_t child, int signal) {
    kill(child, signal);
    waitpid(child, nullptr, 0);
}

// A process of its own that stages a file in the folder, tells so and waits.
pid_t StageAndWait(const TemporaryFolder& folder) {
    int told[2];
    REQUIRE_EQ(pipe(told), 0);
    const pid_t child = fork();
    if (child == 0) {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, SIG_DFL);  // the test program's listens
        const StagedFile staged(folder / "out.png");
        (void)!write(told[1], "x", 1);
        for (;;) pause();
    }
    char byte = 0;
    CHECK_EQ(read(told[0], &byte, 1), 1);
    close(told[0]);
    close(told[1]);
    return child;
}

}  // namespace

TEST_CASE("a file that is replaced hands on its mode, and a new one has the usual") {
    const TemporaryFolder folder;
    WriteText(folder / "private", "old");
    chmod((folder / "private").c_str(), 0640);
    WriteFileWhole(folder / "private", "new");
    CHECK_EQ(ReadText(folder / "private"), "new");
    CHECK_EQ(ModeOf(folder / "private"), 0640);
    WriteText(folder / "usual", "");
    WriteFileWhole(folder / "made", "new");
    CHECK_EQ(ModeOf(folder / "made"), ModeOf(folder / "usual"));
    CHECK_EQ(folder.Entries(), 3);
}

TEST_CASE("what takes the place of a private file is private before it is whole") {
    const TemporaryFolder folder;
    WriteText(folder / "private", "old");
    chmod((folder / "private").c_str(), 0600);
    const StagedFile staged(folder / "private");
    CHECK_EQ(ModeOf(staged.Temporary()), 0600);
}

TEST_CASE("an output follows links, also to what is not there yet") {
    const TemporaryFolder folder;
    fs::create_directory(folder / "far");
    WriteText(folder / "far/there", "old");
    fs::create_symlink("far/there", folder / "link");
    fs::create_symlink("link", folder / "second");
    fs::create_symlink("far/new", folder / "dangling");
    WriteFileWhole(folder / "second", "new");
    WriteFileWhole(folder / "dangling", "made");
    CHECK(fs::is_symlink(folder / "link"));
    CHECK(fs::is_symlink(folder / "second"));
    CHECK(fs::is_symlink(folder / "dangling"));
    CHECK_EQ(ReadText(folder / "far/there"), "new");
    CHECK_EQ(ReadText(folder / "far/new"), "made");
}

TEST_CASE("links in a circle, folders, FIFOs and devices are refused by that word") {
    const TemporaryFolder folder;
    const auto refusal = [&](const fs::path& file) { return Thrown([&] { WriteFileWhole(file, "new"); }); };
    fs::create_symlink("b", folder / "a");
    fs::create_symlink("a", folder / "b");
    mkfifo((folder / "fifo").c_str(), 0600);
    CHECK_EQ(refusal(folder / "a"), (folder / "a").string() + ": cannot be written: too many links");
    CHECK_EQ(refusal(folder.Path()), folder.Path().string() + ": cannot be written: it is a folder");
    CHECK_EQ(refusal(folder / "fifo"), (folder / "fifo").string() + ": cannot be written: it is not a regular file");
    CHECK_EQ(refusal("/dev/null"), "/dev/null: cannot be written: it is not a regular file");
    CHECK_EQ(Thrown([&] { (void)ReadFileBytes(folder / "fifo"); }),
             (folder / "fifo").string() + ": is not a regular file");
    CHECK_EQ(Thrown([&] { (void)ReadFileBytes("/dev/zero"); }), "/dev/zero: is not a regular file");
    CHECK_EQ(folder.Entries(), 3);
}

TEST_CASE("no two temporary names are alike, and none is the process's number and a count") {
    const TemporaryFolder folder;
    const StagedFile first(folder / "a.png");
    const StagedFile second(folder / "a.png");
    const std::string name = first.Temporary().filename().string();
    CHECK_NE(first.Temporary(), second.Temporary());
    CHECK(name.starts_with(".unfinished-" + std::to_string(getpid()) + '-'));
    CHECK(name.ends_with(".png"));
    CHECK_GT(name.size(), (".unfinished-" + std::to_string(getpid()) + "-0.png").size() + 16);
}

TEST_CASE("INT, TERM and HUP delete what is unfinished and end the process as they do") {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const TemporaryFolder folder;
        const pid_t child = StageAndWait(folder);
        CHECK_EQ(folder.Entries(), 1);
        kill(child, signal);
        int status = 0;
        waitpid(child, &status, 0);
        CHECK(WIFSIGNALED(status));
        CHECK_EQ(WTERMSIG(status), signal);
        CHECK_EQ(folder.Entries(), 0);
    }
}

TEST_CASE("the next process deletes what a killed one left, and nothing else") {
    const TemporaryFolder folder;
    const pid_t living = StageAndWait(folder);
    const pid_t killed = StageAndWait(folder);
    Stop(killed, SIGKILL);
    WriteText(folder / ".unfinished-1-elsewhere-0.png", "another machine's");
    CHECK_EQ(folder.Entries(), 3);
    WriteFileWhole(folder / "out.png", "new");
    CHECK_EQ(folder.Entries(), 3);  // the living process's, the other machine's, and the picture
    CHECK_EQ(ReadText(folder / "out.png"), "new");
    Stop(living, SIGKILL);
}

// The kill comes at some place among the 300 renamings, or before or after them; the process that gives the names is
// waited for by the end of its folder's changes.
TEST_CASE("a kill leaves all files of a set in place or none") {
    constexpr int count = 300;
    for (const int delay : {0, 200, 400, 800, 1600, 3200}) {
        const TemporaryFolder folder;
        int told[2];
        REQUIRE_EQ(pipe(told), 0);
        const pid_t child = fork();
        if (child == 0) {
            std::vector<StagedFile> files;
            files.reserve(count);
            for (int i = 0; i < count; ++i) files.emplace_back(folder / ("f" + std::to_string(i)));
            (void)!write(told[1], "x", 1);
            StagedFile::CommitAll(files);
            for (;;) pause();
        }
        char byte = 0;
        CHECK_EQ(read(told[0], &byte, 1), 1);
        close(told[0]);
        close(told[1]);
        usleep(static_cast<useconds_t>(delay));
        Stop(child, SIGKILL);
        const auto finished = [&] {
            int files = 0;
            for (int i = 0; i < count; ++i) files += fs::exists(folder / ("f" + std::to_string(i))) ? 1 : 0;
            return files;
        };
        int before = -1;
        int now = finished();
        while (now != before) {
            usleep(20000);
            before = now;
            now = finished();
        }
        CHECK_MESSAGE((now == 0 || now == count), now << " of " << count << " after " << delay << " microseconds");
    }
}

TEST_CASE("a set that cannot be put in place says which file it was") {
    const TemporaryFolder folder;
    std::vector<StagedFile> files;
    files.emplace_back(folder / "a");
    files.emplace_back(folder / "b");
    fs::create_directory(folder / "b");
    CHECK_EQ(Thrown([&] { StagedFile::CommitAll(files); }),
             (folder / "b").string() + ": cannot be written: it is a folder");
    CHECK_FALSE(fs::exists(folder / "a"));
}

}  // namespace cli
