// XGNumber.cpp: numbers from values in either byte order.

#include "XGNumber.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

// A type's width in bytes, and the type of this host that is as wide.
struct StoredType {
    std::size_t width;
    CFNumberType type;
};

// By number type less 1. The formats that hold such values come from hosts with a 32-bit long.
constexpr std::array<StoredType, kCFNumberCFIndexType> kStoredTypes = {{
    {1, kCFNumberSInt8Type},
    {2, kCFNumberSInt16Type},
    {4, kCFNumberSInt32Type},
    {8, kCFNumberSInt64Type},
    {4, kCFNumberFloat32Type},
    {8, kCFNumberFloat64Type},
    {1, kCFNumberCharType},
    {2, kCFNumberShortType},
    {4, kCFNumberIntType},
    {4, kCFNumberSInt32Type}, // kCFNumberLongType
    {8, kCFNumberLongLongType},
    {4, kCFNumberFloatType},
    {8, kCFNumberDoubleType},
    {4, kCFNumberSInt32Type}, // kCFNumberCFIndexType
}};
static_assert(kStoredTypes[kCFNumberDoubleType - 1].width == sizeof(double));

} // namespace

CFNumberRef XGNumberCreateWithEndian(CFAllocatorRef allocator, CFNumberType type,
                                     const void* valuePtr, int32_t byteOrder) {
    if (!valuePtr)
        return nullptr;
    if (byteOrder == kXGByteOrderNative)
        return CFNumberCreate(allocator, type, valuePtr);
    if (type < kCFNumberSInt8Type || type > kCFNumberCFIndexType)
        return nullptr;

    const StoredType& stored = kStoredTypes[static_cast<std::size_t>(type) - 1];
    alignas(8) std::array<std::byte, 8> bytes;
    std::reverse_copy(static_cast<const std::byte*>(valuePtr),
                      static_cast<const std::byte*>(valuePtr) + stored.width, bytes.begin());
    return CFNumberCreate(allocator, stored.type, bytes.data());
}
