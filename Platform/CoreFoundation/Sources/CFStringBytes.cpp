// CFStringBytes.cpp: strings handed out as bytes, C strings, data and file names.

#include <CoreFoundation/CFRef.h>

#include "CFStringEncodingTable.h"
#include "CFStringInternal.h"

#include <algorithm>

namespace {

cf::ByteOrderMark markFor(Boolean isExternalRepresentation) {
    return isExternalRepresentation ? cf::ByteOrderMark::Honour : cf::ByteOrderMark::Ignore;
}

// Writes all of `string`: how many bytes it took, or -1.
CFIndex writeWhole(CFStringRef string, CFStringEncoding encoding, uint8_t* buffer,
                   CFIndex capacity) {
    const auto [converted, used] =
        cf::encode(cf::Text(string), encoding, 0, cf::ByteOrderMark::Ignore, buffer,
                   static_cast<size_t>(capacity));
    return converted == string->length ? static_cast<CFIndex>(used) : -1;
}

} // namespace

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding) {
    if (!buffer || bufferSize <= 0)
        return false;
    *buffer = 0;
    if (!cf::isString(string))
        return false;
    const CFIndex used =
        writeWhole(string, encoding, reinterpret_cast<uint8_t*>(buffer), bufferSize - 1);
    buffer[std::max(used, CFIndex{0})] = 0;
    return used >= 0;
}

Boolean CFStringGetPascalString(CFStringRef string, StringPtr buffer, CFIndex bufferSize,
                                CFStringEncoding encoding) {
    if (!buffer || bufferSize <= 0)
        return false;
    *buffer = 0;
    if (!cf::isString(string))
        return false;
    const CFIndex used =
        writeWhole(string, encoding, buffer + 1, std::min(bufferSize - 1, CFIndex{255}));
    *buffer = static_cast<UInt8>(std::max(used, CFIndex{0}));
    return used >= 0;
}

CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                         UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                         CFIndex maxBufferSize, CFIndex* usedBufferSize) {
    if (usedBufferSize)
        *usedBufferSize = 0;
    if (!cf::isString(string) || !CF_RANGE_IS_WITHIN(range, string->length) ||
        (buffer && maxBufferSize < 0))
        return 0;
    const auto result =
        cf::encode(cf::Text(string).part(range.location, range.length), encoding, lossByte,
                   markFor(isExternalRepresentation), buffer, static_cast<size_t>(maxBufferSize));
    if (usedBufferSize)
        *usedBufferSize = static_cast<CFIndex>(result.used);
    return result.converted;
}

CFDataRef CFStringCreateExternalRepresentation(CFAllocatorRef allocator, CFStringRef string,
                                               CFStringEncoding encoding, UInt8 lossByte) {
    if (!cf::isString(string) || !cf::findEncoding(encoding))
        return nullptr;
    const cf::Text text(string);
    const auto size = cf::encode(text, encoding, lossByte, cf::ByteOrderMark::Honour, nullptr, 0);
    if (size.converted != text.length())
        return nullptr;
    const auto used = static_cast<CFIndex>(size.used);
    auto data = cf::adopt(CFDataCreateMutable(allocator, used));
    CFDataSetLength(data.get(), used);
    if (!data || CFDataGetLength(data.get()) != used)
        return nullptr;
    cf::encode(text, encoding, lossByte, cf::ByteOrderMark::Honour,
               CFDataGetMutableBytePtr(data.get()), size.used);
    return data.release();
}

CFStringRef CFStringCreateFromExternalRepresentation(CFAllocatorRef allocator, CFDataRef data,
                                                     CFStringEncoding encoding) {
    if (!data)
        return nullptr;
    return CFStringCreateWithBytes(allocator, CFDataGetBytePtr(data), CFDataGetLength(data),
                                   encoding, true);
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
    const cf::EncodingRow* const row = cf::findEncoding(encoding);
    const CFIndex bytesPerUnit = row ? row->bytesPerUnit : 1;
    return length < 0 || length > PTRDIFF_MAX / bytesPerUnit ? CFIndex{kCFNotFound}
                                                             : length * bytesPerUnit;
}

Boolean CFStringGetFileSystemRepresentation(CFStringRef string, char* buffer,
                                            CFIndex maxBufferSize) {
    if (!CFStringGetCString(string, buffer, maxBufferSize, kCFStringEncodingUTF8))
        return false;
    // A NUL within would cut the name, and so name another file.
    const cf::Text text(string);
    for (CFIndex i = 0; i < text.length(); ++i) {
        if (text[i] == 0) {
            *buffer = 0;
            return false;
        }
    }
    return true;
}

CFIndex CFStringGetMaximumSizeOfFileSystemRepresentation(CFStringRef string) {
    return cf::isString(string)
               ? CFStringGetMaximumSizeForEncoding(string->length, kCFStringEncodingUTF8) + 1
               : 0;
}

CFStringRef CFStringCreateWithFileSystemRepresentation(CFAllocatorRef allocator, const char* name) {
    return CFStringCreateWithCString(allocator, name, kCFStringEncodingUTF8);
}
