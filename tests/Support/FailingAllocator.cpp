// FailingAllocator.cpp: malloc and its family, counted and failing on demand.

#include "FailingAllocator.h"

#include <CoreFoundation/CFAllocator.h>

#include <cerrno>
#include <cstdlib>

#if defined(__has_feature)
#define NIMBRA_HAS_FEATURE(feature) __has_feature(feature)
#else
#define NIMBRA_HAS_FEATURE(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) ||                               \
    NIMBRA_HAS_FEATURE(address_sanitizer) || NIMBRA_HAS_FEATURE(thread_sanitizer) ||               \
    NIMBRA_HAS_FEATURE(memory_sanitizer)
#define NIMBRA_SANITIZER_OWNS_MALLOC 1
#endif

namespace {

struct Account {
    std::size_t allocations = 0;
    std::ptrdiff_t liveBytes = 0;
    std::size_t untilFailure = 0; // 0: none is due.
    bool failed = false;
};

constinit thread_local Account account;

void countAllocation(std::size_t bytes) {
    ++account.allocations;
    account.liveBytes += static_cast<std::ptrdiff_t>(bytes);
}

void countRelease(std::size_t bytes) {
    account.liveBytes -= static_cast<std::ptrdiff_t>(bytes);
}

// Whether the allocation at hand is the one that is to fail.
bool failsNow() {
    if (account.untilFailure == 0 || --account.untilFailure > 0)
        return false;
    account.failed = true;
    return true;
}

} // namespace

#if defined(NIMBRA_SANITIZER_OWNS_MALLOC)

#include <sanitizer/allocator_interface.h>

namespace {

// The system's allocator but for the failures. It lives as long as the program, as objects made in
// it may.
CFAllocatorRef failingAllocator() {
    static const CFAllocatorRef allocator = [] {
        CFAllocatorContext context = {};
        context.allocate = [](CFIndex size, CFOptionFlags, void*) {
            return failsNow() ? nullptr : std::malloc(static_cast<std::size_t>(size));
        };
        context.reallocate = [](void* memory, CFIndex size, CFOptionFlags, void*) {
            return failsNow() ? nullptr : std::realloc(memory, static_cast<std::size_t>(size));
        };
        context.deallocate = [](void* memory, void*) { std::free(memory); };
        return CFAllocatorCreate(kCFAllocatorSystemDefault, &context);
    }();
    return allocator;
}

void installHooks() {
    static const bool installed = [] {
        __sanitizer_install_malloc_and_free_hooks(
            [](const volatile void*, std::size_t size) { countAllocation(size); },
            [](const volatile void* memory) {
                const auto* const block = const_cast<const void*>(memory);
                if (block && __sanitizer_get_ownership(block))
                    countRelease(__sanitizer_get_allocated_size(block));
            });
        // Made now, so that it is no meter's allocation.
        return failingAllocator() != nullptr;
    }();
    static_cast<void>(installed);
    // The first default that a thread sets makes the record of it.
    CFAllocatorSetDefault(kCFAllocatorSystemDefault);
}

} // namespace

bool test::allAllocationsCanFail() {
    return false;
}

test::AllocationFailure::AllocationFailure(std::size_t number) {
    CFAllocatorSetDefault(failingAllocator());
    account.failed = false;
    account.untilFailure = number;
}

test::AllocationFailure::~AllocationFailure() {
    account.untilFailure = 0;
    CFAllocatorSetDefault(kCFAllocatorSystemDefault);
}

#else

#include <malloc.h>

// The C library's own entry points, which stay reachable when its public names are taken.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
}

namespace {

void installHooks() {}

void* counted(void* memory) {
    if (memory)
        countAllocation(malloc_usable_size(memory));
    return memory;
}

void* outOfMemory() {
    errno = ENOMEM;
    return nullptr;
}

} // namespace

#define NIMBRA_INTERPOSED extern "C" __attribute__((visibility("default"), used))

NIMBRA_INTERPOSED void* malloc(std::size_t size) {
    return failsNow() ? outOfMemory() : counted(__libc_malloc(size));
}

NIMBRA_INTERPOSED void* calloc(std::size_t count, std::size_t size) {
    return failsNow() ? outOfMemory() : counted(__libc_calloc(count, size));
}

NIMBRA_INTERPOSED void* realloc(void* memory, std::size_t size) {
    if (failsNow())
        return outOfMemory();
    const std::size_t before = memory ? malloc_usable_size(memory) : 0;
    void* const resized = __libc_realloc(memory, size);
    if (resized || size == 0)
        countRelease(before);
    return counted(resized);
}

NIMBRA_INTERPOSED void* memalign(std::size_t alignment, std::size_t size) {
    return failsNow() ? outOfMemory() : counted(__libc_memalign(alignment, size));
}

NIMBRA_INTERPOSED void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

NIMBRA_INTERPOSED int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    void* const block = memalign(alignment, size);
    if (!block)
        return ENOMEM;
    *memory = block;
    return 0;
}

NIMBRA_INTERPOSED void free(void* memory) {
    if (memory)
        countRelease(malloc_usable_size(memory));
    __libc_free(memory);
}

bool test::allAllocationsCanFail() {
    return true;
}

test::AllocationFailure::AllocationFailure(std::size_t number) {
    account.failed = false;
    account.untilFailure = number;
}

test::AllocationFailure::~AllocationFailure() {
    account.untilFailure = 0;
}

#endif

bool test::AllocationFailure::happened() const {
    return account.failed;
}

test::AllocationMeter::AllocationMeter() {
    installHooks();
    allocationsBefore_ = account.allocations;
    liveBytesBefore_ = account.liveBytes;
}

std::size_t test::AllocationMeter::allocations() const {
    return account.allocations - allocationsBefore_;
}

std::ptrdiff_t test::AllocationMeter::liveBytes() const {
    return account.liveBytes - liveBytesBefore_;
}
