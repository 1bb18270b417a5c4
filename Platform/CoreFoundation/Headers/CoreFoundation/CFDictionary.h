/* CFDictionary.h: unordered collections of values found by key.
 *
 * Keys and values are pointer-sized. Callbacks say what the dictionary does with a key or value
 * that it takes in, drops, compares or describes; each may be NULL (no ownership, pointer equality,
 * the pointer as hash, the address as description). Equal keys must have equal hashes. A change to
 * an immutable dictionary is refused and logged. When memory runs out a change is not made, and
 * logged.
 *
 * Callbacks and appliers may look things up in the dictionary that calls them; when an applier
 * changes it, entries may be met twice or not at all, but never one that has been dropped. */
#pragma once

#include <CoreFoundation/CFAllocator.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;

typedef const void* (*CFDictionaryRetainCallBack)(CFAllocatorRef allocator, const void* value);
typedef void (*CFDictionaryReleaseCallBack)(CFAllocatorRef allocator, const void* value);
typedef CFStringRef (*CFDictionaryCopyDescriptionCallBack)(const void* value);
typedef Boolean (*CFDictionaryEqualCallBack)(const void* a, const void* b);
typedef CFHashCode (*CFDictionaryHashCallBack)(const void* value);
typedef void (*CFDictionaryApplierFunction)(const void* key, const void* value, void* context);

typedef struct CFDictionaryKeyCallBacks {
    CFIndex version; /**< Always 0. */
    CFDictionaryRetainCallBack retain;
    CFDictionaryReleaseCallBack release;
    CFDictionaryCopyDescriptionCallBack copyDescription;
    CFDictionaryEqualCallBack equal;
    CFDictionaryHashCallBack hash;
} CFDictionaryKeyCallBacks;

typedef struct CFDictionaryValueCallBacks {
    CFIndex version; /**< Always 0. */
    CFDictionaryRetainCallBack retain;
    CFDictionaryReleaseCallBack release;
    CFDictionaryCopyDescriptionCallBack copyDescription;
    CFDictionaryEqualCallBack equal;
} CFDictionaryValueCallBacks;

/** Keys are CF objects, retained while they are in the dictionary. */
CF_EXPORT const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
/** Keys are strings, of which the dictionary keeps immutable copies. */
CF_EXPORT const CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks;
/** Values are CF objects, retained while they are in the dictionary. */
CF_EXPORT const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

CF_EXPORT CFTypeID CFDictionaryGetTypeID(void);

/** An immutable dictionary of `count` pairs. Of equal keys the first one stays, with its value.
 *  NULL callbacks are all-NULL ones. NULL when `count` is negative, or positive with a NULL list,
 *  or memory runs out. */
CF_EXPORT CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys,
                                             const void** values, CFIndex count,
                                             const CFDictionaryKeyCallBacks* keyCallBacks,
                                             const CFDictionaryValueCallBacks* valueCallBacks);
/** An immutable dictionary of the same pairs and callbacks. */
CF_EXPORT CFDictionaryRef CFDictionaryCreateCopy(CFAllocatorRef allocator,
                                                 CFDictionaryRef dictionary);
/** An empty mutable dictionary. `capacity` is a hint at how many pairs it will hold; more may be
 *  put in. NULL when it is negative. */
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutable(
    CFAllocatorRef allocator, CFIndex capacity, const CFDictionaryKeyCallBacks* keyCallBacks,
    const CFDictionaryValueCallBacks* valueCallBacks);
/** A mutable dictionary of the same pairs and callbacks. */
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator,
                                                               CFIndex capacity,
                                                               CFDictionaryRef dictionary);

CF_EXPORT CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
/** 1 when the key is there, else 0. */
CF_EXPORT CFIndex CFDictionaryGetCountOfKey(CFDictionaryRef dictionary, const void* key);
/** How many pairs have a value equal to `value`. */
CF_EXPORT CFIndex CFDictionaryGetCountOfValue(CFDictionaryRef dictionary, const void* value);
CF_EXPORT Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key);
CF_EXPORT Boolean CFDictionaryContainsValue(CFDictionaryRef dictionary, const void* value);
/** The value of `key`, lent; NULL when there is no such key. */
CF_EXPORT const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
/** Whether the key is there; its value, lent, goes to `value` unless that is NULL. A miss leaves
 *  `*value` as it was. */
CF_EXPORT Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key,
                                                const void** value);
/** Copies all keys and their values, lent, in matching order; either list may be NULL. */
CF_EXPORT void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys,
                                            const void** values);
CF_EXPORT void CFDictionaryApplyFunction(CFDictionaryRef dictionary,
                                         CFDictionaryApplierFunction applier, void* context);

/** Adds the pair unless the key is there. */
CF_EXPORT void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void* key,
                                    const void* value);
/** Adds the pair, or gives the key that is there a new value. */
CF_EXPORT void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key,
                                    const void* value);
/** Gives a key that is there a new value; does nothing otherwise. */
CF_EXPORT void CFDictionaryReplaceValue(CFMutableDictionaryRef dictionary, const void* key,
                                        const void* value);
CF_EXPORT void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);
CF_EXPORT void CFDictionaryRemoveAllValues(CFMutableDictionaryRef dictionary);

CF_EXTERN_C_END
