/* CFNumber.h: numbers and truth values as objects.
 *
 * A number keeps its integer or floating-point value exactly; numbers of equal value are equal
 * objects, whatever type they were made from. */
#pragma once

#include <CoreFoundation/CFAllocator.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFNumber* CFNumberRef;

/** The two instances; they ignore retain and release. */
CF_EXPORT const CFBooleanRef kCFBooleanTrue;
CF_EXPORT const CFBooleanRef kCFBooleanFalse;

CF_EXPORT CFTypeID CFBooleanGetTypeID(void);
/** False for NULL. */
CF_EXPORT Boolean CFBooleanGetValue(CFBooleanRef boolean);

/** The type of the value behind a `valuePtr`. */
CF_ENUM(CFIndex, CFNumberType) {
    kCFNumberSInt8Type = 1,
    kCFNumberSInt16Type = 2,
    kCFNumberSInt32Type = 3,
    kCFNumberSInt64Type = 4,
    kCFNumberFloat32Type = 5,
    kCFNumberFloat64Type = 6,
    kCFNumberCharType = 7,
    kCFNumberShortType = 8,
    kCFNumberIntType = 9,
    kCFNumberLongType = 10,
    kCFNumberLongLongType = 11,
    kCFNumberFloatType = 12,
    kCFNumberDoubleType = 13,
    kCFNumberCFIndexType = 14,
    kCFNumberNSIntegerType = 15, /**< As wide as CFIndex. */
    kCFNumberCGFloatType = 16,   /**< A 32-bit float here. */
    kCFNumberMaxType = 16
};

CF_EXPORT const CFNumberRef kCFNumberPositiveInfinity;
CF_EXPORT const CFNumberRef kCFNumberNegativeInfinity;
CF_EXPORT const CFNumberRef kCFNumberNaN;

CF_EXPORT CFTypeID CFNumberGetTypeID(void);
/** The number at `valuePtr`, of type `type`. NULL for an unknown type, a NULL pointer, or when
 *  memory runs out. */
CF_EXPORT CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type,
                                     const void* valuePtr);
/** The fixed-width type (SInt8…SInt64, Float32, Float64) that the value is kept in; 0 for NULL. */
CF_EXPORT CFNumberType CFNumberGetType(CFNumberRef number);
/** The size in bytes of that type. */
CF_EXPORT CFIndex CFNumberGetByteSize(CFNumberRef number);
CF_EXPORT Boolean CFNumberIsFloatType(CFNumberRef number);
/** Converts the value into `type` at `valuePtr`; whether nothing was lost. An integer too wide for
 *  an integer type loses its high bits; out of such a type's range a float gives the nearest limit,
 *  and NaN 0. Nothing is written for an unknown type. */
CF_EXPORT Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* valuePtr);
/** Compares the exact values; NaN comes after negative numbers and before all others, and equals
 *  itself. NULL comes first. The context is ignored. */
CF_EXPORT CFComparisonResult CFNumberCompare(CFNumberRef number, CFNumberRef other, void* context);

CF_EXTERN_C_END
