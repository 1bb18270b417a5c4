/* CFByteOrder.h: numbers in the byte order of files and networks. */
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef CFIndex CFByteOrder;
enum { CFByteOrderUnknown = 0, CFByteOrderLittleEndian = 1, CFByteOrderBigEndian = 2 };

/** The host's order. */
CF_INLINE CFByteOrder CFByteOrderGetCurrent(void) {
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return CFByteOrderLittleEndian;
#else
    return CFByteOrderBigEndian;
#endif
}

/* Turns the bytes around. */
CF_INLINE uint16_t CFSwapInt16(uint16_t value) {
    return __builtin_bswap16(value);
}
CF_INLINE uint32_t CFSwapInt32(uint32_t value) {
    return __builtin_bswap32(value);
}
CF_INLINE uint64_t CFSwapInt64(uint64_t value) {
    return __builtin_bswap64(value);
}

/* From the named order to the host's, and back. */
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#define _CF_SWAP_BIG(bits, value) CFSwapInt##bits(value)
#define _CF_SWAP_LITTLE(bits, value) (value)
#else
#define _CF_SWAP_BIG(bits, value) (value)
#define _CF_SWAP_LITTLE(bits, value) CFSwapInt##bits(value)
#endif

CF_INLINE uint16_t CFSwapInt16BigToHost(uint16_t value) {
    return _CF_SWAP_BIG(16, value);
}
CF_INLINE uint32_t CFSwapInt32BigToHost(uint32_t value) {
    return _CF_SWAP_BIG(32, value);
}
CF_INLINE uint64_t CFSwapInt64BigToHost(uint64_t value) {
    return _CF_SWAP_BIG(64, value);
}
CF_INLINE uint16_t CFSwapInt16HostToBig(uint16_t value) {
    return _CF_SWAP_BIG(16, value);
}
CF_INLINE uint32_t CFSwapInt32HostToBig(uint32_t value) {
    return _CF_SWAP_BIG(32, value);
}
CF_INLINE uint64_t CFSwapInt64HostToBig(uint64_t value) {
    return _CF_SWAP_BIG(64, value);
}
CF_INLINE uint16_t CFSwapInt16LittleToHost(uint16_t value) {
    return _CF_SWAP_LITTLE(16, value);
}
CF_INLINE uint32_t CFSwapInt32LittleToHost(uint32_t value) {
    return _CF_SWAP_LITTLE(32, value);
}
CF_INLINE uint64_t CFSwapInt64LittleToHost(uint64_t value) {
    return _CF_SWAP_LITTLE(64, value);
}
CF_INLINE uint16_t CFSwapInt16HostToLittle(uint16_t value) {
    return _CF_SWAP_LITTLE(16, value);
}
CF_INLINE uint32_t CFSwapInt32HostToLittle(uint32_t value) {
    return _CF_SWAP_LITTLE(32, value);
}
CF_INLINE uint64_t CFSwapInt64HostToLittle(uint64_t value) {
    return _CF_SWAP_LITTLE(64, value);
}

/* Floating-point numbers in big-endian order: as integers, since not every pattern of bits survives
 * being handled as a number. */
typedef struct {
    uint32_t v;
} CFSwappedFloat32;
typedef struct {
    uint64_t v;
} CFSwappedFloat64;

CF_INLINE CFSwappedFloat32 CFConvertFloatHostToSwapped(float value) {
    CFSwappedFloat32 result;
    __builtin_memcpy(&result.v, &value, sizeof value);
    result.v = CFSwapInt32HostToBig(result.v);
    return result;
}
CF_INLINE float CFConvertFloatSwappedToHost(CFSwappedFloat32 swapped) {
    float value;
    swapped.v = CFSwapInt32BigToHost(swapped.v);
    __builtin_memcpy(&value, &swapped.v, sizeof value);
    return value;
}
CF_INLINE CFSwappedFloat64 CFConvertDoubleHostToSwapped(double value) {
    CFSwappedFloat64 result;
    __builtin_memcpy(&result.v, &value, sizeof value);
    result.v = CFSwapInt64HostToBig(result.v);
    return result;
}
CF_INLINE double CFConvertDoubleSwappedToHost(CFSwappedFloat64 swapped) {
    double value;
    swapped.v = CFSwapInt64BigToHost(swapped.v);
    __builtin_memcpy(&value, &swapped.v, sizeof value);
    return value;
}
CF_INLINE CFSwappedFloat32 CFConvertFloat32HostToSwapped(Float32 value) {
    return CFConvertFloatHostToSwapped(value);
}
CF_INLINE Float32 CFConvertFloat32SwappedToHost(CFSwappedFloat32 swapped) {
    return CFConvertFloatSwappedToHost(swapped);
}
CF_INLINE CFSwappedFloat64 CFConvertFloat64HostToSwapped(Float64 value) {
    return CFConvertDoubleHostToSwapped(value);
}
CF_INLINE Float64 CFConvertFloat64SwappedToHost(CFSwappedFloat64 swapped) {
    return CFConvertDoubleSwappedToHost(swapped);
}

CF_EXTERN_C_END
