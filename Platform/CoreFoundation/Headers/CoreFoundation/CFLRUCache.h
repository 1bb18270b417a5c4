/* CFLRUCache.h: a mutable table of bounded size that drops what has not been used for longest.
 *
 * The port's own class. Keys and values are looked after by dictionary callbacks. Every operation
 * but SetCapacity and RemoveAllValues takes constant time. Finding a value or setting it counts as
 * use. A cache belongs to one thread at a time; guard a shared one with a lock. */
#pragma once

#include <CoreFoundation/CFDictionary.h>

CF_EXTERN_C_BEGIN

typedef struct __CFLRUCache* _CFLRUCacheRef;

CF_EXPORT CFTypeID _CFLRUCacheGetTypeID(void);
/** An empty cache of at most `capacity` values. NULL callbacks are all-NULL ones. NULL when
 *  `capacity` is not positive or memory runs out. */
CF_EXPORT _CFLRUCacheRef _CFLRUCacheCreate(CFAllocatorRef allocator, CFIndex capacity,
                                           const CFDictionaryKeyCallBacks* keyCallBacks,
                                           const CFDictionaryValueCallBacks* valueCallBacks);
CF_EXPORT CFIndex _CFLRUCacheGetCount(_CFLRUCacheRef cache);
CF_EXPORT CFIndex _CFLRUCacheGetCapacity(_CFLRUCacheRef cache);
/** Drops the values used longest ago until the rest fits. A capacity that is not positive is
 *  ignored. */
CF_EXPORT void _CFLRUCacheSetCapacity(_CFLRUCacheRef cache, CFIndex capacity);
/** The value of `key`, which becomes the one used last; lent until the next change. NULL when it is
 *  not there. */
CF_EXPORT const void* _CFLRUCacheGetValue(_CFLRUCacheRef cache, const void* key);
/** Whether the key is there; does not count as use. */
CF_EXPORT Boolean _CFLRUCacheContainsKey(_CFLRUCacheRef cache, const void* key);
/** Adds the pair or gives the key a new value, as the one used last; a full cache first drops the
 *  one used longest ago. False, and no change, when memory runs out. */
CF_EXPORT Boolean _CFLRUCacheSetValue(_CFLRUCacheRef cache, const void* key, const void* value);
CF_EXPORT void _CFLRUCacheRemoveValue(_CFLRUCacheRef cache, const void* key);
CF_EXPORT void _CFLRUCacheRemoveAllValues(_CFLRUCacheRef cache);
/** How many calls of _CFLRUCacheGetValue found (did not find) their key. */
CF_EXPORT CFIndex _CFLRUCacheGetHitCount(_CFLRUCacheRef cache);
CF_EXPORT CFIndex _CFLRUCacheGetMissCount(_CFLRUCacheRef cache);

CF_EXTERN_C_END
