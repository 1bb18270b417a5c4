// CFAutorelease.cpp: references that are given up when a scope closes or the thread ends.

#include "Buffer.h"
#include "CFRuntimeInternal.h"

namespace {

// A thread's pending references. A scope is known by how many there were when it opened.
class Pending {
public:
    Pending() : objects_(kCFAllocatorSystemDefault) {}
    ~Pending() { drain(0); }

    CFIndex count() const { return objects_.size(); }
    bool add(CFTypeRef object) { return objects_.append(object); }
    // One by one, as a finaliser may add more.
    void drain(CFIndex count) {
        while (objects_.size() > count) {
            const CFTypeRef object = objects_[objects_.size() - 1];
            objects_.close(objects_.size() - 1, 1);
            CFRelease(object);
        }
    }

private:
    cf::Buffer<CFTypeRef> objects_;
};

Pending& pending() {
    thread_local Pending pending;
    return pending;
}

} // namespace

CFTypeRef CFAutorelease(CFTypeRef object) {
    if (object && !pending().add(object))
        CF_LOG_ERROR("out of memory: the reference is never given up");
    return object;
}

void* _CFAutoreleasePoolPush(void) {
    return reinterpret_cast<void*>(static_cast<uintptr_t>(pending().count()) + 1);
}

void _CFAutoreleasePoolPop(void* pool) {
    if (pool)
        pending().drain(static_cast<CFIndex>(reinterpret_cast<uintptr_t>(pool) - 1));
}
