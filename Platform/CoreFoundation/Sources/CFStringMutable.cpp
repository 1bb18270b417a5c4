// CFStringMutable.cpp: changing the text of mutable strings.

#include "CFStringInternal.h"

#include <algorithm>

namespace cf {

namespace {

UniChar* contentsOf(CFMutableStringRef string) {
    return static_cast<UniChar*>(const_cast<void*>(string->contents));
}

constexpr CFIndex kMaximumLength = PTRDIFF_MAX / 2 / static_cast<CFIndex>(sizeof(UniChar));

// Half as much again, so that appending one by one costs a constant time each.
CFIndex grownCapacity(CFIndex capacity, CFIndex needed) {
    return std::max({needed, capacity + capacity / 2, CFIndex{16}});
}

bool reserve(ExternalString* string, CFIndex needed) {
    if (needed <= string->capacity)
        return true;
    if (!string->contentsOwner || needed > kMaximumLength) {
        CF_LOG_ERROR("no room for %ld units in a buffer of %ld", needed, string->capacity);
        return false;
    }
    const CFIndex capacity = grownCapacity(string->capacity, needed);
    void* const moved =
        CFAllocatorReallocate(string->contentsOwner.get(), const_cast<void*>(string->contents),
                              capacity * static_cast<CFIndex>(sizeof(UniChar)), 0);
    if (!moved)
        return false;
    string->contents = moved;
    string->capacity = capacity;
    return true;
}

bool liesWithin(const Text& text, CFStringRef string) {
    const auto begin = reinterpret_cast<uintptr_t>(string->contents);
    const auto end = begin + static_cast<uintptr_t>(string->length) * sizeof(UniChar);
    const auto address = reinterpret_cast<uintptr_t>(text.wide());
    return text.wide() && address >= begin && address < end;
}

} // namespace

bool isMutable(CFMutableStringRef string, const char* function) {
    if (!isString(string))
        return false;
    if (hasFlag(string, _kCFStringIsMutable))
        return true;
    HostLog(kHostLogError, "CoreFoundation", function, "the string %p is immutable",
            static_cast<const void*>(string));
    return false;
}

bool replace(CFMutableStringRef string, CFRange range, const Text& text) {
    if (liesWithin(text, string)) {
        Scratch<UniChar> copy;
        if (!copy.reserve(static_cast<size_t>(text.length())))
            return false;
        text.copyTo(copy.data());
        return replace(string, range, Text(copy.data(), text.length()));
    }

    const CFIndex rest = string->length - range.length;
    if (text.length() > kMaximumLength - rest ||
        !reserve(static_cast<ExternalString*>(string), rest + text.length()))
        return false;
    UniChar* const contents = contentsOf(string);
    const CFIndex tail = range.location + range.length;
    if (tail < string->length)
        std::memmove(contents + range.location + text.length(), contents + tail,
                     static_cast<size_t>(string->length - tail) * sizeof(UniChar));
    if (text.length() > 0)
        text.copyTo(contents + range.location);
    string->length = rest + text.length();
    return true;
}

void replaceAll(CFMutableStringRef string, const TextBuilder& builder) {
    if (!builder.failed())
        replace(string, CFRangeMake(0, string->length), builder.text());
}

} // namespace cf

namespace {

CFRange endOf(CFStringRef string) {
    return CFRangeMake(string->length, 0);
}

} // namespace

void CFStringAppend(CFMutableStringRef string, CFStringRef appended) {
    if (cf::isString(appended) && CF_STRING_IS_MUTABLE(string))
        cf::replace(string, endOf(string), cf::Text(appended));
}

void CFStringAppendCharacters(CFMutableStringRef string, const UniChar* characters, CFIndex count) {
    if (characters && count > 0 && CF_STRING_IS_MUTABLE(string))
        cf::replace(string, endOf(string), cf::Text(characters, count));
}

