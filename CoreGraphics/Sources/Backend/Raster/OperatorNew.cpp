// OperatorNew.cpp: plain `new` inside this library, which must not throw.
//
// Skia takes memory with plain `new` and does not expect it to fail. The standard library would
// throw then, through code that knows no exceptions and out of the C boundary. Inside this
// library the process ends with a line in the log instead; the names are not exported, so that
// nobody else's `new` changes. Our own code asks with std::nothrow and answers NULL.

#include <Host/Host.h>

#include <cstdlib>
#include <new>

namespace {

void* allocate(std::size_t size) noexcept {
    return std::malloc(size > 0 ? size : 1);
}

void* allocateOrEnd(std::size_t size) noexcept {
    void* const memory = allocate(size);
    if (!memory)
        HostLog(kHostLogFault, "CoreGraphics", "operator new", "out of memory for %zu bytes", size);
    return memory;
}

} // namespace

void* operator new(std::size_t size) {
    return allocateOrEnd(size);
}
void* operator new[](std::size_t size) {
    return allocateOrEnd(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
