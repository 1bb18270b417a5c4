// CFString.cpp: the string class: its record, equality, hash, creation and plain accessors.

#include <CoreFoundation/CFRuntime.h>
#include <Host/Host.h>

#include "CFStringInternal.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>

namespace cf {

namespace {

template <typename Unit>
uint64_t packFourUnits(const Unit* units) {
    return uint64_t{units[0]} | uint64_t{units[1]} << 16 | uint64_t{units[2]} << 32 |
           uint64_t{units[3]} << 48;
}

constexpr uint64_t mix(uint64_t hash, uint64_t block) {
    const uint64_t product = (hash ^ block) * 0x9E3779B97F4A7C15u;
    return product ^ (product >> 29);
}

// Goes by the values of the units, so that narrow and wide storage of one text agree. Never 0,
// which stands for a hash that is not known yet.
template <typename Unit>
CFHashCode hashOf(const Unit* units, CFIndex length) {
    uint64_t hash = static_cast<uint64_t>(length);
    CFIndex i = 0;
    for (; i + 4 <= length; i += 4)
        hash = mix(hash, packFourUnits(units + i));
    Unit rest[4] = {};
    std::copy(units + i, units + length, rest);
    hash = mix(hash, packFourUnits(rest));
    return std::max(static_cast<CFHashCode>(hash ^ (hash >> 32)), CFHashCode{1});
}

CFHashCode hashOf(const Text& text) {
    return text.narrow() ? hashOf(text.narrow(), text.length())
                         : hashOf(text.wide(), text.length());
}

CFHashCode hashString(CFTypeRef object) {
    const auto string = static_cast<CFStringRef>(object);
    if (hasFlag(string, _kCFStringIsMutable))
        return hashOf(Text(string));
    const std::atomic_ref<CFHashCode> cached(const_cast<CFMutableStringRef>(string)->hash);
    CFHashCode hash = cached.load(std::memory_order_relaxed);
    if (hash == 0) {
        hash = hashOf(Text(string));
        cached.store(hash, std::memory_order_relaxed);
    }
    return hash;
}

// Hashes are compared only when both are there already: working them out costs more than comparing.
Boolean equalStrings(CFTypeRef a, CFTypeRef b) {
    const auto first = static_cast<CFStringRef>(a);
    const auto second = static_cast<CFStringRef>(b);
    return equal(Text(first), Text(second));
}

void finalizeString(CFTypeRef object) {
    const auto string = static_cast<CFStringRef>(object);
    if (!hasFlag(string, _kCFStringHasExternalContents))
        return;
    const auto* const record = static_cast<const ExternalString*>(string);
    if (record->contentsOwner)
        CFAllocatorDeallocate(record->contentsOwner.get(), const_cast<void*>(record->contents));
    std::destroy_at(&record->contentsOwner);
}

CFTypeRef copyString(CFAllocatorRef allocator, CFTypeRef object) {
    return CFStringCreateCopy(allocator, static_cast<CFStringRef>(object));
}

CFStringRef copyFormattingDescription(CFTypeRef object, CFTypeRef) {
    return CFStringCreateCopy(nullptr, static_cast<CFStringRef>(object));
}

CFStringRef copyDebugDescription(CFTypeRef object) {
    return CFStringCreateWithFormat(nullptr, nullptr, CFSTR("<CFString %p>{contents = \"%@\"}"),
                                    object, object);
}

} // namespace

} // namespace cf

const CFRuntimeClass _CFStringClass = {
    .className = "CFString",
    .copy = cf::copyString,
    .finalize = cf::finalizeString,
    .equal = cf::equalStrings,
    .hash = cf::hashString,
    .copyFormattingDescription = cf::copyFormattingDescription,
    .copyDebugDescription = cf::copyDebugDescription,
};

