#include "cli/memory_end.h"

#include <cxxabi.h>
#include <errno.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <typeinfo>

namespace cli {
namespace {

// Set by the first allocation that fails. The runtime may end the process without an exception to look at: it needs
// memory to throw one.
volatile bool memoryFailed = false;

void HearOfFailure() {
    memoryFailed = true;
    throw std::bad_alloc();
}

bool IsLackOfMemory() noexcept {
    const std::type_info* const type = abi::__cxa_current_exception_type();
    return type == nullptr ? memoryFailed : *type == typeid(std::bad_alloc);
}

[[noreturn]] void EndProcess() {
    if (IsLackOfMemory()) _exit(ComplainOfMemory());
    std::abort();
}

void PrepareForFailure() {
    std::set_new_handler(HearOfFailure);
    std::set_terminate(EndProcess);
}

// Ahead of everything that has a constructor, also in the libraries: these allocate too.
[[gnu::section(".preinit_array"), gnu::used]] void (*const prepareFirst)() = PrepareForFailure;

}  // namespace

int ComplainOfMemory() noexcept {
    static char text[] = ": there is not enough memory\n";
    const std::array<iovec, 2> line{iovec{program_invocation_short_name, std::strlen(program_invocation_short_name)},
                                    iovec{text, sizeof(text) - 1}};
    // There is nobody left to tell when standard error is closed.
    [[maybe_unused]] const ssize_t written = writev(STDERR_FILENO, line.data(), static_cast<int>(line.size()));
    return exitNoMemory;
}

}  // namespace cli
