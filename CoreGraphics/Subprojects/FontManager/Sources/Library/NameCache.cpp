// NameCache.cpp: what names were last resolved to.

#include "Library/NameCache.h"

#include <FontManager/FMFont.h>

#include "Library/NameText.h"

namespace fm {
namespace {

// Stands for no font, since a cache has no NULL values.
constexpr char kNoFont = 0;

const std::u16string& textOf(const void* key) {
    return *static_cast<const std::u16string*>(key);
}

FMFontRef fontOf(const void* value) {
    return value == &kNoFont ? nullptr : static_cast<FMFontRef>(const_cast<void*>(value));
}

// Keys are asked for with text of the caller's, and kept as text of the cache's own.
constexpr CFDictionaryKeyCallBacks kTextKeys = {
    .retain = [](CFAllocatorRef, const void* key) -> const void* {
        return new std::u16string(textOf(key));
    },
    .release = [](CFAllocatorRef, const void* key) { delete &textOf(key); },
    .equal = [](const void* a, const void* b) -> Boolean { return textOf(a) == textOf(b); },
    .hash = [](const void* key) -> CFHashCode { return NameHash{}(textOf(key)); },
};

constexpr CFDictionaryValueCallBacks kFontValues = {
    .retain = [](CFAllocatorRef, const void* value) -> const void* {
        FMFontRetain(fontOf(value));
        return value;
    },
    .release = [](CFAllocatorRef, const void* value) { FMFontRelease(fontOf(value)); },
};

} // namespace

NameCache::NameCache(CFIndex capacity)
    : cache_(cf::adopt(_CFLRUCacheCreate(nullptr, capacity, &kTextKeys, &kFontValues))) {}

std::optional<FMFontRef> NameCache::find(const std::u16string& lowerCasedName) const {
    const void* const value = cache_ ? _CFLRUCacheGetValue(cache_.get(), &lowerCasedName) : nullptr;
    return value ? std::optional(fontOf(value)) : std::nullopt;
}

void NameCache::remember(const std::u16string& lowerCasedName, FMFontRef font) {
    if (cache_)
        _CFLRUCacheSetValue(cache_.get(), &lowerCasedName,
                            font ? static_cast<const void*>(font) : &kNoFont);
}

void NameCache::forgetAll() {
    if (cache_)
        _CFLRUCacheRemoveAllValues(cache_.get());
}

} // namespace fm
