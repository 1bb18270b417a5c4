// CFDictionary.cpp: dictionaries over the hash table.

#include "CFDictionary.h"

#include "CFDescription.h"
#include "Collections.h"
#include "HashTable.h"

#include <algorithm>

using cf::HashTable;

struct __CFDictionary {
    CFRuntimeBase base;
    HashTable table;

    __CFDictionary(CFAllocatorRef allocator, const CFDictionaryKeyCallBacks* keyCallBacks,
                   const CFDictionaryValueCallBacks* valueCallBacks)
        : table(allocator, HashTable::Entries::KeysAndValues, keyCallBacks, valueCallBacks) {}
};

namespace {

using Dictionary = cf::Ref<CFMutableDictionaryRef>;

CFDictionaryRef dictionaryOf(CFTypeRef object) {
    return static_cast<CFDictionaryRef>(object);
}

CFStringRef describeDictionary(CFTypeRef object) {
    const HashTable& table = dictionaryOf(object)->table;
    cf::Description text(object);
    text.append(CFSTR("type = %s dict, count = %ld, entries =>"), cf::mutabilityName(object),
                table.count());
    for (auto at = table.firstFrom(0); at != HashTable::kNowhere; at = table.firstFrom(at + 1)) {
        text.append(CFSTR("\n\t"));
        text.appendValue(table.keyAt(at), table.keyCallBacks().copyDescription);
        text.append(CFSTR(" = "));
        text.appendValue(table.valueAt(at), table.valueCallBacks().copyDescription);
    }
    text.append(CFSTR("\n"));
    return text.finish();
}

constexpr CFRuntimeClass kDictionaryClass = {
    .className = "CFDictionary",
    .finalize = cf::finalize<__CFDictionary>,
    .equal = [](CFTypeRef a, CFTypeRef b) -> Boolean {
        return dictionaryOf(a)->table.equals(dictionaryOf(b)->table);
    },
    .hash =
        [](CFTypeRef object) {
            return static_cast<CFHashCode>(dictionaryOf(object)->table.count());
        },
    .copyDebugDescription = describeDictionary,
};

bool isDictionary(CFDictionaryRef dictionary) {
    return cf::isA(dictionary, kDictionaryClass);
}

Dictionary createEmpty(CFAllocatorRef allocator, CFIndex capacity,
                       const CFDictionaryKeyCallBacks* keyCallBacks,
                       const CFDictionaryValueCallBacks* valueCallBacks) {
    if (capacity < 0)
        return nullptr;
    auto dictionary = cf::create<__CFDictionary>(allocator, CFDictionaryGetTypeID(), keyCallBacks,
                                                 valueCallBacks);
    return dictionary && dictionary.get()->table.reserve(capacity) ? dictionary : nullptr;
}

Dictionary createCopy(CFAllocatorRef allocator, CFDictionaryRef source) {
    const HashTable& table = source->table;
    auto copy =
        createEmpty(allocator, table.count(), &table.keyCallBacks(), &table.valueCallBacks());
    return copy && copy.get()->table.addAll(table) ? copy : nullptr;
}

} // namespace

const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {
    0, cf::retainObject, cf::releaseObject, CFCopyDescription, CFEqual, CFHash};
const CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks = {
    0, cf::copyStringValue, cf::releaseObject, CFCopyDescription, CFEqual, CFHash};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {
    0, cf::retainObject, cf::releaseObject, CFCopyDescription, CFEqual};

CFTypeID CFDictionaryGetTypeID(void) {
    static const CFTypeID type = _CFRuntimeRegisterClass(&kDictionaryClass);
    return type;
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks) {
    if (count > 0 && (!keys || !values))
        return nullptr;
    Dictionary dictionary = createEmpty(allocator, count, keyCallBacks, valueCallBacks);
    for (CFIndex i = 0; dictionary && i < count; ++i) {
        if (!dictionary.get()->table.add(keys[i], values[i]))
            return nullptr;
    }
    return dictionary.release();
}

