// CFForeignObject.cpp: messages to objects of another runtime.

#include "CFForeignObject.h"

#include <Host/Host.h>

#include <atomic>
#include <cstdint>

namespace cf::foreign {

namespace {

using RegisterName = const void* (*)(const char* name);
using Send = uintptr_t (*)(CFTypeRef receiver, const void* selector, const void* argument);

// Looked for again until found: the runtime may be loaded late. No object needs it before.
template <typename Function>
Function find(std::atomic<Function>& known, const char* name) {
    Function function = known.load(std::memory_order_relaxed);
    if (!function) {
        function = reinterpret_cast<Function>(HostSymbolFind(name));
        known.store(function, std::memory_order_relaxed);
    }
    return function;
}

// What the message answers, as a word; 0 when there is nobody to carry it.
uintptr_t send(CFTypeRef receiver, const char* name, const void* argument = nullptr) {
    static constinit std::atomic<RegisterName> registerName = nullptr;
    static constinit std::atomic<Send> sendMessage = nullptr;
    if (!receiver)
        return 0;
    const RegisterName toSelector = find(registerName, "sel_registerName");
    const Send toObject = find(sendMessage, "objc_msgSend");
    return toSelector && toObject ? toObject(receiver, toSelector(name), argument) : 0;
}

} // namespace

CFTypeRef retain(CFTypeRef object) {
    send(object, "retain");
    return object;
}

void release(CFTypeRef object) {
    send(object, "release");
}

// The answer is a byte; what stands above it in the register is not part of it.
bool areEqual(CFTypeRef a, CFTypeRef b) {
    return static_cast<uint8_t>(send(a, "isEqual:", b)) != 0;
}

CFHashCode hash(CFTypeRef object) {
    const uintptr_t answer = send(object, "hash");
    return answer != 0 ? answer : reinterpret_cast<CFHashCode>(object);
}

CFStringRef description(CFTypeRef object) {
    return reinterpret_cast<CFStringRef>(send(object, "description"));
}

} // namespace cf::foreign
