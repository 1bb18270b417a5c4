// CFRuntime.cpp: classes, instances and their reference counts.

#include "CFRuntime.h"

#include <CoreFoundation/CFConstantString.h>

#include "CFAllocatorInternal.h"
#include "CFForeignObject.h"
#include "CFRuntimeInternal.h"

#include <sys/single_threaded.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

using ClassSlot = std::atomic<const CFRuntimeClass*>;

constexpr CFTypeID kMaximumTypes = 4096;

// Slot 0 stays empty: it is the identifier of untyped objects. Readers need no lock, because a slot
// is written once, before its identifier is known to anybody.
constinit std::array<ClassSlot, kMaximumTypes> classes = {
    nullptr, &cf::kAllocatorClass, &cf::kNullClass, &cf::kBooleanClass, &cf::kNumberClass, nullptr,
    nullptr, &_CFStringClass};
static_assert(cf::kTypeString == 7);
constinit std::atomic<CFTypeID> nextType = cf::kFirstRegisteredType;

// The allocator's reference stands in front of the instance, which keeps malloc's alignment.
constexpr std::size_t kAllocatorPrefix = alignof(std::max_align_t);
static_assert(sizeof(CFAllocatorRef) <= kAllocatorPrefix);

CFRuntimeBase* mutableBase(CFTypeRef object) {
    return static_cast<CFRuntimeBase*>(const_cast<void*>(object));
}

std::atomic_ref<uint32_t> countOf(CFTypeRef object) {
    return std::atomic_ref<uint32_t>(mutableBase(object)->retainCount);
}

CFAllocatorRef& prefixedAllocator(CFTypeRef object) {
    return *reinterpret_cast<CFAllocatorRef*>(reinterpret_cast<std::byte*>(mutableBase(object)) -
                                              kAllocatorPrefix);
}

// Room for an instance, zeroed behind its base. Small blocks come from the thread's own cache of
// freed ones, which the C library's calloc does not look into; large ones may come from the system
// zeroed already.
void* allocateInstance(std::size_t size) {
    constexpr std::size_t kSmall = 1024;
    if (size > kSmall)
        return std::calloc(1, size);
    void* const memory = std::malloc(size);
    if (memory)
        std::memset(static_cast<CFRuntimeBase*>(memory) + 1, 0, size - sizeof(CFRuntimeBase));
    return memory;
}

CFTypeRef createInstance(CFAllocatorRef allocator, const CFRuntimeClass* record, CFTypeID type,
                         CFIndex extraBytes) {
    constexpr auto most = static_cast<std::size_t>(std::numeric_limits<CFIndex>::max());
    if (!record || extraBytes < 0 ||
        static_cast<std::size_t>(extraBytes) > most - sizeof(CFRuntimeBase) - kAllocatorPrefix)
        return nullptr;
    const std::size_t size = sizeof(CFRuntimeBase) + static_cast<std::size_t>(extraBytes);
    const bool ownAllocator = !cf::isSystemAllocator(allocator);

    void* memory = nullptr;
    if (!ownAllocator) {
        memory = allocateInstance(size);
    } else if (auto* block = static_cast<std::byte*>(CFAllocatorAllocate(
                   allocator, static_cast<CFIndex>(size + kAllocatorPrefix), 0))) {
        memory = block + kAllocatorPrefix;
        std::memset(memory, 0, size);
    }
    if (!memory)
        return nullptr;

    auto* const base = static_cast<CFRuntimeBase*>(memory);
    base->classWord = reinterpret_cast<uintptr_t>(record) | kCFRuntimeClassTag;
    base->typeID = static_cast<uint16_t>(type);
    base->flags = 0;
    base->retainCount = 1;
    if (ownAllocator) {
        base->flags = cf::kHasAllocatorFlag;
        prefixedAllocator(base) =
            static_cast<CFAllocatorRef>(CFRetain(cf::resolveAllocator(allocator)));
    }
    if (record->init)
        record->init(base);
    return base;
}

void destroy(CFTypeRef object) {
    if (const auto finalize = _CFRuntimeGetClass(object)->finalize)
        finalize(object);
    if ((mutableBase(object)->flags & cf::kHasAllocatorFlag) == 0) {
        std::free(mutableBase(object));
        return;
    }
    if (prefixedAllocator(object) == object) {
        cf::freeSelfHostedAllocator(prefixedAllocator(object), &prefixedAllocator(object));
        return;
    }
    const auto allocator = cf::adopt(prefixedAllocator(object));
    CFAllocatorDeallocate(allocator.get(), &prefixedAllocator(object));
}

} // namespace

namespace cf {

void setPrefixedAllocator(CFTypeRef object, CFAllocatorRef allocator) {
    prefixedAllocator(object) = allocator;
}

} // namespace cf

CFTypeID _CFRuntimeRegisterClass(const CFRuntimeClass* record) {
    if (!record)
        return _kCFRuntimeNotATypeID;
    CFTypeID type = nextType.load(std::memory_order_relaxed);
    do {
        if (type >= kMaximumTypes) {
            CF_LOG_ERROR("no room for class %s", record->className);
            return _kCFRuntimeNotATypeID;
        }
    } while (!nextType.compare_exchange_weak(type, type + 1, std::memory_order_relaxed));
    classes[type].store(record, std::memory_order_release);
    return type;
}

