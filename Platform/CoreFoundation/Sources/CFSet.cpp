// CFSet.cpp: sets over the hash table.

#include "CFSet.h"

#include "CFDescription.h"
#include "Collections.h"
#include "HashTable.h"

#include <algorithm>

using cf::HashTable;

struct __CFSet {
    CFRuntimeBase base;
    HashTable table;

    __CFSet(CFAllocatorRef allocator, const CFDictionaryKeyCallBacks* callBacks)
        : table(allocator, HashTable::Entries::Keys, callBacks, nullptr) {}
};

namespace {

using Set = cf::Ref<CFMutableSetRef>;

CFSetRef setOf(CFTypeRef object) {
    return static_cast<CFSetRef>(object);
}

CFStringRef describeSet(CFTypeRef object) {
    const HashTable& table = setOf(object)->table;
    cf::Description text(object);
    text.append(CFSTR("type = %s set, count = %ld, values =>"), cf::mutabilityName(object),
                table.count());
    for (auto at = table.firstFrom(0); at != HashTable::kNowhere; at = table.firstFrom(at + 1)) {
        text.append(CFSTR("\n\t"));
        text.appendValue(table.keyAt(at), table.keyCallBacks().copyDescription);
    }
    text.append(CFSTR("\n"));
    return text.finish();
}

constexpr CFRuntimeClass kSetClass = {
    .className = "CFSet",
    .finalize = cf::finalize<__CFSet>,
    .equal = [](CFTypeRef a, CFTypeRef b) -> Boolean {
        return setOf(a)->table.equals(setOf(b)->table);
    },
    .hash = [](CFTypeRef object) { return static_cast<CFHashCode>(setOf(object)->table.count()); },
    .copyDebugDescription = describeSet,
};

// The callbacks of sets are those of dictionary keys under another name.
CFDictionaryKeyCallBacks keyCallBacksOf(const CFSetCallBacks* callBacks) {
    if (!callBacks)
        return {};
    return {callBacks->version,         callBacks->retain, callBacks->release,
            callBacks->copyDescription, callBacks->equal,  callBacks->hash};
}

bool isSet(CFSetRef set) {
    return cf::isA(set, kSetClass);
}

Set createEmpty(CFAllocatorRef allocator, CFIndex capacity,
                const CFDictionaryKeyCallBacks& callBacks) {
    if (capacity < 0)
        return nullptr;
    auto set = cf::create<__CFSet>(allocator, CFSetGetTypeID(), &callBacks);
    return set && set.get()->table.reserve(capacity) ? set : nullptr;
}

Set createCopy(CFAllocatorRef allocator, CFSetRef source) {
    const HashTable& table = source->table;
    auto copy = createEmpty(allocator, table.count(), table.keyCallBacks());
    return copy && copy.get()->table.addAll(table) ? copy : nullptr;
}

} // namespace

const CFSetCallBacks kCFTypeSetCallBacks = {
    0, cf::retainObject, cf::releaseObject, CFCopyDescription, CFEqual, CFHash};

const CFSetCallBacks kCFCopyStringSetCallBacks = {
    0, cf::copyStringValue, cf::releaseObject, CFCopyDescription, CFEqual, CFHash};

CFTypeID CFSetGetTypeID(void) {
    static const CFTypeID type = _CFRuntimeRegisterClass(&kSetClass);
    return type;
}

CFSetRef CFSetCreate(CFAllocatorRef allocator, const void** values, CFIndex count,
                     const CFSetCallBacks* callBacks) {
    if (count > 0 && !values)
        return nullptr;
    Set set = createEmpty(allocator, count, keyCallBacksOf(callBacks));
    for (CFIndex i = 0; set && i < count; ++i) {
        if (!set.get()->table.add(values[i], nullptr))
            return nullptr;
    }
    return set.release();
}

CFSetRef CFSetCreateCopy(CFAllocatorRef allocator, CFSetRef set) {
    return isSet(set) ? createCopy(allocator, set).release() : nullptr;
}

CFMutableSetRef CFSetCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                   const CFSetCallBacks* callBacks) {
    const CFIndex hint = std::min(capacity, cf::kMostTakenFromHint);
    return cf::makeMutable(createEmpty(allocator, hint, keyCallBacksOf(callBacks))).release();
}

CFMutableSetRef CFSetCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity, CFSetRef set) {
    if (!isSet(set) || capacity < 0)
        return nullptr;
    return cf::makeMutable(createCopy(allocator, set)).release();
}

CFIndex CFSetGetCount(CFSetRef set) {
    return isSet(set) ? set->table.count() : 0;
}

CFIndex CFSetGetCountOfValue(CFSetRef set, const void* value) {
    return CFSetContainsValue(set, value) ? 1 : 0;
}

Boolean CFSetContainsValue(CFSetRef set, const void* value) {
    return CFSetGetValueIfPresent(set, value, nullptr);
}

const void* CFSetGetValue(CFSetRef set, const void* value) {
    const void* actual = nullptr;
    CFSetGetValueIfPresent(set, value, &actual);
    return actual;
}

Boolean CFSetGetValueIfPresent(CFSetRef set, const void* value, const void** actual) {
    if (!isSet(set))
        return false;
    const auto at = set->table.find(value);
    if (at == HashTable::kNowhere)
        return false;
    if (actual)
        *actual = set->table.keyAt(at);
    return true;
}

void CFSetGetValues(CFSetRef set, const void** values) {
    if (!isSet(set) || !values)
        return;
    const HashTable& table = set->table;
    for (auto at = table.firstFrom(0); at != HashTable::kNowhere; at = table.firstFrom(at + 1))
        *values++ = table.keyAt(at);
}

void CFSetApplyFunction(CFSetRef set, CFSetApplierFunction applier, void* context) {
    if (!isSet(set) || !applier)
        return;
    const HashTable& table = set->table;
    for (auto at = table.firstFrom(0); at != HashTable::kNowhere; at = table.firstFrom(at + 1))
        applier(table.keyAt(at), context);
}

void CFSetAddValue(CFMutableSetRef set, const void* value) {
    if (cf::mayChange(set, kSetClass, __func__))
        cf::logUnlessDone(set->table.add(value, nullptr), __func__);
}

void CFSetSetValue(CFMutableSetRef set, const void* value) {
    if (cf::mayChange(set, kSetClass, __func__))
        cf::logUnlessDone(set->table.set(value, nullptr), __func__);
}

void CFSetReplaceValue(CFMutableSetRef set, const void* value) {
    if (!cf::mayChange(set, kSetClass, __func__))
        return;
    const auto at = set->table.find(value);
    if (at != HashTable::kNowhere)
        cf::logUnlessDone(set->table.replaceKeyAt(at, value), __func__);
}

void CFSetRemoveValue(CFMutableSetRef set, const void* value) {
    if (cf::mayChange(set, kSetClass, __func__))
        set->table.remove(value);
}

void CFSetRemoveAllValues(CFMutableSetRef set) {
    if (cf::mayChange(set, kSetClass, __func__))
        set->table.removeAll();
}
