/* XGNumber: numbers as objects, made from values that files hold in either byte order. */
#pragma once

#include <CoreFoundation/CFNumber.h>
#include <CoreGraphics/CGBase.h>

CG_BEGIN_DECLS

/** Byte orders, by the places of the bytes of a 32-bit word. */
enum { kXGByteOrderSwapped = 1234, kXGByteOrderNative = 4321 };

/** A number from the value at `valuePtr`, which is in the host's byte order when `byteOrder` is
 * 4321 and otherwise has its bytes reversed. A reversed value's `type` must be 1 to 14; its width
 * is the type's on a 32-bit host, 4 bytes for kCFNumberLongType and kCFNumberCFIndexType, whatever
 * the host. The caller owns the number; NULL for NULL or a type out of range. */
CG_EXPORT CFNumberRef XGNumberCreateWithEndian(CFAllocatorRef allocator, CFNumberType type,
                                               const void* valuePtr, int32_t byteOrder);

CG_END_DECLS
