// Collections.cpp: what all collections do alike.

#include "Collections.h"

#include <CoreFoundation/CFString.h>

namespace cf {

namespace {

bool isMutable(CFTypeRef object) {
    return (static_cast<const CFRuntimeBase*>(object)->flags & kMutableFlag) != 0;
}

} // namespace

const void* retainObject(CFAllocatorRef, const void* object) {
    return CFRetain(object);
}

void releaseObject(CFAllocatorRef, const void* object) {
    CFRelease(object);
}

const void* copyStringValue(CFAllocatorRef allocator, const void* string) {
    return CFStringCreateCopy(allocator, static_cast<CFStringRef>(string));
}

const char* mutabilityName(CFTypeRef object) {
    return isMutable(object) ? "mutable" : "immutable";
}

bool mayChange(CFTypeRef object, const CFRuntimeClass& record, const char* function) {
    if (!isA(object, record))
        return false;
    if (!isMutable(object))
        HostLog(kHostLogError, kLogCategory, function, "the %s is immutable", record.className);
    return isMutable(object);
}

void logUnlessDone(bool done, const char* function) {
    if (!done)
        HostLog(kHostLogError, kLogCategory, function, "out of memory: nothing is changed");
}

} // namespace cf
