/* CFSet.h: unordered collections that hold equal values once.
 *
 * Callbacks say what the set does with a value that it takes in, drops, compares or describes; each
 * may be NULL (no ownership, pointer equality, the pointer as hash, the address as description).
 * Changes and appliers behave as CFDictionary.h says for dictionaries. */
#pragma once

#include <CoreFoundation/CFAllocator.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFSet* CFSetRef;
typedef struct __CFSet* CFMutableSetRef;

typedef const void* (*CFSetRetainCallBack)(CFAllocatorRef allocator, const void* value);
typedef void (*CFSetReleaseCallBack)(CFAllocatorRef allocator, const void* value);
typedef CFStringRef (*CFSetCopyDescriptionCallBack)(const void* value);
typedef Boolean (*CFSetEqualCallBack)(const void* a, const void* b);
typedef CFHashCode (*CFSetHashCallBack)(const void* value);
typedef void (*CFSetApplierFunction)(const void* value, void* context);

typedef struct CFSetCallBacks {
    CFIndex version; /**< Always 0. */
    CFSetRetainCallBack retain;
    CFSetReleaseCallBack release;
    CFSetCopyDescriptionCallBack copyDescription;
    CFSetEqualCallBack equal;
    CFSetHashCallBack hash;
} CFSetCallBacks;

/** Values are CF objects, retained while they are in the set. */
CF_EXPORT const CFSetCallBacks kCFTypeSetCallBacks;
/** Values are strings, of which the set keeps immutable copies. */
CF_EXPORT const CFSetCallBacks kCFCopyStringSetCallBacks;

CF_EXPORT CFTypeID CFSetGetTypeID(void);

/** An immutable set of `count` values; of equal values the first one stays. NULL `callBacks` are
 *  all-NULL ones. NULL when `count` is negative, or positive with NULL `values`, or memory runs
 *  out. */
CF_EXPORT CFSetRef CFSetCreate(CFAllocatorRef allocator, const void** values, CFIndex count,
                               const CFSetCallBacks* callBacks);
/** An immutable set of the same values and callbacks. */
CF_EXPORT CFSetRef CFSetCreateCopy(CFAllocatorRef allocator, CFSetRef set);
/** An empty mutable set. `capacity` is a hint at how many values it will hold; more may be put in.
 *  NULL when it is negative. */
CF_EXPORT CFMutableSetRef CFSetCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                             const CFSetCallBacks* callBacks);
/** A mutable set of the same values and callbacks. */
CF_EXPORT CFMutableSetRef CFSetCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                 CFSetRef set);

CF_EXPORT CFIndex CFSetGetCount(CFSetRef set);
/** 1 when an equal value is there, else 0. */
CF_EXPORT CFIndex CFSetGetCountOfValue(CFSetRef set, const void* value);
CF_EXPORT Boolean CFSetContainsValue(CFSetRef set, const void* value);
/** The set's own value that equals `value`, lent; NULL when there is none. */
CF_EXPORT const void* CFSetGetValue(CFSetRef set, const void* value);
/** Whether an equal value is there; the set's own, lent, goes to `actual` unless that is NULL. */
CF_EXPORT Boolean CFSetGetValueIfPresent(CFSetRef set, const void* value, const void** actual);
/** Copies all values, lent, into `values`. */
CF_EXPORT void CFSetGetValues(CFSetRef set, const void** values);
CF_EXPORT void CFSetApplyFunction(CFSetRef set, CFSetApplierFunction applier, void* context);

/** Adds the value unless an equal one is there. */
CF_EXPORT void CFSetAddValue(CFMutableSetRef set, const void* value);
/** Adds the value, in the place of an equal one. */
CF_EXPORT void CFSetSetValue(CFMutableSetRef set, const void* value);
/** Puts the value in the place of an equal one; does nothing otherwise. */
CF_EXPORT void CFSetReplaceValue(CFMutableSetRef set, const void* value);
CF_EXPORT void CFSetRemoveValue(CFMutableSetRef set, const void* value);
CF_EXPORT void CFSetRemoveAllValues(CFMutableSetRef set);

CF_EXTERN_C_END
