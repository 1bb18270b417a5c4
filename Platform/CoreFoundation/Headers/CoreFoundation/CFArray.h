/* CFArray.h: ordered collections of pointer-sized values.
 *
 * Positions count from 0. An index or range outside the array is a caller's mistake: it is logged,
 * a getter then answers NULL, 0 or kCFNotFound, and a change is not made. A change to an immutable
 * array is refused likewise. When memory runs out a change is not made, and logged.
 *
 * Callbacks say what the array does with a value that it takes in, drops, compares or describes;
 * each may be NULL (no ownership, pointer equality, the address as description). They must not
 * change the array that calls them. */
#pragma once

#include <CoreFoundation/CFAllocator.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFArray* CFArrayRef;
typedef struct __CFArray* CFMutableArrayRef;

typedef const void* (*CFArrayRetainCallBack)(CFAllocatorRef allocator, const void* value);
typedef void (*CFArrayReleaseCallBack)(CFAllocatorRef allocator, const void* value);
typedef CFStringRef (*CFArrayCopyDescriptionCallBack)(const void* value);
typedef Boolean (*CFArrayEqualCallBack)(const void* a, const void* b);
typedef void (*CFArrayApplierFunction)(const void* value, void* context);

typedef struct CFArrayCallBacks {
    CFIndex version; /**< Always 0. */
    CFArrayRetainCallBack retain;
    CFArrayReleaseCallBack release;
    CFArrayCopyDescriptionCallBack copyDescription;
    CFArrayEqualCallBack equal;
} CFArrayCallBacks;

/** Values are CF objects, retained while they are in the array. */
CF_EXPORT const CFArrayCallBacks kCFTypeArrayCallBacks;

CF_EXPORT CFTypeID CFArrayGetTypeID(void);

/** An immutable array of `count` values copied from `values`. NULL `callBacks` are all-NULL ones.
 *  NULL when `count` is negative, or positive with NULL `values`, or memory runs out. */
CF_EXPORT CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void** values, CFIndex count,
                                   const CFArrayCallBacks* callBacks);
/** An immutable array of the same values and callbacks. */
CF_EXPORT CFArrayRef CFArrayCreateCopy(CFAllocatorRef allocator, CFArrayRef array);
/** An empty mutable array. `capacity` is a hint at how many values it will hold; more may be put
 *  in. NULL when it is negative. */
CF_EXPORT CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFArrayCallBacks* callBacks);
/** A mutable array of the same values and callbacks; `capacity` as for CFArrayCreateMutable. */
CF_EXPORT CFMutableArrayRef CFArrayCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                     CFArrayRef array);

CF_EXPORT CFIndex CFArrayGetCount(CFArrayRef array);
/** How often `value` occurs in `range`, by the array's equality. */
CF_EXPORT CFIndex CFArrayGetCountOfValue(CFArrayRef array, CFRange range, const void* value);
CF_EXPORT Boolean CFArrayContainsValue(CFArrayRef array, CFRange range, const void* value);
/** The value at `index`, lent. */
CF_EXPORT const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
/** Copies the values of `range`, lent, into `values`. */
CF_EXPORT void CFArrayGetValues(CFArrayRef array, CFRange range, const void** values);
/** Calls `applier` for each value of `range` in turn. It may change the array: positions that no
 *  longer exist are then left out. */
CF_EXPORT void CFArrayApplyFunction(CFArrayRef array, CFRange range, CFArrayApplierFunction applier,
                                    void* context);
/** The first (last) position in `range` of a value equal to `value`, or kCFNotFound. */
CF_EXPORT CFIndex CFArrayGetFirstIndexOfValue(CFArrayRef array, CFRange range, const void* value);
CF_EXPORT CFIndex CFArrayGetLastIndexOfValue(CFArrayRef array, CFRange range, const void* value);
/** Searches a sorted `range` by halving: the position of a value that compares equal to `value`, or
 *  else the position at which to insert it, which may be the range's end. */
CF_EXPORT CFIndex CFArrayBSearchValues(CFArrayRef array, CFRange range, const void* value,
                                       CFComparatorFunction comparator, void* context);

CF_EXPORT void CFArrayAppendValue(CFMutableArrayRef array, const void* value);
/** Inserts before the value at `index`, which may be the count. */
CF_EXPORT void CFArrayInsertValueAtIndex(CFMutableArrayRef array, CFIndex index, const void* value);
/** Replaces the value at `index`; at the count it appends. */
CF_EXPORT void CFArraySetValueAtIndex(CFMutableArrayRef array, CFIndex index, const void* value);
CF_EXPORT void CFArrayRemoveValueAtIndex(CFMutableArrayRef array, CFIndex index);
CF_EXPORT void CFArrayRemoveAllValues(CFMutableArrayRef array);
/** Puts `newCount` values in the place of those in `range`. */
CF_EXPORT void CFArrayReplaceValues(CFMutableArrayRef array, CFRange range, const void** newValues,
                                    CFIndex newCount);
CF_EXPORT void CFArrayExchangeValuesAtIndices(CFMutableArrayRef array, CFIndex index1,
                                              CFIndex index2);
/** Sorts the values of `range`, keeping the order of equal ones. A comparator that contradicts
 *  itself gives some order of the same values. */
CF_EXPORT void CFArraySortValues(CFMutableArrayRef array, CFRange range,
                                 CFComparatorFunction comparator, void* context);
/** Appends the values that `otherRange` covers in `otherArray`. */
CF_EXPORT void CFArrayAppendArray(CFMutableArrayRef array, CFArrayRef otherArray,
                                  CFRange otherRange);

CF_EXTERN_C_END
