// CFStringEncode.cpp: bytes out of characters.

#include "CFStringEncodingTable.h"
#include "CFStringICU.h"
#include "CFStringInternal.h"

#include <unicode/ucnv.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <bit>
#include <cstdio>

namespace cf {

namespace {

// Takes whole characters as long as there is room for them.
class ByteSink {
public:
    ByteSink(uint8_t* buffer, size_t capacity) : buffer_(buffer), capacity_(capacity) {}

    // `count` bytes that stand for the next `units` units; false when they do not fit any more.
    bool put(const uint8_t* bytes, size_t count, CFIndex units) {
        if (buffer_) {
            if (count > capacity_ - used_)
                return false;
            std::copy_n(bytes, count, buffer_ + used_);
        }
        used_ += count;
        converted_ += units;
        return true;
    }
    bool putByte(uint8_t byte, CFIndex units) { return put(&byte, 1, units); }

    size_t used() const { return used_; }
    CFIndex converted() const { return converted_; }

private:
    uint8_t* buffer_; // nullptr: bytes are only counted.
    size_t capacity_;
    size_t used_ = 0;
    CFIndex converted_ = 0;
};

// What stands for characters that the encoding lacks.
struct Loss {
    uint8_t byte; // 0: nothing does.

    bool put(ByteSink& sink, CFIndex units) const { return byte != 0 && sink.putByte(byte, units); }
};

struct Character {
    UTF32Char value;
    CFIndex units;

