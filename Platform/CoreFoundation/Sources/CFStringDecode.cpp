// CFStringDecode.cpp: characters out of bytes.

#include "CFStringEncodingTable.h"
#include "CFStringICU.h"
#include "CFStringInternal.h"

#include <unicode/ucnv.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <bit>

namespace cf {

namespace {

struct Bytes {
    const uint8_t* data;
    size_t count;

    bool startsWith(std::initializer_list<uint8_t> mark) const {
        return count >= mark.size() && std::equal(mark.begin(), mark.end(), data);
    }
    void skip(size_t length) {
        data += length;
        count -= length;
    }
};

bool decodeASCII(Bytes bytes, TextBuilder& result) {
    if (!isASCII(bytes.data, bytes.count))
        return false;
    result.appendASCII(reinterpret_cast<const char*>(bytes.data), bytes.count);
    return true;
}

bool decodeHighHalf(Bytes bytes, const HighHalf& high, TextBuilder& result) {
    UniChar* const units = result.extend(static_cast<CFIndex>(bytes.count));
    for (size_t i = 0; units && i < bytes.count; ++i) {
        const uint8_t byte = bytes.data[i];
        units[i] = byte < 0x80 ? UniChar{byte} : static_cast<UniChar>(high[byte - 0x80u]);
        if (units[i] == 0xFFFD)
            return false;
    }
    return true;
}

// A character takes at least as many bytes as units, so room for every byte is room enough.
bool decodeUTF8(Bytes bytes, TextBuilder& result) {
    const CFIndex start = result.length();
    UniChar* const units = result.extend(static_cast<CFIndex>(bytes.count));
    if (!units)
        return false;
    size_t used = 0;
    for (size_t i = 0; i < bytes.count;) {
        UChar32 character;
        U8_NEXT(bytes.data, i, bytes.count, character);
        if (character < 0)
            return false;
        used += CFStringGetSurrogatePairForLongCharacter(static_cast<UTF32Char>(character),
                                                         units + used)
                    ? 2
                    : 1;
    }
    result.truncate(start + static_cast<CFIndex>(used));
    return true;
}

uint32_t readUnit(const uint8_t* bytes, size_t size, std::endian order) {
    uint32_t value = 0;
    for (size_t i = 0; i < size; ++i)
        value = value << 8 | bytes[order == std::endian::big ? i : size - 1 - i];
    return value;
}

// The order in which the bytes stand; a mark that tells is left out.
std::endian takeOrder(Bytes& bytes, CFStringEncoding encoding, size_t unitSize,
                      ByteOrderMark mark) {
    const bool isBig = encoding == kCFStringEncodingUTF16BE || encoding == kCFStringEncodingUTF32BE;
    const bool isFree = encoding == kCFStringEncodingUTF16 || encoding == kCFStringEncodingUTF32;
    const std::endian stated = isFree  ? std::endian::native
                               : isBig ? std::endian::big
                                       : std::endian::little;
    if (mark == ByteOrderMark::Ignore || bytes.count < unitSize)
        return stated;
    for (const auto order : {std::endian::big, std::endian::little})
        if ((isFree || order == stated) && readUnit(bytes.data, unitSize, order) == 0xFEFF) {
            bytes.skip(unitSize);
            return order;
        }
    return stated;
}

bool decodeUTF16(Bytes bytes, CFStringEncoding encoding, ByteOrderMark mark, TextBuilder& result) {
    if (bytes.count % 2 != 0)
        return false;
    const std::endian order = takeOrder(bytes, encoding, 2, mark);
    const size_t count = bytes.count / 2;
    UniChar* const units = result.extend(static_cast<CFIndex>(count));
    for (size_t i = 0; units && i < count; ++i)
        units[i] = static_cast<UniChar>(readUnit(bytes.data + 2 * i, 2, order));
    return true;
}

bool decodeUTF32(Bytes bytes, CFStringEncoding encoding, ByteOrderMark mark, TextBuilder& result) {
    if (bytes.count % 4 != 0)
        return false;
    const std::endian order = takeOrder(bytes, encoding, 4, mark);
    for (size_t i = 0; i < bytes.count; i += 4) {
        const uint32_t character = readUnit(bytes.data + i, 4, order);
        if (character > 0x10FFFF || U_IS_SURROGATE(character))
            return false;
        result.appendCodePoint(character);
    }
    return true;
}

// The number of `count` digits in `base` at `digits`, or -1.
int32_t readDigits(const uint8_t* digits, size_t count, int base) {
    int32_t value = 0;
    for (size_t i = 0; i < count; ++i) {
        const uint8_t c = digits[i];
        const int digit = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                 : 99;
        if (digit >= base)
            return -1;
        value = value * base + digit;
    }
    return value;
}

// Takes one escape off `bytes`, which begin with the backslash: its unit, or -1.
int32_t takeEscape(Bytes& bytes) {
    int32_t unit = -1;
    size_t length = 0;
    if (bytes.startsWith({'\\', '\\'})) {
        unit = '\\';
        length = 2;
    } else if (bytes.startsWith({'\\', 'u'}) && bytes.count >= 6) {
        unit = readDigits(bytes.data + 2, 4, 16);
        length = 6;
    } else if (bytes.count >= 4) {
        unit = readDigits(bytes.data + 1, 3, 8);
        length = 4;
    }
    bytes.skip(length);
    return unit > 0xFFFF ? -1 : unit;
}

bool decodeNonLossyASCII(Bytes bytes, TextBuilder& result) {
    while (bytes.count > 0) {
        if (*bytes.data >= 0x80)
            return false;
        int32_t unit = *bytes.data;
        if (unit == '\\')
            unit = takeEscape(bytes);
        else
            bytes.skip(1);
        if (unit < 0)
            return false;
        result.append(static_cast<UniChar>(unit));
    }
    return true;
}

bool decodeByConverter(Bytes bytes, const char* name, TextBuilder& result) {
    const auto converter = openConverter(name);
    if (!converter)
        return false;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                        &status);
    const auto* source = reinterpret_cast<const char*>(bytes.data);
    const char* const end = source + bytes.count;
    char16_t chunk[512];
    do {
        status = U_ZERO_ERROR;
        char16_t* target = chunk;
        ucnv_toUnicode(converter.get(), &target, std::end(chunk), &source, end, nullptr, true,
                       &status);
        result.append(Text(reinterpret_cast<const UniChar*>(chunk), target - chunk));
    } while (status == U_BUFFER_OVERFLOW_ERROR && !result.failed());
    return U_SUCCESS(status);
}

bool decodeBytes(Bytes bytes, CFStringEncoding encoding, ByteOrderMark mark, TextBuilder& result) {
    switch (encoding) {
    case kCFStringEncodingASCII:
        return decodeASCII(bytes, result);
    case kCFStringEncodingISOLatin1:
        result.appendASCII(reinterpret_cast<const char*>(bytes.data), bytes.count);
        return true;
    case kCFStringEncodingUTF8:
        if (mark == ByteOrderMark::Honour && bytes.startsWith({0xEF, 0xBB, 0xBF}))
            bytes.skip(3);
        return decodeUTF8(bytes, result);
    case kCFStringEncodingUTF16:
    case kCFStringEncodingUTF16BE:
    case kCFStringEncodingUTF16LE:
        return decodeUTF16(bytes, encoding, mark, result);
    case kCFStringEncodingUTF32:
    case kCFStringEncodingUTF32BE:
    case kCFStringEncodingUTF32LE:
        return decodeUTF32(bytes, encoding, mark, result);
    case kCFStringEncodingMacRoman:
        return decodeHighHalf(bytes, kMacRomanHighHalf, result);
    case kCFStringEncodingNextStepLatin:
        return decodeHighHalf(bytes, kNextStepHighHalf, result);
    case kCFStringEncodingNonLossyASCII:
        return decodeNonLossyASCII(bytes, result);
    default:
        break;
    }
    const EncodingRow* const row = findEncoding(encoding);
    return row && decodeByConverter(bytes, row->converter, result);
}

} // namespace

bool isASCII(const uint8_t* bytes, size_t count) {
    size_t i = 0;
    for (; i + sizeof(uint64_t) <= count; i += sizeof(uint64_t)) {
        uint64_t block;
        std::memcpy(&block, bytes + i, sizeof block);
        if (block & 0x8080808080808080u)
            return false;
    }
    return std::all_of(bytes + i, bytes + count, [](uint8_t byte) { return byte < 0x80; });
}

bool extendsASCII(CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingUTF8 || encoding == kCFStringEncodingASCII) [[likely]]
        return true;
    const EncodingRow* const row = findEncoding(encoding);
    return row && row->shape == Shape::ASCII;
}

bool decode(const uint8_t* bytes, size_t count, CFStringEncoding encoding, ByteOrderMark mark,
            TextBuilder& result) {
    return decodeBytes({bytes, count}, encoding, mark, result) && !result.failed();
}

} // namespace cf