namespace cf {

bool equal(const Text& a, const Text& b) {
    if (a.length() != b.length())
        return false;
    const auto count = static_cast<size_t>(a.length());
    if (count == 0)
        return true;
    if (a.narrow() && b.narrow())
        return std::memcmp(a.narrow(), b.narrow(), count) == 0;
    if (a.wide() && b.wide())
        return std::memcmp(a.wide(), b.wide(), count * sizeof(UniChar)) == 0;
    const uint8_t* const narrow = a.narrow() ? a.narrow() : b.narrow();
    return std::equal(narrow, narrow + count, a.wide() ? a.wide() : b.wide());
}

bool isRangeWithin(CFRange range, CFIndex length, const char* function) {
    if (range.location >= 0 && range.length >= 0 && range.location <= length &&
        range.length <= length - range.location)
        return true;
    HostLog(kHostLogError, "CoreFoundation", function,
            "range of %ld units at %ld is outside a string of %ld", range.length, range.location,
            length);
    return false;
}

UniChar* TextBuilder::extend(CFIndex count) {
    const auto needed = static_cast<size_t>(length_) + static_cast<size_t>(count);
    if (!failed_ && needed > units_.capacity())
        failed_ =
            !units_.reserve(std::max(needed, units_.capacity() * 2), static_cast<size_t>(length_));
    if (failed_)
        return nullptr;
    UniChar* const room = units_.data() + length_;
    length_ += count;
    return room;
}

namespace {

ExternalString* createExternal(CFAllocatorRef allocator, unsigned flags) {
    constexpr auto extraBytes =
        static_cast<CFIndex>(sizeof(ExternalString) - sizeof(CFRuntimeBase));
    const CFTypeRef instance =
        _CFRuntimeCreateInstance(allocator, _kCFRuntimeStringTypeID, extraBytes, nullptr);
    if (!instance)
        return nullptr;
    auto* const string = static_cast<ExternalString*>(const_cast<void*>(instance));
    std::construct_at(&string->contentsOwner);
    string->base.flags =
        static_cast<uint16_t>(string->base.flags | flags | _kCFStringHasExternalContents);
    return string;
}

// A string of `count` bytes or units that its maker fills in at `contents`, NUL behind them.
__CFString* createInline(CFAllocatorRef allocator, CFIndex count, size_t unitSize, unsigned flags) {
    constexpr auto most = static_cast<size_t>(PTRDIFF_MAX) - sizeof(__CFString);
    if (count < 0 || static_cast<size_t>(count) >= most / unitSize)
        return nullptr;
    const size_t extraBytes =
        sizeof(__CFString) - sizeof(CFRuntimeBase) + (static_cast<size_t>(count) + 1) * unitSize;
    const CFTypeRef instance = _CFRuntimeCreateInstance(allocator, _kCFRuntimeStringTypeID,
                                                        static_cast<CFIndex>(extraBytes), nullptr);
    if (!instance)
        return nullptr;
    auto* const string = static_cast<__CFString*>(const_cast<void*>(instance));
    string->base.flags = static_cast<uint16_t>(string->base.flags | flags);
    string->length = count;
    string->contents = string + 1;
    return string;
}

unsigned narrowFlags(const uint8_t* bytes, size_t count) {
    return (isASCII(bytes, count) ? unsigned{_kCFStringIsASCII} : 0u) |
           (count == 0 || !std::memchr(bytes, 0, count) ? unsigned{_kCFStringIsCString} : 0u);
}

CFStringRef createNarrow(CFAllocatorRef allocator, const uint8_t* bytes, CFIndex count) {
    const auto size = static_cast<size_t>(count);
    auto* const string = createInline(allocator, count, 1, narrowFlags(bytes, size));
    if (string && count > 0)
        std::memcpy(const_cast<void*>(string->contents), bytes, size);
    return string;
}

bool fitsNarrow(const UniChar* units, CFIndex count) {
    unsigned all = 0;
    for (CFIndex i = 0; i < count; ++i)
        all |= units[i];
    return all <= 0xFF;
}

CFStringRef createNarrowed(CFAllocatorRef allocator, const UniChar* units, CFIndex count) {
    auto* const string = createInline(allocator, count, 1, 0);
    if (!string)
        return nullptr;
    auto* const bytes = static_cast<uint8_t*>(const_cast<void*>(string->contents));
    std::transform(units, units + count, bytes,
                   [](UniChar unit) { return static_cast<uint8_t>(unit); });
    string->base.flags =
        static_cast<uint16_t>(string->base.flags | narrowFlags(bytes, static_cast<size_t>(count)));
    return string;
}

// Whether bytes in `encoding` may be kept as they are.
bool isNarrowForm(const uint8_t* bytes, size_t count, CFStringEncoding encoding) {
    return encoding == kCFStringEncodingISOLatin1 ||
           (extendsASCII(encoding) && isASCII(bytes, count));
}

Ref<CFAllocatorRef> ownerFor(CFAllocatorRef deallocator) {
    if (deallocator == kCFAllocatorNull)
        return nullptr;
    return retain(deallocator ? deallocator : CFAllocatorGetDefault());
}

// The copy that stands in for a buffer that cannot be used as it is, which is then given back.
CFStringRef afterCopying(CFStringRef copy, const void* buffer, CFAllocatorRef deallocator) {
    if (copy && buffer)
        if (const auto owner = ownerFor(deallocator))
            CFAllocatorDeallocate(owner.get(), const_cast<void*>(buffer));
    return copy;
}

CFStringRef createUsing(CFAllocatorRef allocator, const void* contents, CFIndex count,
                        unsigned flags, CFAllocatorRef deallocator) {
    ExternalString* const string = createExternal(allocator, flags);
    if (!string)
        return nullptr;
    string->contents = contents;
    string->length = string->capacity = count;
    string->contentsOwner = ownerFor(deallocator);
    return string;
}

} // namespace

CFStringRef createString(CFAllocatorRef allocator, const Text& text) {
    if (text.narrow())
        return createNarrow(allocator, text.narrow(), text.length());
    if (fitsNarrow(text.wide(), text.length()))
        return createNarrowed(allocator, text.wide(), text.length());
    auto* const string = createInline(allocator, text.length(), sizeof(UniChar), _kCFStringIsWide);
    if (string)
        text.copyTo(static_cast<UniChar*>(const_cast<void*>(string->contents)));
    return string;
}

CFStringRef createString(CFAllocatorRef allocator, const TextBuilder& builder) {
    return builder.failed() ? nullptr : createString(allocator, builder.text());
}

} // namespace cf