    bool isLoneSurrogate() const { return U_IS_SURROGATE(value); }
};

Character characterAt(const Text& text, CFIndex index) {
    const UniChar first = text[index];
    if (U16_IS_LEAD(first) && index + 1 < text.length() && U16_IS_TRAIL(text[index + 1]))
        return {CFStringGetLongCharacterForSurrogatePair(first, text[index + 1]), 2};
    return {first, 1};
}

// Writes one character after the other by `write(character, sink)`, which answers false for one
// that the encoding lacks, until the sink is full or a character is lost.
template <typename Write>
void encodeEach(const Text& text, ByteSink& sink, Loss loss, Write write) {
    for (CFIndex i = 0; i < text.length();) {
        const Character character = characterAt(text, i);
        uint8_t bytes[8];
        const size_t count = write(character.value, bytes);
        const bool isPut =
            count > 0 ? sink.put(bytes, count, character.units) : loss.put(sink, character.units);
        if (!isPut)
            return;
        i += character.units;
    }
}

size_t writeUTF8(UTF32Char character, uint8_t* bytes) {
    if (U_IS_SURROGATE(character))
        return 0;
    size_t count = 0;
    U8_APPEND_UNSAFE(bytes, count, character);
    return count;
}

void writeUnit(uint32_t value, uint8_t* bytes, size_t size, std::endian order) {
    for (size_t i = 0; i < size; ++i)
        bytes[order == std::endian::little ? i : size - 1 - i] =
            static_cast<uint8_t>(value >> (8 * i));
}

size_t writeUTF16(UTF32Char character, uint8_t* bytes, std::endian order) {
    UniChar units[2];
    const bool isPair = CFStringGetSurrogatePairForLongCharacter(character, units) != 0;
    writeUnit(units[0], bytes, 2, order);
    if (isPair)
        writeUnit(units[1], bytes + 2, 2, order);
    return isPair ? 4 : 2;
}

size_t writeUTF32(UTF32Char character, uint8_t* bytes, std::endian order) {
    if (U_IS_SURROGATE(character))
        return 0;
    writeUnit(character, bytes, 4, order);
    return 4;
}

size_t writeHighHalf(UTF32Char character, uint8_t* bytes, const HighHalf& high) {
    if (character >= 0x80) {
        const auto found = std::ranges::find(high, character);
        if (found == high.end() || character == 0xFFFD)
            return 0;
        character = static_cast<UTF32Char>(0x80 + (found - high.begin()));
    }
    *bytes = static_cast<uint8_t>(character);
    return 1;
}

size_t writeBelow(UTF32Char limit, UTF32Char character, uint8_t* bytes) {
    *bytes = static_cast<uint8_t>(character);
    return character < limit ? 1 : 0;
}

// Octal escapes below U+0100, as C has them, hexadecimal ones for each unit above.
void encodeNonLossyASCII(const Text& text, ByteSink& sink) {
    for (CFIndex i = 0; i < text.length(); ++i) {
        const UniChar unit = text[i];
        char escape[8] = {static_cast<char>(unit), 0};
        int length = 1;
        if (unit == '\\')
            length = std::snprintf(escape, sizeof escape, "\\\\");
        else if (unit >= 0x100)
            length = std::snprintf(escape, sizeof escape, "\\u%04x", unsigned{unit});
        else if (unit >= 0x80)
            length = std::snprintf(escape, sizeof escape, "\\%03o", unsigned{unit});
        if (!sink.put(reinterpret_cast<const uint8_t*>(escape), static_cast<size_t>(length), 1))
            return;
    }
}

// Hands over converted bytes character by character; `offsets` tell at which unit the character of
// a byte begins. Bytes of none (a shift back at the end) belong to the one before.
void putConverted(const char* bytes, const int32_t* offsets, ptrdiff_t count, CFIndex consumed,
                  ByteSink& sink) {
    const auto* const data = reinterpret_cast<const uint8_t*>(bytes);
    CFIndex unit = 0;
    for (ptrdiff_t i = 0; i < count;) {
        ptrdiff_t next = i + 1;
        while (next < count && offsets[next] <= offsets[i])
            ++next;
        const CFIndex end = next < count ? offsets[next] : consumed;
        if (!sink.put(data + i, static_cast<size_t>(next - i), end - unit))
            return;
        unit = end;
        i = next;
    }
}

// The loss byte is given to the converter as a character, since it may have to shift for it.
void setLoss(UConverter* converter, Loss loss, UErrorCode& status) {
    const auto substitute = static_cast<char16_t>(loss.byte);
    if (loss.byte != 0)
        ucnv_setSubstString(converter, &substitute, 1, &status);
    ucnv_setFromUCallBack(
        converter, loss.byte != 0 ? UCNV_FROM_U_CALLBACK_SUBSTITUTE : UCNV_FROM_U_CALLBACK_STOP,
        nullptr, nullptr, nullptr, &status);
}

// How many units at the end of what was read the converter has stopped at.
CFIndex lostUnits(UConverter* converter) {
    char16_t units[16];
    auto count = static_cast<int8_t>(std::size(units));
    UErrorCode status = U_ZERO_ERROR;
    ucnv_getInvalidUChars(converter, units, &count, &status);
    return U_SUCCESS(status) ? count : 0;
}

// In one piece, since at the end of a full buffer the converter keeps bytes of characters that it
// has read: nothing could tell then how far the written ones reach.
void encodeByConverter(const Text& text, const EncodingRow& row, ByteSink& sink, Loss loss) {
    const auto converter = openConverter(row.converter);
    const WideText units(text);
    const auto capacity = (static_cast<size_t>(text.length()) + 2) * row.bytesPerUnit;
    Scratch<char, 512> bytes;
    Scratch<int32_t, 512> offsets;
    if (!converter || !units || !bytes.reserve(capacity) || !offsets.reserve(capacity))
        return;

    UErrorCode status = U_ZERO_ERROR;
    setLoss(converter.get(), loss, status);
    const char16_t* source = units.utf16();
    char* target = bytes.data();
    ucnv_fromUnicode(converter.get(), &target, target + capacity, &source, source + units.length(),
                     offsets.data(), true, &status);
    CFIndex consumed = source - units.utf16();
    if (U_FAILURE(status))
        consumed -= lostUnits(converter.get());
    putConverted(bytes.data(), offsets.data(), target - bytes.data(), consumed, sink);
}

std::endian orderOf(CFStringEncoding encoding) {
    switch (encoding) {
    case kCFStringEncodingUTF16BE:
    case kCFStringEncodingUTF32BE:
        return std::endian::big;
    case kCFStringEncodingUTF16LE:
    case kCFStringEncodingUTF32LE:
        return std::endian::little;
    default:
        return std::endian::native;
    }
}

void encodeNarrowASCII(const Text& text, ByteSink& sink, size_t room) {
    const size_t count = std::min(static_cast<size_t>(text.length()), room);
    sink.put(text.narrow(), count, static_cast<CFIndex>(count));
}

void encodeText(const Text& text, CFStringEncoding encoding, ByteSink& sink, Loss loss) {
    const std::endian order = orderOf(encoding);
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return encodeEach(text, sink, loss, writeUTF8);
    case kCFStringEncodingASCII:
        return encodeEach(text, sink, loss, [](UTF32Char character, uint8_t* bytes) {
            return writeBelow(0x80, character, bytes);
        });
    case kCFStringEncodingISOLatin1:
        return encodeEach(text, sink, loss, [](UTF32Char character, uint8_t* bytes) {
            return writeBelow(0x100, character, bytes);
        });
    case kCFStringEncodingUTF16:
    case kCFStringEncodingUTF16BE:
    case kCFStringEncodingUTF16LE:
        return encodeEach(text, sink, loss, [order](UTF32Char character, uint8_t* bytes) {
            return writeUTF16(character, bytes, order);
        });
    case kCFStringEncodingUTF32:
    case kCFStringEncodingUTF32BE:
    case kCFStringEncodingUTF32LE:
        return encodeEach(text, sink, loss, [order](UTF32Char character, uint8_t* bytes) {
            return writeUTF32(character, bytes, order);
        });
    case kCFStringEncodingMacRoman:
        return encodeEach(text, sink, loss, [](UTF32Char character, uint8_t* bytes) {
            return writeHighHalf(character, bytes, kMacRomanHighHalf);
        });
    case kCFStringEncodingNextStepLatin:
        return encodeEach(text, sink, loss, [](UTF32Char character, uint8_t* bytes) {
            return writeHighHalf(character, bytes, kNextStepHighHalf);
        });
    case kCFStringEncodingNonLossyASCII:
        return encodeNonLossyASCII(text, sink);
    default:
        if (const EncodingRow* const row = findEncoding(encoding))
            encodeByConverter(text, *row, sink, loss);
    }
}

// The mark goes into the bytes, but it stands for no unit of the string.
bool putByteOrderMark(CFStringEncoding encoding, ByteSink& sink) {
    const size_t size = encoding == kCFStringEncodingUTF16   ? 2
                        : encoding == kCFStringEncodingUTF32 ? 4
                                                             : 0;
    uint8_t bytes[4];
    writeUnit(0xFEFF, bytes, size, std::endian::native);
    return sink.put(bytes, size, 0);
}

} // namespace

EncodingResult encode(const Text& text, CFStringEncoding encoding, uint8_t lossByte,
                      ByteOrderMark mark, uint8_t* buffer, size_t capacity) {
    ByteSink sink(buffer, capacity);
    if (mark == ByteOrderMark::Honour && !putByteOrderMark(encoding, sink))
        return {0, 0};
    if (text.narrow() && extendsASCII(encoding) &&
        isASCII(text.narrow(), static_cast<size_t>(text.length())))
        encodeNarrowASCII(text, sink, buffer ? capacity : SIZE_MAX);
    else
        encodeText(text, encoding, sink, {lossByte});
    return {sink.converted(), sink.used()};
}

} // namespace cf