const CFRuntimeClass* _CFRuntimeGetClassWithTypeID(CFTypeID type) {
    return type < kMaximumTypes ? classes[type].load(std::memory_order_acquire) : nullptr;
}

CFTypeRef _CFRuntimeCreateInstance(CFAllocatorRef allocator, CFTypeID type, CFIndex extraBytes,
                                   unsigned char*) {
    return createInstance(allocator, _CFRuntimeGetClassWithTypeID(type), type, extraBytes);
}

CFTypeRef _CFRuntimeCreateUntypedInstance(CFAllocatorRef allocator, const CFRuntimeClass* record,
                                          CFIndex extraBytes) {
    return createInstance(allocator, record, _kCFRuntimeNotATypeID, extraBytes);
}

void _CFRuntimeInitStaticInstance(void* object, CFTypeID type) {
    const CFRuntimeClass* const record = _CFRuntimeGetClassWithTypeID(type);
    if (!object || !record)
        return;
    auto* const base = static_cast<CFRuntimeBase*>(object);
    base->classWord = reinterpret_cast<uintptr_t>(record) | kCFRuntimeClassTag;
    base->typeID = static_cast<uint16_t>(type);
    base->flags = 0;
    base->retainCount = cf::kImmortalCount;
    if (record->init)
        record->init(object);
}

void _CFRuntimeSetImmortal(CFTypeRef object) {
    if (_CFRuntimeIsNative(object))
        countOf(object).store(cf::kImmortalCount, std::memory_order_relaxed);
}

Boolean _CFRuntimeIsImmortal(CFTypeRef object) {
    return _CFRuntimeIsNative(object) &&
           countOf(object).load(std::memory_order_relaxed) >= cf::kImmortalCount;
}

// A count that climbs to the immortal ones by itself stays there, instead of wrapping around and
// freeing an object in use.
CFTypeRef CFRetain(CFTypeRef object) {
    if (!_CFRuntimeIsNative(object)) [[unlikely]]
        return cf::foreign::retain(object);
    const auto count = countOf(object);
    const uint32_t before = count.load(std::memory_order_relaxed);
    if (before >= cf::kImmortalCount) [[unlikely]]
        return object;
    if (__libc_single_threaded)
        count.store(before + 1, std::memory_order_relaxed);
    else
        count.fetch_add(1, std::memory_order_relaxed);
    return object;
}

// Each release publishes what its thread did to the object, and the last one acquires all of it
// before the finaliser runs.
void CFRelease(CFTypeRef object) {
    if (!_CFRuntimeIsNative(object)) [[unlikely]]
        return cf::foreign::release(object);
    const auto count = countOf(object);
    uint32_t before = count.load(std::memory_order_relaxed);
    if (before >= cf::kImmortalCount) [[unlikely]]
        return;
    if (__libc_single_threaded)
        count.store(before - 1, std::memory_order_relaxed);
    else
        before = count.fetch_sub(1, std::memory_order_acq_rel);
    if (before == 1)
        destroy(object);
}

CFIndex CFGetRetainCount(CFTypeRef object) {
    if (!_CFRuntimeIsNative(object))
        return 0;
    const uint32_t count = countOf(object).load(std::memory_order_relaxed);
    return count >= cf::kImmortalCount ? std::numeric_limits<CFIndex>::max()
                                       : static_cast<CFIndex>(count);
}

CFTypeID CFGetTypeID(CFTypeRef object) {
    return _CFRuntimeIsNative(object) ? static_cast<const CFRuntimeBase*>(object)->typeID
                                      : CFTypeID{_kCFRuntimeNotATypeID};
}

CFAllocatorRef CFGetAllocator(CFTypeRef object) {
    if (!_CFRuntimeIsNative(object))
        return nullptr;
    return (mutableBase(object)->flags & cf::kHasAllocatorFlag) != 0 ? prefixedAllocator(object)
                                                                     : kCFAllocatorSystemDefault;
}

Boolean CFEqual(CFTypeRef a, CFTypeRef b) {
    if (!a || !b)
        return false;
    if (a == b)
        return true;
    if (!_CFRuntimeIsNative(a))
        return cf::foreign::areEqual(a, b);
    if (!_CFRuntimeIsNative(b))
        return cf::foreign::areEqual(b, a);
    if (_CFRuntimeGetClass(a) != _CFRuntimeGetClass(b))
        return false;
    const auto equal = _CFRuntimeGetClass(a)->equal;
    return equal && equal(a, b);
}

CFHashCode CFHash(CFTypeRef object) {
    if (!_CFRuntimeIsNative(object))
        return cf::foreign::hash(object);
    if (const auto hash = _CFRuntimeGetClass(object)->hash)
        return hash(object);
    return reinterpret_cast<CFHashCode>(object);
}
