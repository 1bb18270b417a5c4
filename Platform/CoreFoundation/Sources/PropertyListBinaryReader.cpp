// PropertyListBinaryReader.cpp: lists in the binary format, whose bytes may be anything.
//
// The file is a magic number, the objects, a table of their offsets, and a trailer of 32 bytes that
// says where the table is and how wide its entries are. An object is a marker byte, whose high half
// is its kind and whose low half a size or a count, and its contents; containers refer to their
// parts by index. All numbers are big-endian.

#include <CoreFoundation/CFNumber.h>

#include "PropertyListInternal.h"
#include "StringBytes.h"

#include <bit>
#include <cmath>
#include <memory>
#include <new>

namespace cf::plist {

namespace {

constexpr size_t kMagicSize = 8;
constexpr size_t kTrailerSize = 32;
constexpr uint32_t kIsBeingRead = UINT32_MAX;

// A part of the file that was checked to lie within it.
struct Content {
    const uint8_t* bytes = nullptr;
    size_t count = 0; // Of values, of the kind's own width.
};

class BinaryReader {
public:
    BinaryReader(const uint8_t* bytes, size_t size, const Maker& maker, Problem& problem)
        : bytes_(bytes), size_(size), maker_(maker), problem_(problem) {}

    Value read() {
        if (!readTrailer())
            return nullptr;
        objects_.reset(new (std::nothrow) Value[objectCount_]);
        unfolded_.reset(new (std::nothrow) uint32_t[objectCount_]());
        if (!objects_ || !unfolded_)
            return fail("no memory for %zu objects", objectCount_);
        return readObject(topIndex_, 0);
    }

private:
    __attribute__((format(printf, 2, 3))) Value fail(const char* format, ...) {
        va_list arguments;
        va_start(arguments, format);
        problem_.setWithArguments(kCFPropertyListReadCorruptError, format, arguments);
        va_end(arguments);
        return nullptr;
    }

    uint64_t numberAt(size_t offset, size_t width) const {
        uint64_t value = 0;
        for (size_t i = 0; i < width; ++i)
            value = value << 8 | bytes_[offset + i];
        return value;
    }

    bool readTrailer() {
        if (size_ < kMagicSize + 1 + 1 + kTrailerSize) {
            fail("a binary list of %zu bytes is cut short", size_);
            return false;
        }
        const size_t trailer = size_ - kTrailerSize;
        offsetWidth_ = bytes_[trailer + 6];
        referenceWidth_ = bytes_[trailer + 7];
        const uint64_t count = numberAt(trailer + 8, 8);
        const uint64_t top = numberAt(trailer + 16, 8);
        const uint64_t table = numberAt(trailer + 24, 8);
        const bool hasWidths =
            offsetWidth_ >= 1 && offsetWidth_ <= 8 && referenceWidth_ >= 1 && referenceWidth_ <= 8;
        if (!hasWidths || table <= kMagicSize || table >= trailer || top >= count ||
            count > (trailer - table) / offsetWidth_) {
            fail("the trailer of the binary list is not consistent");
            return false;
        }
        objectCount_ = static_cast<size_t>(count);
        topIndex_ = static_cast<size_t>(top);
        table_ = static_cast<size_t>(table);
        return true;
    }

    // Reads an object once, however often it is referred to.
    Value readObject(uint64_t reference, int depth) {
        if (reference >= objectCount_)
            return fail("object %llu does not exist", static_cast<unsigned long long>(reference));
        const auto index = static_cast<size_t>(reference);
        if (objects_[index])
            return objects_[index];
        if (unfolded_[index] == kIsBeingRead)
            return fail("object %zu contains itself", index);
        if (depth > kMaximumDepth)
            return fail("the list nests deeper than %d levels", kMaximumDepth);
        unfolded_[index] = kIsBeingRead;
        uint32_t unfolded = 1;
        Value value = readNew(index, depth, unfolded);
        unfolded_[index] = unfolded;
        objects_[index] = value;
        return value;
    }