CFTypeID CFStringGetTypeID(void) {
    return _kCFRuntimeStringTypeID;
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar* characters,
                                         CFIndex count) {
    if (count < 0 || (!characters && count > 0))
        return nullptr;
    return cf::createString(allocator, cf::Text(characters, count));
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding encoding) {
    if (!text)
        return nullptr;
    return CFStringCreateWithBytes(allocator, reinterpret_cast<const UInt8*>(text),
                                   static_cast<CFIndex>(std::strlen(text)), encoding, false);
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation) {
    if (count < 0 || (!bytes && count > 0))
        return nullptr;
    const auto size = static_cast<size_t>(count);
    if (cf::isNarrowForm(bytes, size, encoding))
        return cf::createNarrow(allocator, bytes, count);
    cf::TextBuilder decoded;
    const auto mark =
        isExternalRepresentation ? cf::ByteOrderMark::Honour : cf::ByteOrderMark::Ignore;
    if (!cf::decode(bytes, size, encoding, mark, decoded))
        return nullptr;
    return cf::createString(allocator, decoded);
}

CFStringRef CFStringCreateWithPascalString(CFAllocatorRef allocator, ConstStr255Param text,
                                           CFStringEncoding encoding) {
    return text ? CFStringCreateWithBytes(allocator, text + 1, text[0], encoding, false) : nullptr;
}

CFStringRef CFStringCreateWithCharactersNoCopy(CFAllocatorRef allocator, const UniChar* characters,
                                               CFIndex count, CFAllocatorRef contentsDeallocator) {
    if (count < 0 || (!characters && count > 0))
        return nullptr;
    if (!characters)
        return cf::createString(allocator, cf::Text());
    return cf::createUsing(allocator, characters, count, _kCFStringIsWide, contentsDeallocator);
}

CFStringRef CFStringCreateWithCStringNoCopy(CFAllocatorRef allocator, const char* text,
                                            CFStringEncoding encoding,
                                            CFAllocatorRef contentsDeallocator) {
    if (!text)
        return nullptr;
    const auto* const bytes = reinterpret_cast<const uint8_t*>(text);
    const size_t count = std::strlen(text);
    if (cf::isNarrowForm(bytes, count, encoding))
        return cf::createUsing(allocator, bytes, static_cast<CFIndex>(count),
                               cf::narrowFlags(bytes, count), contentsDeallocator);
    return cf::afterCopying(CFStringCreateWithCString(allocator, text, encoding), text,
                            contentsDeallocator);
}