void CFStringAppendCString(CFMutableStringRef string, const char* text, CFStringEncoding encoding) {
    if (!text || !CF_STRING_IS_MUTABLE(string))
        return;
    cf::TextBuilder decoded;
    if (cf::decode(reinterpret_cast<const uint8_t*>(text), std::strlen(text), encoding,
                   cf::ByteOrderMark::Ignore, decoded))
        cf::replace(string, endOf(string), decoded.text());
}

void CFStringAppendPascalString(CFMutableStringRef string, ConstStr255Param text,
                                CFStringEncoding encoding) {
    if (!text || !CF_STRING_IS_MUTABLE(string))
        return;
    cf::TextBuilder decoded;
    if (cf::decode(text + 1, text[0], encoding, cf::ByteOrderMark::Ignore, decoded))
        cf::replace(string, endOf(string), decoded.text());
}

void CFStringInsert(CFMutableStringRef string, CFIndex index, CFStringRef inserted) {
    CFStringReplace(string, CFRangeMake(index, 0), inserted);
}

void CFStringDelete(CFMutableStringRef string, CFRange range) {
    if (CF_STRING_IS_MUTABLE(string) && CF_RANGE_IS_WITHIN(range, string->length))
        cf::replace(string, range, cf::Text());
}

void CFStringReplace(CFMutableStringRef string, CFRange range, CFStringRef replacement) {
    if (cf::isString(replacement) && CF_STRING_IS_MUTABLE(string) &&
        CF_RANGE_IS_WITHIN(range, string->length))
        cf::replace(string, range, cf::Text(replacement));
}

void CFStringReplaceAll(CFMutableStringRef string, CFStringRef replacement) {
    if (cf::isString(replacement) && CF_STRING_IS_MUTABLE(string))
        cf::replace(string, CFRangeMake(0, string->length), cf::Text(replacement));
}

void CFStringSetExternalCharactersNoCopy(CFMutableStringRef string, UniChar* characters,
                                         CFIndex count, CFIndex capacity) {
    if (!CF_STRING_IS_MUTABLE(string) || count < 0 || count > capacity ||
        (!characters && capacity > 0))
        return;
    auto* const record = static_cast<cf::ExternalString*>(string);
    if (!record->isCallersBuffer) {
        CF_LOG_ERROR("the string %p has a buffer of its own", static_cast<const void*>(string));
        return;
    }
    record->contents = characters;
    record->length = count;
    record->capacity = capacity;
}

void CFStringPad(CFMutableStringRef string, CFStringRef pad, CFIndex length, CFIndex indexIntoPad) {
    if (!CF_STRING_IS_MUTABLE(string) || length < 0)
        return;
    if (length <= string->length) {
        cf::replace(string, CFRangeMake(length, string->length - length), cf::Text());
        return;
    }
    const cf::Text padding(cf::isString(pad) ? pad : nullptr);
    if (padding.length() == 0 ||
        !CF_RANGE_IS_WITHIN(CFRangeMake(indexIntoPad, 1), padding.length()))
        return;
    const CFIndex missing = length - string->length;
    cf::TextBuilder filled;
    UniChar* const units = filled.extend(missing);
    for (CFIndex i = 0; units && i < missing; ++i)
        units[i] = padding[(indexIntoPad + i) % padding.length()];
    if (units)
        cf::replace(string, endOf(string), filled.text());
}

void CFStringTrim(CFMutableStringRef string, CFStringRef trimmed) {
    const cf::Text sought(cf::isString(trimmed) ? trimmed : nullptr);
    if (sought.length() == 0 || !CF_STRING_IS_MUTABLE(string))
        return;
    const cf::Text text(string);
    const CFIndex step = sought.length();
    CFIndex begin = 0;
    CFIndex end = text.length();
    while (end - begin >= step && cf::equal(text.part(begin, step), sought))
        begin += step;
    while (end - begin >= step && cf::equal(text.part(end - step, step), sought))
        end -= step;
    cf::replace(string, CFRangeMake(end, text.length() - end), cf::Text());
    cf::replace(string, CFRangeMake(0, begin), cf::Text());
}
