#include "cli/unfinished_files.h"

#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <system_error>

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view prefix = ".unfinished-";

std::string Hexadecimal(std::uint64_t number) {
    std::array<char, 16> digits{};
    const auto [end, failure] = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16);
    return {digits.data(), end};
}

// Of this machine and the set of processes among which this one is numbered: containers have their own.
const std::string& MachineTag() {
    static const std::string tag = [] {
        std::array<char, HOST_NAME_MAX + 1> host{};
        gethostname(host.data(), host.size() - 1);
        struct stat processes {};
        stat("/proc/self/ns/pid", &processes);
        return Hexadecimal(std::hash<std::string>()(host.data() + std::to_string(processes.st_ino)) & 0xFFFFFFFFU);
    }();
    return tag;
}

std::uint64_t RandomNumber() {
    std::uint64_t number = 0;
    if (getrandom(&number, sizeof(number), 0) == static_cast<ssize_t>(sizeof(number))) return number;
    std::random_device device;
    return std::uint64_t{device()} << 32U | device();
}

bool IsLeftover(std::string_view name) {
    if (!name.starts_with(prefix)) return false;
    name.remove_prefix(prefix.size());
    pid_t process = 0;
    const auto [end, failure] = std::from_chars(name.data(), name.data() + name.size(), process);
    if (failure != std::errc() || process <= 0) return false;
    name.remove_prefix(static_cast<std::size_t>(end - name.data()));
    if (!name.starts_with('-' + MachineTag() + '-')) return false;
    return kill(process, 0) != 0 && errno == ESRCH;
}

// What a signal deletes. Fixed places: a signal may come at any time, and its handler may not take memory or wait.
struct Slot {
    std::atomic<int> state{0};  // 0 free, 1 being filled, 2 to be deleted
    std::array<char, PATH_MAX> name{};
};
std::array<Slot, 16> slots;

constexpr std::array endingSignals{SIGINT, SIGTERM, SIGHUP};

void DeleteAndEnd(int signal) {
    for (const Slot& slot : slots)
        if (slot.state.load() == 2) unlink(slot.name.data());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// Where somebody else listens already, or nobody is to, it stays so.
void ListenToSignals() {
    for (const int signal : endingSignals) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
        action = {};
        action.sa_handler = DeleteAndEnd;
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace

fs::path UnfinishedName(const fs::path& folder, const fs::path& ending) {
    const std::string name =
        std::string(prefix) + std::to_string(getpid()) + '-' + MachineTag() + '-' + Hexadecimal(RandomNumber());
    return folder / (name + ending.string());
}

void SweepUnfinished(const fs::path& folder) {
    static std::mutex mutex;
    static std::set<fs::path> swept;
    const std::lock_guard lock(mutex);
    if (!swept.insert(folder).second) return;
    std::error_code failure;
    for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end; entry.increment(failure)) {
        std::error_code ignored;
        if (IsLeftover(entry->path().filename().string()) && fs::is_regular_file(entry->symlink_status(ignored)))
            fs::remove(entry->path(), ignored);
    }
}

int DeleteOnSignal(const fs::path& file) {
    std::error_code failure;
    const std::string name = fs::absolute(file, failure).string();  // the process may change its folder
    if (failure || name.size() >= PATH_MAX) return -1;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        int isFree = 0;
        if (!slots[i].state.compare_exchange_strong(isFree, 1)) continue;
        std::memcpy(slots[i].name.data(), name.c_str(), name.size() + 1);
        slots[i].state = 2;
        ListenToSignals();
        return static_cast<int>(i);
    }
    return -1;
}

void ForgetOnSignal(int slot) {
    if (slot >= 0) slots[static_cast<std::size_t>(slot)].state = 0;
}

}  // namespace cli
