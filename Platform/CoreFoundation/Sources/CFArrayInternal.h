// CFArrayInternal.h: the record of arrays, shared by their reading and their changing half.
#pragma once

#include "Buffer.h"
#include "CFArray.h"
#include "Collections.h"

struct __CFArray {
    CFRuntimeBase base;
    CFArrayCallBacks callBacks;
    cf::Buffer<const void*> values;

    __CFArray(CFAllocatorRef allocator, const CFArrayCallBacks* given)
        : callBacks(given ? *given : CFArrayCallBacks{}), values(allocator) {}
    ~__CFArray() { releaseAll(values); }

    const void* retained(const void* value) const {
        return callBacks.retain ? callBacks.retain(CFGetAllocator(this), value) : value;
    }
    void release(const void* value) const {
        if (callBacks.release)
            callBacks.release(CFGetAllocator(this), value);
    }
    void releaseAll(const cf::Buffer<const void*>& dropped) const {
        if (!callBacks.release)
            return;
        for (const void* const value : dropped)
            release(value);
    }
    bool areEqual(const void* a, const void* b) const {
        return a == b || (callBacks.equal && callBacks.equal(a, b));
    }
};

namespace cf {

extern const CFRuntimeClass kArrayClass;

// Whether the range lies in the array; logs a refusal in the name of `function`.
bool hasRange(CFArrayRef array, CFRange range, const char* function);

} // namespace cf
