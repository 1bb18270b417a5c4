// Collections.cpp: what all collections do alike.

#include "Collections.h"

namespace cf {

const void* retainObject(CFAllocatorRef, const void* object) {
    return CFRetain(object);
}

void releaseObject(CFAllocatorRef, const void* object) {
    CFRelease(object);
}

bool mayChange(CFTypeRef object, const CFRuntimeClass& record, const char* function) {
    if (!isA(object, record))
        return false;
    const bool isMutable = (static_cast<const CFRuntimeBase*>(object)->flags & kMutableFlag) != 0;
    if (!isMutable)
        HostLog(kHostLogError, kLogCategory, function, "the %s is immutable", record.className);
    return isMutable;
}

void logUnlessDone(bool done, const char* function) {
    if (!done)
        HostLog(kHostLogError, kLogCategory, function, "out of memory: nothing is changed");
}

} // namespace cf