    Value readNew(size_t index, int depth, uint32_t& unfolded) {
        const uint64_t offset = numberAt(table_ + index * offsetWidth_, offsetWidth_);
        if (offset < kMagicSize || offset >= table_)
            return fail("object %zu lies outside the list", index);
        const auto at = static_cast<size_t>(offset);
        const uint8_t low = bytes_[at] & 0x0F;
        switch (bytes_[at] >> 4) {
        case 0x0:
            return readSingle(at, low);
        case 0x1:
            return readInteger(at, low);
        case 0x2:
            return readReal(at, low);
        case 0x3:
            return readDate(at, low);
        case 0x4:
            return readData(at);
        case 0x5:
            return readLetters(at);
        case 0x6:
            return readUnits(at);
        case 0x8:
            return readIdentifier(at, low);
        case 0xA:
            return readArray(at, depth, unfolded);
        case 0xD:
            return readDictionary(at, depth, unfolded);
        default:
            return unknown(at);
        }
    }

    Value unknown(size_t at) {
        return fail("the kind 0x%02x at offset %zu is not a property list's", unsigned{bytes_[at]},
                    at);
    }

    Value readSingle(size_t at, uint8_t low) {
        if (low == 8)
            return retain<CFTypeRef>(kCFBooleanFalse);
        if (low == 9)
            return retain<CFTypeRef>(kCFBooleanTrue);
        return unknown(at);
    }

    // The offset of `count` values of `width` bytes behind the marker, or 0 when they would reach
    // into the table.
    size_t contentAt(size_t start, uint64_t count, size_t width) {
        if (start > table_ || count > (table_ - start) / width) {
            fail("an object at offset %zu reaches outside the list", start);
            return 0;
        }
        return start;
    }

    // The contents of an object that counts its values: in the marker, or in an integer behind it.
    Content countedContent(size_t at, size_t width) {
        uint64_t count = bytes_[at] & 0x0F;
        size_t start = at + 1;
        if (count == 0x0F) {
            const bool isInteger = start < table_ && bytes_[start] >> 4 == 1;
            const unsigned power = isInteger ? bytes_[start] & 0x0Fu : 4;
            if (power > 3 || !contentAt(start + 1, 1, size_t{1} << power)) {
                fail("the count of the object at offset %zu is not a number", at);
                return {};
            }
            count = numberAt(start + 1, size_t{1} << power);
            start += 1 + (size_t{1} << power);
        }
        const size_t content = contentAt(start, count, width);
        if (!content)
            return {};
        return {bytes_ + content, static_cast<size_t>(count)};
    }

    // Numbers of up to four bytes are unsigned; wider ones are signed.
    Value readInteger(size_t at, uint8_t power) {
        const size_t width = size_t{1} << power;
        if (power > 4 || !contentAt(at + 1, 1, width))
            return fail("the integer at offset %zu is not well-formed", at);
        if (width <= 8)
            return maker_.integer(static_cast<int64_t>(numberAt(at + 1, width)));
        const uint64_t high = numberAt(at + 1, 8);
        const uint64_t lowHalf = numberAt(at + 9, 8);
        const bool fits = high == (lowHalf >> 63 ? UINT64_MAX : 0);
        if (fits)
            return maker_.integer(static_cast<int64_t>(lowHalf));
        // Beyond the signed numbers the nearest real has to do.
        return maker_.real(static_cast<double>(static_cast<int64_t>(high)) * 0x1p64 +
                           static_cast<double>(lowHalf));
    }

    Value readReal(size_t at, uint8_t power) {
        const size_t width = size_t{1} << power;
        if ((width != 4 && width != 8) || !contentAt(at + 1, 1, width))
            return fail("the real at offset %zu is not well-formed", at);
        if (width == 8)
            return maker_.real(std::bit_cast<double>(numberAt(at + 1, 8)));
        const auto value = std::bit_cast<float>(static_cast<uint32_t>(numberAt(at + 1, 4)));
        return adopt<CFTypeRef>(CFNumberCreate(maker_.allocator(), kCFNumberFloat32Type, &value));
    }

    Value readDate(size_t at, uint8_t power) {
        if (power != 3 || !contentAt(at + 1, 1, 8))
            return fail("the date at offset %zu is not well-formed", at);
        const auto time = std::bit_cast<double>(numberAt(at + 1, 8));
        return std::isnan(time) ? fail("the date at offset %zu is no instant", at)
                                : maker_.date(time);
    }

    Value readData(size_t at) {
        const Content content = countedContent(at, 1);
        return content.bytes ? maker_.data(content.bytes, content.count) : nullptr;
    }

