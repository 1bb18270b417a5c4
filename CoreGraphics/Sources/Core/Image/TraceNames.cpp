// TraceNames.cpp: the table of trace names.

#include "Core/Image/TraceNames.h"

#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFRef.h>
#include <Host/Host.h>

#include <mutex>
#include <new>

namespace {

constexpr CFIndex kMostNames = 4096;
constexpr auto kAnyOtherName = static_cast<std::int32_t>(kMostNames + 1);

class TraceNames {
public:
    std::int32_t idOf(CFStringRef name) {
        const std::lock_guard hold(mutex_);
        if (const void* const known = CFDictionaryGetValue(ids_.get(), name))
            return static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(known));
        const CFIndex count = CFDictionaryGetCount(ids_.get());
        if (count == kMostNames)
            return kAnyOtherName;
        CFDictionaryAddValue(ids_.get(), name, reinterpret_cast<const void*>(count + 1));
        const bool isKept = CFDictionaryGetCount(ids_.get()) > count;
        return isKept ? static_cast<std::int32_t>(count + 1) : kAnyOtherName;
    }

private:
    host::Mutex mutex_; // Guards the dictionary; no other lock is taken under it.
    // From names to numbers, which stand in the place of values as they are.
    cf::Ref<CFMutableDictionaryRef> ids_ =
        cf::adopt(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, nullptr));
};

} // namespace

std::int32_t cg::traceID(CFStringRef name) {
    // Never destroyed: threads may still draw while the process exits.
    static auto* const names = new (std::nothrow) TraceNames;
    return names && name ? names->idOf(name) : kAnyOtherName;
}