CFDictionaryRef CFDictionaryCreateCopy(CFAllocatorRef allocator, CFDictionaryRef dictionary) {
    return isDictionary(dictionary) ? createCopy(allocator, dictionary).release() : nullptr;
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
    const CFIndex hint = std::min(capacity, cf::kMostTakenFromHint);
    return cf::makeMutable(createEmpty(allocator, hint, keyCallBacks, valueCallBacks)).release();
}

CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                     CFDictionaryRef dictionary) {
    if (!isDictionary(dictionary) || capacity < 0)
        return nullptr;
    return cf::makeMutable(createCopy(allocator, dictionary)).release();
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
    return isDictionary(dictionary) ? dictionary->table.count() : 0;
}

CFIndex CFDictionaryGetCountOfKey(CFDictionaryRef dictionary, const void* key) {
    return CFDictionaryContainsKey(dictionary, key) ? 1 : 0;
}

CFIndex CFDictionaryGetCountOfValue(CFDictionaryRef dictionary, const void* value) {
    if (!isDictionary(dictionary))
        return 0;
    const HashTable& table = dictionary->table;
    const auto equal = table.valueCallBacks().equal;
    CFIndex count = 0;
    for (auto at = table.firstFrom(0); at != HashTable::kNowhere; at = table.firstFrom(at + 1)) {
        if (table.valueAt(at) == value || (equal && equal(table.valueAt(at), value)))
            ++count;
    }
    return count;
}

Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key) {
    return CFDictionaryGetValueIfPresent(dictionary, key, nullptr);
}

Boolean CFDictionaryContainsValue(CFDictionaryRef dictionary, const void* value) {
    return CFDictionaryGetCountOfValue(dictionary, value) > 0;
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    return isDictionary(dictionary) ? dictionary->table.valueOf(key) : nullptr;
}

Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key,
                                      const void** value) {
    if (!isDictionary(dictionary))
        return false;
    const auto at = dictionary->table.find(key);
    if (at == HashTable::kNowhere)
        return false;
    if (value)
        *value = dictionary->table.valueAt(at);
    return true;
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys,
                                  const void** values) {
    if (!isDictionary(dictionary))
        return;
    const HashTable& table = dictionary->table;
    for (auto at = table.firstFrom(0); at != HashTable::kNowhere; at = table.firstFrom(at + 1)) {
        if (keys)
            *keys++ = table.keyAt(at);
        if (values)
            *values++ = table.valueAt(at);
    }
}

void CFDictionaryApplyFunction(CFDictionaryRef dictionary, CFDictionaryApplierFunction applier,
                               void* context) {
    if (!isDictionary(dictionary) || !applier)
        return;
    const HashTable& table = dictionary->table;
    for (auto at = table.firstFrom(0); at != HashTable::kNowhere; at = table.firstFrom(at + 1))
        applier(table.keyAt(at), table.valueAt(at), context);
}

void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    if (cf::mayChange(dictionary, kDictionaryClass, __func__))
        cf::logUnlessDone(dictionary->table.add(key, value), __func__);
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    if (cf::mayChange(dictionary, kDictionaryClass, __func__))
        cf::logUnlessDone(dictionary->table.set(key, value), __func__);
}

void CFDictionaryReplaceValue(CFMutableDictionaryRef dictionary, const void* key,
                              const void* value) {
    if (!cf::mayChange(dictionary, kDictionaryClass, __func__))
        return;
    const auto at = dictionary->table.find(key);
    if (at != HashTable::kNowhere)
        cf::logUnlessDone(dictionary->table.replaceValueAt(at, value), __func__);
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key) {
    if (cf::mayChange(dictionary, kDictionaryClass, __func__))
        dictionary->table.remove(key);
}

void CFDictionaryRemoveAllValues(CFMutableDictionaryRef dictionary) {
    if (cf::mayChange(dictionary, kDictionaryClass, __func__))
        dictionary->table.removeAll();
}
