#include "tests/telestrator/allocation_failure.h"

#include <cstdlib>
#include <new>

namespace chalkpane::testing {
namespace {

thread_local bool counting = false;
thread_local std::int64_t allocationCount = 0;
thread_local std::int64_t failingNumber = AllocationFailure::never;
thread_local bool failed = false;

bool FailsNow() {
    if (!counting || allocationCount++ != failingNumber) return false;
    failed = true;
    return true;
}

void* Allocate(std::size_t bytes, std::size_t alignment) {
    if (FailsNow()) return nullptr;
    if (bytes == 0) bytes = 1;
    if (alignment <= __STDCPP_DEFAULT_NEW_ALIGNMENT__) return std::malloc(bytes);
    return std::aligned_alloc(alignment, (bytes + alignment - 1) / alignment * alignment);
}

void* AllocateOrThrow(std::size_t bytes, std::size_t alignment) {
    void* memory = Allocate(bytes, alignment);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

AllocationFailure::AllocationFailure(std::int64_t number) {
    failingNumber = number;
    allocationCount = 0;
    failed = false;
    counting = true;
}

AllocationFailure::~AllocationFailure() { counting = false; }

std::int64_t AllocationFailure::Count() const { return allocationCount; }

bool AllocationFailure::HasFailed() const { return failed; }

}  // namespace chalkpane::testing

// Pixels come from calloc, whose calls the linker sends here.
extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);   // NOLINT(bugprone-reserved-identifier)
void* __wrap_calloc(std::size_t count, std::size_t size) {  // NOLINT(bugprone-reserved-identifier)
    return chalkpane::testing::FailsNow() ? nullptr : __real_calloc(count, size);
}
}

using chalkpane::testing::Allocate;
using chalkpane::testing::AllocateOrThrow;

constexpr std::size_t plain = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

void* operator new(std::size_t bytes) { return AllocateOrThrow(bytes, plain); }
void* operator new[](std::size_t bytes) { return AllocateOrThrow(bytes, plain); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes, plain); }
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes, plain); }
void* operator new(std::size_t bytes, std::align_val_t alignment) {
    return AllocateOrThrow(bytes, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t bytes, std::align_val_t alignment) {
    return AllocateOrThrow(bytes, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
