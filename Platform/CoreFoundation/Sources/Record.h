// Record.h: instances whose record has C++ members, which live and die with the object.
#pragma once

#include "CFRuntimeInternal.h"

#include <new>

namespace cf {

// A new instance of a registered class with its members in their initial state, and `trailingBytes`
// of zeroes behind it; nullptr when there is no memory. `Record` is an aggregate that begins with
// its CFRuntimeBase, which the runtime has filled and construction must hand on.
template <typename Record>
Record* construct(CFAllocatorRef allocator, CFTypeID type, size_t trailingBytes = 0) {
    if (trailingBytes > static_cast<size_t>(PTRDIFF_MAX) - sizeof(Record))
        return nullptr;
    const auto extra = sizeof(Record) - sizeof(CFRuntimeBase) + trailingBytes;
    void* const memory = const_cast<void*>(
        _CFRuntimeCreateInstance(allocator, type, static_cast<CFIndex>(extra), nullptr));
    if (!memory)
        return nullptr;
    const CFRuntimeBase base = *static_cast<const CFRuntimeBase*>(memory);
    return new (memory) Record{base};
}

// The finaliser of such a class.
template <typename Record>
void destroy(CFTypeRef object) {
    static_cast<Record*>(const_cast<void*>(object))->~Record();
}

} // namespace cf