    Value readLetters(size_t at) {
        const Content content = countedContent(at, 1);
        if (!content.bytes)
            return nullptr;
        const std::string_view letters(reinterpret_cast<const char*>(content.bytes), content.count);
        const auto text = makeString(maker_.allocator(), letters, kCFStringEncodingASCII);
        return text ? maker_.string(text) : fail("the string at offset %zu is not ASCII", at);
    }

    // Units are taken as they are: a lone surrogate is no error in this format.
    Value readUnits(size_t at) {
        const Content content = countedContent(at, 2);
        GrowableArray<UniChar> units;
        UniChar* const room = content.bytes ? units.extend(content.count + 1) : nullptr;
        if (!room)
            return nullptr;
        for (size_t i = 0; i < content.count; ++i)
            room[i] = static_cast<UniChar>(content.bytes[2 * i] << 8 | content.bytes[2 * i + 1]);
        return maker_.string(adopt(CFStringCreateWithCharacters(
            maker_.allocator(), room, static_cast<CFIndex>(content.count))));
    }

    // Archives refer to their objects so. In the other formats this is a dictionary of one number.
    Value readIdentifier(size_t at, uint8_t low) {
        const size_t width = size_t{low} + 1;
        if (width > 8 || !contentAt(at + 1, 1, width))
            return fail("the identifier at offset %zu is not well-formed", at);
        DictionaryMaker result(maker_);
        result.add(retain<CFTypeRef>(CFSTR("CF$UID")),
                   maker_.integer(static_cast<int64_t>(numberAt(at + 1, width))));
        return result.finish();
    }

    uint64_t referenceAt(const Content& content, size_t index) const {
        return numberAt(static_cast<size_t>(content.bytes - bytes_) + index * referenceWidth_,
                        referenceWidth_);
    }

    // Reads a part and adds what it unfolds to.
    Value readPart(uint64_t reference, int depth, uint32_t& unfolded) {
        Value part = readObject(reference, depth + 1);
        if (!part)
            return nullptr;
        unfolded += unfolded_[static_cast<size_t>(reference)];
        if (unfolded > kMaximumUnfoldedCount)
            return fail("the list unfolds to more than %u values", kMaximumUnfoldedCount);
        return part;
    }

    Value readArray(size_t at, int depth, uint32_t& unfolded) {
        const Content content = countedContent(at, referenceWidth_);
        if (!content.bytes)
            return nullptr;
        ArrayMaker array(maker_);
        for (size_t i = 0; i < content.count; ++i) {
            const Value part = readPart(referenceAt(content, i), depth, unfolded);
            if (!part)
                return nullptr;
            array.add(part);
        }
        return array.finish();
    }

    // All keys come first, then their values.
    Value readDictionary(size_t at, int depth, uint32_t& unfolded) {
        const Content content = countedContent(at, 2 * size_t{referenceWidth_});
        if (!content.bytes)
            return nullptr;
        DictionaryMaker dictionary(maker_);
        for (size_t i = 0; i < content.count; ++i) {
            const Value key = readPart(referenceAt(content, i), depth, unfolded);
            if (!key)
                return nullptr;
            if (CFGetTypeID(key.get()) != CFStringGetTypeID())
                return fail("a key of the dictionary at offset %zu is no string", at);
            const Value value = readPart(referenceAt(content, content.count + i), depth, unfolded);
            if (!value)
                return nullptr;
            dictionary.add(key, value);
        }
        return dictionary.finish();
    }

    const uint8_t* bytes_;
    size_t size_;
    const Maker& maker_;
    Problem& problem_;

    uint8_t offsetWidth_ = 0;
    uint8_t referenceWidth_ = 0;
    size_t objectCount_ = 0;
    size_t topIndex_ = 0;
    size_t table_ = 0;

    std::unique_ptr<Value[]> objects_;
    // How many values each object that was read stands for.
    std::unique_ptr<uint32_t[]> unfolded_;
};

} // namespace

Value readBinary(const uint8_t* bytes, size_t size, const Maker& maker, Problem& problem) {
    if (size >= kMagicSize && bytes[6] != '0') {
        problem.set(kCFPropertyListReadUnknownVersionError, "version \"%c%c\" is not known",
                    bytes[6] > 32 && bytes[6] < 127 ? bytes[6] : '?',
                    bytes[7] > 32 && bytes[7] < 127 ? bytes[7] : '?');
        return nullptr;
    }
    return BinaryReader(bytes, size, maker, problem).read();
}

} // namespace cf::plist
