#include "cli/staged_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <set>
#include <string>
#include <system_error>
#include <utility>

#include "cli/error.h"
#include "cli/open_file.h"
#include "cli/unfinished_files.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Refuse(const fs::path& file, int number) {
    throw Error(file.string(), {}, "cannot be written: " + std::generic_category().message(number));
}

// 0, or the error's number. Some file systems have nothing to flush and say so.
int Flush(int descriptor) {
    if (fsync(descriptor) == 0 || errno == EINVAL || errno == ENOSYS || errno == EROFS) return 0;
    return errno;
}

void FlushFolder(const fs::path& folder) {
    const OpenFile opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened) (void)Flush(opened.Descriptor());  // the files are there; only their names may be lost with the power
}

// The file that is replaced may be private: so is what takes its place, from the beginning.
fs::path NewFile(const fs::path& file, const fs::path& place) {
    const fs::path folder = FolderOf(place);
    SweepUnfinished(folder);
    std::error_code failure;
    const mode_t mode = fs::exists(place, failure) ? 0600 : 0666;
    for (int attempt = 0; attempt < 100; ++attempt) {
        fs::path name = UnfinishedName(folder, place.extension());
        const OpenFile opened(open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode));
        if (opened) return name;
        if (errno != EEXIST) Refuse(file, errno);
    }
    Refuse(file, EEXIST);
}

struct Renaming {
    const char* from;
    const char* to;
};
struct Failure {
    std::size_t index;
    int number;  // of the error
};

// In a process of its own and outside the group, which a kill of this one does not reach. Nothing between fork and
// _exit takes memory: another thread may have held the allocator's lock. Answers -1 when there can be no such process.
pid_t StartRenaming(std::span<const Renaming> renamings, const std::array<int, 2>& answer) {
    const pid_t child = fork();
    if (child != 0) return child;
    setsid();
    for (std::size_t i = 0; i < renamings.size(); ++i) {
        if (std::rename(renamings[i].from, renamings[i].to) == 0) continue;
        const Failure failure{i, errno};
        _exit(write(answer[1], &failure, sizeof(failure)) == static_cast<ssize_t>(sizeof(failure)) ? 1 : 2);
    }
    _exit(0);
}

// The first that failed, or none: then its number is 0.
Failure RenameAll(std::span<const Renaming> renamings) {
    std::array<int, 2> answer{};
    if (renamings.size() > 1 && pipe2(answer.data(), O_CLOEXEC) == 0) {
        const OpenFile read_(answer[0]);
        const OpenFile write_(answer[1]);
        const pid_t child = StartRenaming(renamings, answer);
        int status = 0;
        while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
        Failure failure{};
        if (child > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0) return failure;
        if (child > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 1 &&
            read(answer[0], &failure, sizeof(failure)) == static_cast<ssize_t>(sizeof(failure)))
            return failure;
        if (child > 0) return {0, ECHILD};
    }
    for (std::size_t i = 0; i < renamings.size(); ++i)
        if (std::rename(renamings[i].from, renamings[i].to) != 0) return {i, errno};
    return {};
}

}  // namespace

StagedFile::StagedFile(const fs::path& file) : m_file(file), m_place(BehindLinks(file)) {
    RefuseUnlessRegular(m_file, "cannot be written: it ");
    m_temporary = NewFile(m_file, m_place);
    m_slot = DeleteOnSignal(m_temporary);
}

StagedFile::~StagedFile() {
    if (!m_temporary.empty()) unlink(m_temporary.c_str());
    ForgetOnSignal(m_slot);
}

StagedFile::StagedFile(StagedFile&& other) noexcept
    : m_file(std::move(other.m_file)),
      m_place(std::move(other.m_place)),
      m_temporary(std::exchange(other.m_temporary, {})),
      m_slot(std::exchange(other.m_slot, -1)) {}

void StagedFile::Write(std::span<const std::uint8_t> bytes) const {
    OpenFile opened(open(m_temporary.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NOFOLLOW));
    int failure = opened ? WriteAll(opened.Descriptor(), bytes) : errno;
    if (failure == 0) failure = opened.Close();
    if (failure != 0) Refuse(m_file, failure);
}

// What replaces a file becomes as open as that was only now that it is whole.
void StagedFile::Finish() const {
    const OpenFile opened(open(m_temporary.c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW));
    if (!opened) Refuse(m_file, errno);
    struct stat replaced {};
    if (stat(m_place.c_str(), &replaced) == 0) {
        const int descriptor = opened.Descriptor();
        if (fchown(descriptor, replaced.st_uid, replaced.st_gid) != 0)
            (void)!fchown(descriptor, static_cast<uid_t>(-1), replaced.st_gid);
        if (fchmod(descriptor, replaced.st_mode & 07777U) != 0) Refuse(m_file, errno);
    }
    if (const int failure = Flush(opened.Descriptor()); failure != 0) Refuse(m_file, failure);
}

void StagedFile::Committed() {
    m_temporary.clear();
    ForgetOnSignal(std::exchange(m_slot, -1));
}

void StagedFile::Commit() { CommitAll({this, 1}); }

void StagedFile::CommitAll(std::span<StagedFile> files) {
    std::vector<Renaming> renamings;
    std::set<fs::path> folders;
    for (const StagedFile& file : files) {
        RefuseUnlessRegular(file.m_file, "cannot be written: it ");
        file.Finish();
        renamings.push_back({file.m_temporary.c_str(), file.m_place.c_str()});
        folders.insert(FolderOf(file.m_place));
    }
    const Failure failure = RenameAll(renamings);
    if (failure.number != 0) Refuse(files[failure.index].m_file, failure.number);
    for (StagedFile& file : files) file.Committed();
    for (const fs::path& folder : folders) FlushFolder(folder);
}

}  // namespace cli
