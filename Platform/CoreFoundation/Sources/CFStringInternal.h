// CFStringInternal.h: how strings are stored, and the views and builders that work on them.
#pragma once

#include <CoreFoundation/CFConstantString.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include "CFRuntimeInternal.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

// Immutable strings keep their contents right behind the record, narrow whenever every character is
// in Latin-1. Mutable strings always hold UTF-16, in a buffer of their own.
struct __CFString : _CFStringHead {};

namespace cf {

// The record of mutable strings, and of immutable ones that use a caller's buffer.
struct ExternalString : __CFString {
    CFIndex capacity = 0;              // In units.
    Ref<CFAllocatorRef> contentsOwner; // Moves and frees the contents; without it nobody does.
    bool isCallersBuffer = false;      // Made with external characters, which may be exchanged.
};

// The guard of every exported function: whether it was given a string, and not NULL or something
// else.
inline bool isString(CFTypeRef object) {
    return isA(object, _CFStringClass);
}

inline bool hasFlag(CFStringRef string, unsigned flag) {
    return (string->base.flags & flag) != 0;
}

// A look at a string's characters, whichever way they are stored.
class Text {
public:
    Text() = default;
    Text(const UniChar* characters, CFIndex length) : wide_(characters), length_(length) {}
    explicit Text(CFStringRef string) : length_(string ? string->length : 0) {
        if (string && hasFlag(string, _kCFStringIsWide))
            wide_ = static_cast<const UniChar*>(string->contents);
        else if (string)
            narrow_ = static_cast<const uint8_t*>(string->contents);
    }

    CFIndex length() const { return length_; }
    const uint8_t* narrow() const { return narrow_; }
    const UniChar* wide() const { return wide_; }
    UniChar operator[](CFIndex index) const {
        return narrow_ ? UniChar{narrow_[index]} : wide_[index];
    }
    Text part(CFIndex location, CFIndex length) const {
        Text text;
        text.narrow_ = narrow_ ? narrow_ + location : nullptr;
        text.wide_ = wide_ ? wide_ + location : nullptr;
        text.length_ = length;
        return text;
    }
    void copyTo(UniChar* buffer) const {
        if (narrow_) {
            for (CFIndex i = 0; i < length_; ++i)
                buffer[i] = narrow_[i];
        } else if (length_ > 0) {
            std::memcpy(buffer, wide_, static_cast<size_t>(length_) * sizeof(UniChar));
        }
    }

private:
    const uint8_t* narrow_ = nullptr;
    const UniChar* wide_ = nullptr;
    CFIndex length_ = 0;
};

bool equal(const Text& a, const Text& b);

// Whether `range` lies within `length` units; logs an error when it does not.
bool isRangeWithin(CFRange range, CFIndex length, const char* function);
#define CF_RANGE_IS_WITHIN(range, length) ::cf::isRangeWithin(range, length, __func__)

// Working memory that is small in most cases. Failed allocations are answered, not thrown.
template <typename Item, size_t kInlineCount = 256>
class Scratch {
public:
    Scratch() = default;
    ~Scratch() { std::free(heap_); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    // Room for `count` items, of which the first `kept` stay as they are.
    [[nodiscard]] bool reserve(size_t count, size_t kept = 0) {
        if (count <= capacity_)
            return true;
        if (count > SIZE_MAX / 2 / sizeof(Item))
            return false;
        auto* const moved = static_cast<Item*>(std::realloc(heap_, count * sizeof(Item)));
        if (!moved)
            return false;
        if (!heap_ && kept > 0)
            std::memcpy(moved, inline_, kept * sizeof(Item));
        heap_ = moved;
        capacity_ = count;
        return true;
    }
    Item* data() { return heap_ ? heap_ : inline_; }
    const Item* data() const { return heap_ ? heap_ : inline_; }
    size_t capacity() const { return capacity_; }

private:
    Item inline_[kInlineCount];
    Item* heap_ = nullptr;
    size_t capacity_ = kInlineCount;
};

// A string's units as UTF-16, copied only where it stores them otherwise.
class WideText {
public:
    explicit WideText(const Text& text) : length_(text.length()), units_(text.wide()) {
        if (units_ || !scratch_.reserve(static_cast<size_t>(length_)))
            return;
        text.copyTo(scratch_.data());
        units_ = scratch_.data();
    }
    explicit WideText(CFStringRef string) : WideText(Text(string)) {}

