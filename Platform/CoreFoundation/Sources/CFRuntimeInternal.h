// CFRuntimeInternal.h: what the port's own classes use of the runtime beyond its public header.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <Host/Host.h>

#include <cstdint>
#include <new>
#include <utility>

// Classes whose instances exist before any code runs cannot register themselves: their identifiers
// are fixed, and the table of types starts out with them.
namespace cf {

enum BuiltInType : uint16_t {
    kTypeAllocator = 1,
    kTypeNull,
    kTypeBoolean,
    kTypeNumber,
    kTypeString = _kCFRuntimeStringTypeID,
    kFirstRegisteredType,
};

extern const CFRuntimeClass kAllocatorClass;
extern const CFRuntimeClass kNullClass;
extern const CFRuntimeClass kBooleanClass;
extern const CFRuntimeClass kNumberClass;

// Counts from here on stand for "for ever": such an object is neither retained nor released.
inline constexpr uint32_t kImmortalCount = _kCFRuntimeImmortalCount;
// Set in `flags` when the allocator's reference stands in front of the instance.
inline constexpr uint16_t kHasAllocatorFlag = 0x100;

// The head of an immortal instance in static storage, filled by the loader. The sum stands for the
// bitwise or, which a relocation cannot express; class records are aligned.
#define CF_STATIC_BASE_WITH_FLAGS(classRecord, type, ownFlags)                                     \
    {                                                                                              \
        .classWord = reinterpret_cast<uintptr_t>(&(classRecord)) + kCFRuntimeClassTag,             \
        .typeID = (type), .flags = (ownFlags), .retainCount = cf::kImmortalCount                   \
    }
#define CF_STATIC_BASE(classRecord, type) CF_STATIC_BASE_WITH_FLAGS(classRecord, type, 0)

// Writes over the allocator stored with `object`, without counting references.
void setPrefixedAllocator(CFTypeRef object, CFAllocatorRef allocator);

inline constexpr const char* kLogCategory = "CoreFoundation";

// Whether `object` is an instance of the class: the guard of every exported function.
inline bool isA(CFTypeRef object, const CFRuntimeClass& record) {
    const uintptr_t word = reinterpret_cast<uintptr_t>(&record) + kCFRuntimeClassTag;
    return object && static_cast<const CFRuntimeBase*>(object)->classWord == word;
}

// The class's own flag of collections that may be changed.
inline constexpr uint16_t kMutableFlag = 0x01;

// A new instance of a registered class. The record's constructor is given the allocator that holds
// it (lent) and `arguments`; it leaves the head alone, which the runtime has filled.
template <typename Record, typename... Arguments>
Ref<Record*> create(CFAllocatorRef allocator, CFTypeID type, Arguments&&... arguments) {
    const CFTypeRef instance = _CFRuntimeCreateInstance(
        allocator, type, static_cast<CFIndex>(sizeof(Record) - sizeof(CFRuntimeBase)), nullptr);
    if (!instance)
        return nullptr;
    const CFRuntimeBase base = *static_cast<const CFRuntimeBase*>(instance);
    auto* const record = ::new (const_cast<void*>(instance))
        Record(CFGetAllocator(instance), std::forward<Arguments>(arguments)...);
    record->base = base;
    return adopt(record);
}

// The class callback that ends such a record.
template <typename Record>
void finalize(CFTypeRef object) {
    static_cast<Record*>(const_cast<void*>(object))->~Record();
}

template <typename Record>
Ref<Record*> makeMutable(Ref<Record*> object) {
    if (object)
        object.get()->base.flags |= kMutableFlag;
    return object;
}

} // namespace cf

// A message of the library's own log category; the level is tested before the message is formed.
#define CF_LOG(level, ...)                                                                         \
    do {                                                                                           \
        if (HostLogIsEnabled(level))                                                               \
            HostLog(level, cf::kLogCategory, __func__, __VA_ARGS__);                               \
    } while (false)

#define CF_LOG_ERROR(...) CF_LOG(kHostLogError, __VA_ARGS__)
#define CF_LOG_WARNING(...) CF_LOG(kHostLogWarning, __VA_ARGS__)
