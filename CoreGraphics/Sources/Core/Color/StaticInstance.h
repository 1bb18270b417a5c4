// StaticInstance.h: immortal objects that need no allocation.
#pragma once

#include <CoreFoundation/CFRuntime.h>

#include <cstddef>
#include <new>

namespace cg {

// Static storage for one instance of a registered class and `trailingBytes` behind it. Making it
// cannot fail, so what a process shares is there even when memory has run out:
//
//     static const CGColorRef white = [] {
//         static StaticInstance<CGColor> storage;
//         return storage.make(CGColorGetTypeID());
//     }();
template <typename Record, std::size_t trailingBytes = 0>
class StaticInstance {
public:
    // The one instance, its members at their defaults. To be called once.
    Record* make(CFTypeID type) {
        auto* const record = ::new (static_cast<void*>(memory_)) Record{};
        _CFRuntimeInitStaticInstance(record, type);
        return record;
    }

private:
    alignas(Record) std::byte memory_[sizeof(Record) + trailingBytes] = {};
};

} // namespace cg
