// CFRuntimeInternal.h: what the port's own classes use of the runtime beyond its public header.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <Host/Host.h>

#include <cstddef>
#include <cstdint>

// Classes whose instances exist before any code runs cannot register themselves: their identifiers
// are fixed, and the table of types starts out with them.
namespace cf {

enum BuiltInType : uint16_t {
    kTypeAllocator = 1,
    kTypeNull,
    kTypeBoolean,
    kTypeNumber,
    kFirstRegisteredType,
};

extern const CFRuntimeClass kAllocatorClass;
extern const CFRuntimeClass kNullClass;
extern const CFRuntimeClass kBooleanClass;
extern const CFRuntimeClass kNumberClass;

// Counts from here on stand for "for ever": such an object is neither retained nor released.
inline constexpr uint32_t kImmortalCount = 0x80000000u;
// Set in `flags` when the allocator's reference stands in front of the instance.
inline constexpr uint16_t kHasAllocatorFlag = 0x100;

// The head of an immortal instance in static storage, filled by the loader. The sum stands for the
// bitwise or, which a relocation cannot express; class records are aligned.
#define CF_STATIC_BASE(classRecord, type)                                                          \
    {                                                                                              \
        .classWord = reinterpret_cast<uintptr_t>(&(classRecord)) + kCFRuntimeClassTag,             \
        .typeID = (type), .flags = 0, .retainCount = cf::kImmortalCount                            \
    }

// Writes over the allocator stored with `object`, without counting references.
void setPrefixedAllocator(CFTypeRef object, CFAllocatorRef allocator);

// Whether `object` is an instance of the class: the guard of every exported function.
inline bool isA(CFTypeRef object, const CFRuntimeClass& record) {
    return _CFRuntimeIsNative(object) && _CFRuntimeGetClass(object) == &record;
}

// An instance of a registered class as its record, or nullptr.
template <typename Record>
Record* createInstance(CFAllocatorRef allocator, CFTypeID type) {
    return static_cast<Record*>(const_cast<void*>(_CFRuntimeCreateInstance(
        allocator, type, static_cast<CFIndex>(sizeof(Record) - sizeof(CFRuntimeBase)), nullptr)));
}

} // namespace cf

#define CF_LOG(level, ...)                                                                         \
    do {                                                                                           \
        if (HostLogIsEnabled(level))                                                               \
            HostLog(level, "CoreFoundation", __func__, __VA_ARGS__);                               \
    } while (false)

#define CF_LOG_ERROR(...) CF_LOG(kHostLogError, __VA_ARGS__)
#define CF_LOG_WARNING(...) CF_LOG(kHostLogWarning, __VA_ARGS__)