    // False when memory ran out.
    explicit operator bool() const { return units_ != nullptr; }
    const UniChar* data() const { return units_; }
    const char16_t* utf16() const { return reinterpret_cast<const char16_t*>(units_); }
    CFIndex length() const { return length_; }
    Text text() const { return {units_, length_}; }

private:
    Scratch<UniChar> scratch_;
    CFIndex length_;
    const UniChar* units_;
};

// Gathers UTF-16 units. Once memory has run out it stays failed, and so does what is made of it.
class TextBuilder {
public:
    void append(UniChar unit) {
        if (UniChar* const room = extend(1))
            *room = unit;
    }
    void append(const Text& text) {
        if (UniChar* const room = extend(text.length()))
            text.copyTo(room);
    }
    void appendCodePoint(UTF32Char character) {
        UniChar pair[2];
        const bool isPair = CFStringGetSurrogatePairForLongCharacter(character, pair) != 0;
        append(Text(pair, isPair ? 2 : 1));
    }
    void appendASCII(const char* bytes, size_t count) {
        if (UniChar* const room = extend(static_cast<CFIndex>(count)))
            for (size_t i = 0; i < count; ++i)
                room[i] = static_cast<uint8_t>(bytes[i]);
    }
    void appendRepeated(UniChar unit, CFIndex count) {
        UniChar* const room = extend(count);
        for (CFIndex i = 0; room && i < count; ++i)
            room[i] = unit;
    }
    // Room for `count` more units, for the caller to fill; NULL when there is none.
    UniChar* extend(CFIndex count);
    void truncate(CFIndex length) { length_ = length; }

    void fail() { failed_ = true; }
    bool failed() const { return failed_; }
    CFIndex length() const { return length_; }
    Text text() const { return {units_.data(), length_}; }

private:
    Scratch<UniChar> units_;
    CFIndex length_ = 0;
    bool failed_ = false;
};

// A new immutable string, stored as small as it goes.
CFStringRef createString(CFAllocatorRef allocator, const Text& text);
// The same of a finished builder; NULL when that failed.
CFStringRef createString(CFAllocatorRef allocator, const TextBuilder& builder);

// ---- Encodings

enum class ByteOrderMark { Ignore, Honour };

// Appends the characters that `count` bytes stand for. False when they are malformed, the encoding
// is not available or memory runs out.
bool decode(const uint8_t* bytes, size_t count, CFStringEncoding encoding, ByteOrderMark mark,
            TextBuilder& result);

struct EncodingResult {
    CFIndex converted; // Units.
    size_t used;       // Bytes.
};

// Writes `text` into `capacity` bytes, up to the first character that does not fit or that the
// encoding lacks, unless `lossByte` is not 0 and stands for it. A null `buffer` only counts.
EncodingResult encode(const Text& text, CFStringEncoding encoding, uint8_t lossByte,
                      ByteOrderMark mark, uint8_t* buffer, size_t capacity);

// Whether all bytes are below 0x80.
bool isASCII(const uint8_t* bytes, size_t count);
// Whether the encoding has ASCII's characters at ASCII's bytes, as narrow storage does.
bool extendsASCII(CFStringEncoding encoding);

// ---- Changing

// Whether `string` is there and mutable; logs an error when it is there but is not.
bool isMutable(CFMutableStringRef string, const char* function);
#define CF_STRING_IS_MUTABLE(string) ::cf::isMutable(string, __func__)

// Replaces `range`, which lies within the string, by `text`, which may be a part of the string.
// False when there is no room for it; the string is then as it was.
bool replace(CFMutableStringRef string, CFRange range, const Text& text);
// Replaces the whole contents by what was built; nothing when that failed.
void replaceAll(CFMutableStringRef string, const TextBuilder& builder);

} // namespace cf
