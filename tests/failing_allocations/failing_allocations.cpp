#include <dlfcn.h>
#include <unistd.h>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include <atomic>

// The C allocator of a process, of which one allocation fails, or all from one on. What the libraries take before the
// program begins does not count: it is theirs to answer for. What the program's own constructors take does.
//   FAIL_AT      how many succeed before; none: all succeed
//   FAIL_LASTING set: every later one fails too
//   COUNT_FILE   where the number of allocations is written at the end

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

std::atomic<long> count{0};
std::atomic<bool> hasBegun{false};

// Read anew each time: the environment is there before any constructor has run.
bool Fails() {
    if (!hasBegun) return false;
    const long number = count++;
    const char* const failing = std::getenv("FAIL_AT");
    if (failing == nullptr) return false;
    const long first = std::atol(failing);
    return number == first || (number > first && std::getenv("FAIL_LASTING") != nullptr);
}

void* Refused() {
    errno = ENOMEM;
    return nullptr;
}

[[gnu::destructor]] void TellCount() {
    const char* const name = std::getenv("COUNT_FILE");
    if (name == nullptr) return;
    const long allocations = count;
    if (std::FILE* const file = std::fopen(name, "w")) {
        std::fprintf(file, "%ld\n", allocations);
        std::fclose(file);
    }
}

}  // namespace

extern "C" {
#pragma GCC visibility push(default)
using Main = int (*)(int, char**, char**);
int __libc_start_main(Main main, int argc, char** argv, Main init, void (*fini)(), void (*loaderEnd)(),
                      void* stackEnd) {
    using Start = int (*)(Main, int, char**, Main, void (*)(), void (*)(), void*);
    const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
    hasBegun = true;
    return start(main, argc, argv, init, fini, loaderEnd, stackEnd);
}
void* malloc(std::size_t size) { return Fails() ? Refused() : __libc_malloc(size); }
void* calloc(std::size_t number, std::size_t size) { return Fails() ? Refused() : __libc_calloc(number, size); }
void* realloc(void* block, std::size_t size) { return Fails() ? Refused() : __libc_realloc(block, size); }
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return Fails() ? Refused() : __libc_memalign(alignment, size);
}
int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    void* const made = Fails() ? nullptr : __libc_memalign(alignment, size);
    if (made == nullptr) return ENOMEM;
    *block = made;
    return 0;
}
#pragma GCC visibility pop
}
