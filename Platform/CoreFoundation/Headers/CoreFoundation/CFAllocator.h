/* CFAllocator.h: the objects that supply memory to all others.
 *
 * Wherever a function takes an allocator, NULL (kCFAllocatorDefault) means the calling thread's
 * default. An object keeps the allocator that made it, and returns its memory there. */
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const void* (*CFAllocatorRetainCallBack)(const void* info);
typedef void (*CFAllocatorReleaseCallBack)(const void* info);
typedef CFStringRef (*CFAllocatorCopyDescriptionCallBack)(const void* info);
typedef void* (*CFAllocatorAllocateCallBack)(CFIndex size, CFOptionFlags hint, void* info);
typedef void* (*CFAllocatorReallocateCallBack)(void* memory, CFIndex newSize, CFOptionFlags hint,
                                               void* info);
typedef void (*CFAllocatorDeallocateCallBack)(void* memory, void* info);
typedef CFIndex (*CFAllocatorPreferredSizeCallBack)(CFIndex size, CFOptionFlags hint, void* info);

/** What an allocator does. Every callback may be NULL: without `allocate` all requests fail,
 *  without `reallocate` blocks cannot change size, without `deallocate` they are never given back.
 */
typedef struct CFAllocatorContext {
    CFIndex version; /**< Always 0. */
    void* info;      /**< Handed to every callback. */
    CFAllocatorRetainCallBack retain;
    CFAllocatorReleaseCallBack release;
    CFAllocatorCopyDescriptionCallBack copyDescription;
    CFAllocatorAllocateCallBack allocate;
    CFAllocatorReallocateCallBack reallocate;
    CFAllocatorDeallocateCallBack deallocate;
    CFAllocatorPreferredSizeCallBack preferredSize;
} CFAllocatorContext;

/** NULL: the calling thread's default allocator. */
CF_EXPORT const CFAllocatorRef kCFAllocatorDefault;
/** The system's general allocator, the default of every thread that has not set another. */
CF_EXPORT const CFAllocatorRef kCFAllocatorSystemDefault;
/** malloc, realloc and free. */
CF_EXPORT const CFAllocatorRef kCFAllocatorMalloc;
/** The same here, where malloc has no zones. */
CF_EXPORT const CFAllocatorRef kCFAllocatorMallocZone;
/** Never has memory and frees nothing: the deallocator of bytes that are not to be freed. */
CF_EXPORT const CFAllocatorRef kCFAllocatorNull;
/** Only for CFAllocatorCreate: the new allocator is held in memory of its own making. */
CF_EXPORT const CFAllocatorRef kCFAllocatorUseContext;

CF_EXPORT CFTypeID CFAllocatorGetTypeID(void);
/** A new allocator that works through the callbacks in `context`, which is copied; `info` is
 *  retained by its callback. NULL for a NULL context or when `allocator` has no memory for it. */
CF_EXPORT CFAllocatorRef CFAllocatorCreate(CFAllocatorRef allocator,
                                           const CFAllocatorContext* context);

/** Makes `allocator` the calling thread's default, and keeps a reference to it while it is. NULL
 *  and kCFAllocatorUseContext change nothing. */
CF_EXPORT void CFAllocatorSetDefault(CFAllocatorRef allocator);
/** The calling thread's default allocator: never NULL; lent. */
CF_EXPORT CFAllocatorRef CFAllocatorGetDefault(void);

/** `size` bytes aligned for any scalar, or NULL: also when `size` is 0 or negative. `hint` is
 *  passed on to the callback. */
CF_EXPORT void* CFAllocatorAllocate(CFAllocatorRef allocator, CFIndex size, CFOptionFlags hint);
/** Changes a block's size, perhaps moving it: its new address, or NULL, which leaves the block as
 *  it was. A NULL block is allocated; size 0 frees it and answers NULL. */
CF_EXPORT void* CFAllocatorReallocate(CFAllocatorRef allocator, void* memory, CFIndex newSize,
                                      CFOptionFlags hint);
/** Gives a block back to the allocator that it came from. */
CF_EXPORT void CFAllocatorDeallocate(CFAllocatorRef allocator, void* memory);
/** The size of block that a request for `size` bytes would really use: at least `size`; 0 for a
 *  size that is not positive. */
CF_EXPORT CFIndex CFAllocatorGetPreferredSizeForSize(CFAllocatorRef allocator, CFIndex size,
                                                     CFOptionFlags hint);
/** Copies the allocator's context into `context`; only version 0 is known. */
CF_EXPORT void CFAllocatorGetContext(CFAllocatorRef allocator, CFAllocatorContext* context);

CF_EXTERN_C_END