CFStringRef CFStringCreateWithBytesNoCopy(CFAllocatorRef allocator, const UInt8* bytes,
                                          CFIndex count, CFStringEncoding encoding,
                                          Boolean isExternalRepresentation,
                                          CFAllocatorRef contentsDeallocator) {
    if (count < 0 || (!bytes && count > 0))
        return nullptr;
    // Without a NUL behind them the bytes are no C string.
    const auto size = static_cast<size_t>(count);
    if (bytes && cf::isNarrowForm(bytes, size, encoding))
        return cf::createUsing(allocator, bytes, count,
                               cf::narrowFlags(bytes, size) & ~unsigned{_kCFStringIsCString},
                               contentsDeallocator);
    return cf::afterCopying(
        CFStringCreateWithBytes(allocator, bytes, count, encoding, isExternalRepresentation), bytes,
        contentsDeallocator);
}

CFStringRef CFStringCreateWithPascalStringNoCopy(CFAllocatorRef allocator, ConstStr255Param text,
                                                 CFStringEncoding encoding,
                                                 CFAllocatorRef contentsDeallocator) {
    // The count in front of the characters keeps the buffer from serving as contents.
    return cf::afterCopying(CFStringCreateWithPascalString(allocator, text, encoding), text,
                            contentsDeallocator);
}

CFStringRef CFStringCreateWithSubstring(CFAllocatorRef allocator, CFStringRef string,
                                        CFRange range) {
    if (!cf::isString(string) || !CF_RANGE_IS_WITHIN(range, string->length))
        return nullptr;
    return cf::createString(allocator, cf::Text(string).part(range.location, range.length));
}

CFStringRef CFStringCreateCopy(CFAllocatorRef allocator, CFStringRef string) {
    if (!cf::isString(string))
        return nullptr;
    if (!cf::hasFlag(string, _kCFStringIsMutable | _kCFStringHasExternalContents))
        return cf::retain(string).release();
    return cf::createString(allocator, cf::Text(string));
}

CFMutableStringRef CFStringCreateMutable(CFAllocatorRef allocator, CFIndex maximumLength) {
    if (maximumLength < 0)
        return nullptr;
    auto* const string = cf::createExternal(allocator, _kCFStringIsWide | _kCFStringIsMutable);
    if (string)
        string->contentsOwner = cf::retain(CFGetAllocator(string));
    return string;
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex maximumLength,
                                             CFStringRef string) {
    if (!cf::isString(string))
        return nullptr;
    auto copy = cf::adopt(CFStringCreateMutable(allocator, maximumLength));
    if (!copy || !cf::replace(copy.get(), CFRangeMake(0, 0), cf::Text(string)))
        return nullptr;
    return copy.release();
}

CFMutableStringRef
CFStringCreateMutableWithExternalCharactersNoCopy(CFAllocatorRef allocator, UniChar* characters,
                                                  CFIndex count, CFIndex capacity,
                                                  CFAllocatorRef externalCharactersAllocator) {
    if (count < 0 || count > capacity || (!characters && capacity > 0))
        return nullptr;
    auto* const string = cf::createExternal(allocator, _kCFStringIsWide | _kCFStringIsMutable);
    if (!string)
        return nullptr;
    string->contents = characters;
    string->length = count;
    string->capacity = capacity;
    string->contentsOwner = cf::ownerFor(externalCharactersAllocator);
    string->isCallersBuffer = true;
    return string;
}

CFIndex CFStringGetLength(CFStringRef string) {
    return cf::isString(string) ? string->length : 0;
}

UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index) {
    if (!cf::isString(string) || !CF_RANGE_IS_WITHIN(CFRangeMake(index, 1), string->length))
        return 0;
    return cf::Text(string)[index];
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer) {
    if (cf::isString(string) && buffer && CF_RANGE_IS_WITHIN(range, string->length))
        cf::Text(string).part(range.location, range.length).copyTo(buffer);
}

const UniChar* CFStringGetCharactersPtr(CFStringRef string) {
    return cf::isString(string) ? cf::Text(string).wide() : nullptr;
}

const char* CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding) {
    if (!cf::isString(string) || !cf::hasFlag(string, _kCFStringIsCString))
        return nullptr;
    const bool fits = encoding == kCFStringEncodingISOLatin1 ||
                      (cf::hasFlag(string, _kCFStringIsASCII) && cf::extendsASCII(encoding));
    return fits ? static_cast<const char*>(string->contents) : nullptr;
}

// No string is stored with a leading count.
ConstStringPtr CFStringGetPascalStringPtr(CFStringRef, CFStringEncoding) {
    return nullptr;
}
