// CFCharacterSet.cpp: sets of characters over ICU's.

#include "CFCharacterSet.h"

#include "CFStringICU.h"
#include "CFStringInternal.h"
#include "Record.h"

#include <unicode/uset.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

using UnicodeSet = std::unique_ptr<USet, cf::CloseBy<uset_close>>;

} // namespace

struct __CFCharacterSet {
    CFRuntimeBase base;
    UnicodeSet members;
    bool isMutable = false;
};

namespace {

CFCharacterSetRef as(CFTypeRef object) {
    return static_cast<CFCharacterSetRef>(object);
}

Boolean equalSets(CFTypeRef a, CFTypeRef b) {
    return uset_equals(as(a)->members.get(), as(b)->members.get()) != 0;
}

CFHashCode hashSet(CFTypeRef object) {
    return static_cast<CFHashCode>(uset_size(as(object)->members.get()));
}

CFTypeRef copySet(CFAllocatorRef allocator, CFTypeRef object) {
    return CFCharacterSetCreateCopy(allocator, as(object));
}

constexpr CFRuntimeClass kCharacterSetClass = {
    .className = "CFCharacterSet",
    .copy = copySet,
    .finalize = cf::destroy<__CFCharacterSet>,
    .equal = equalSets,
    .hash = hashSet,
};

bool isSet(CFTypeRef object) {
    return cf::isA(object, kCharacterSetClass);
}

// Takes over `members`; nullptr when there are none or memory runs out.
CFMutableCharacterSetRef createSet(CFAllocatorRef allocator, UnicodeSet members, bool isMutable) {
    if (!members)
        return nullptr;
    auto* const set = cf::construct<__CFCharacterSet>(allocator, CFCharacterSetGetTypeID());
    if (!set)
        return nullptr;
    // Frozen sets answer faster, and from any thread.
    if (!isMutable)
        uset_freeze(members.get());
    set->members = std::move(members);
    set->isMutable = isMutable;
    return set;
}

UnicodeSet copyMembers(CFCharacterSetRef set) {
    return UnicodeSet(isSet(set) ? uset_cloneAsThawed(set->members.get()) : nullptr);
}

// The part of `range` that are characters: first and last, or nothing in order.
struct Characters {
    UChar32 first;
    UChar32 last;
};

Characters charactersIn(CFRange range) {
    constexpr CFIndex kEnd = 0x110000;
    if (range.location < 0 || range.length <= 0 || range.location >= kEnd)
        return {1, 0};
    return {
        static_cast<UChar32>(range.location),
        static_cast<UChar32>(range.location + std::min(range.length, kEnd - range.location) - 1)};
}

template <typename Visit>
void forEachCharacter(CFStringRef string, Visit visit) {
    const cf::Text text(string);
    for (CFIndex i = 0; i < text.length(); ++i) {
        UChar32 character = text[i];
        if (U16_IS_LEAD(character) && i + 1 < text.length() && U16_IS_TRAIL(text[i + 1]))
            character = U16_GET_SUPPLEMENTARY(character, text[++i]);
        visit(character);
    }
}

bool canChange(CFMutableCharacterSetRef set, const char* function) {
    if (!isSet(set))
        return false;
    if (!set->isMutable)
        HostLog(kHostLogError, "CoreFoundation", function, "the character set %p is immutable",
                static_cast<const void*>(set));
    return set->isMutable;
}
#define CF_CAN_CHANGE(set) canChange(set, __func__)

// ---- Predefined sets

constexpr std::array<std::u16string_view, 16> kPatterns = {
    u"",
    u"[[:Cc:][:Cf:]]",
    u"[[:Zs:]\\u0009]",
    u"[[:Z:]\\u0009-\\u000D\\u0085]",
    u"[:Nd:]",
    u"[[:L:][:M:]]",
    u"[:Ll:]",
    u"[[:Lu:][:Lt:]]",
    u"[:M:]",
    u"[:NFD_Quick_Check=No:]",
    u"[[:L:][:M:][:N:]]",
    u"[:P:]",
    u"[:Cn:]",
    u"[:Lt:]",
    u"[:S:]",
    u"[\\u000A-\\u000D\\u0085\\u2028\\u2029]",
};
static_assert(kPatterns.size() == kCFCharacterSetNewline + 1);

struct PredefinedSet {
    HostOnce once;
    CFCharacterSetRef set;
};
constinit std::array<PredefinedSet, kPatterns.size()> predefined = {};

void makePredefined(void* context) {
    auto* const entry = static_cast<PredefinedSet*>(context);
    const std::u16string_view pattern = kPatterns[static_cast<size_t>(entry - predefined.data())];
    UErrorCode status = U_ZERO_ERROR;
    entry->set = createSet(
        kCFAllocatorSystemDefault,
        UnicodeSet(uset_openPattern(pattern.data(), static_cast<int32_t>(pattern.size()), &status)),
        false);
    _CFRuntimeSetImmortal(entry->set);
}

// ---- Bitmaps

constexpr size_t kPlaneBytes = 0x10000 / 8;

void addBits(USet* members, UChar32 firstCharacter, const UInt8* bytes, size_t count) {
    for (size_t i = 0; i < count; ++i)
        for (unsigned bit = 0; bit < 8; ++bit)
            if (bytes[i] & 1u << bit)
                uset_add(members, firstCharacter + static_cast<UChar32>(i * 8 + bit));
}

bool hasMembers(const USet* members, CFIndex plane) {
    const auto first = static_cast<UChar32>(plane * 0x10000);
    return !uset_containsNone(members, UnicodeSet(uset_open(first, first + 0xFFFF)).get());
}

void writeBits(const USet* members, CFIndex plane, UInt8* bytes) {
    const auto first = static_cast<UChar32>(plane * 0x10000);
    for (UChar32 offset = 0; offset < 0x10000; ++offset)
        if (uset_contains(members, first + offset))
            bytes[offset / 8] = static_cast<UInt8>(bytes[offset / 8] | 1u << (offset % 8));
}

} // namespace

CFTypeID CFCharacterSetGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kCharacterSetClass);
    return id;
}

CFCharacterSetRef CFCharacterSetGetPredefined(CFCharacterSetPredefinedSet identifier) {
    const auto index = static_cast<CFIndex>(identifier);
    if (index < kCFCharacterSetControl || index > kCFCharacterSetNewline)
        return nullptr;
    PredefinedSet& entry = predefined[static_cast<size_t>(index)];
    HostOnceRun(&entry.once, makePredefined, &entry);
    return entry.set;
}

CFCharacterSetRef CFCharacterSetCreateWithCharactersInRange(CFAllocatorRef allocator,
                                                            CFRange range) {
    if (range.location < 0 || range.length < 0)
        return nullptr;
    const auto [first, last] = charactersIn(range);
    return createSet(allocator, UnicodeSet(uset_open(first, last)), false);
}

CFCharacterSetRef CFCharacterSetCreateWithCharactersInString(CFAllocatorRef allocator,
                                                             CFStringRef string) {
    UnicodeSet members(cf::isString(string) ? uset_openEmpty() : nullptr);
    if (!members)
        return nullptr;
    forEachCharacter(string, [&](UChar32 character) { uset_add(members.get(), character); });
    return createSet(allocator, std::move(members), false);
}

CFCharacterSetRef CFCharacterSetCreateWithBitmapRepresentation(CFAllocatorRef allocator,
                                                               CFDataRef bitmap) {
    UnicodeSet members(bitmap ? uset_openEmpty() : nullptr);
    if (!members)
        return nullptr;
    const UInt8* bytes = CFDataGetBytePtr(bitmap);
    auto left = static_cast<size_t>(CFDataGetLength(bitmap));
    const size_t basic = std::min(left, kPlaneBytes);
    addBits(members.get(), 0, bytes, basic);
    for (bytes += basic, left -= basic; left > 1;) {
        const size_t count = std::min(left - 1, kPlaneBytes);
        if (*bytes >= 1 && *bytes <= 16)
            addBits(members.get(), *bytes * 0x10000, bytes + 1, count);
        bytes += count + 1;
        left -= count + 1;
    }
    return createSet(allocator, std::move(members), false);
}

CFCharacterSetRef CFCharacterSetCreateInvertedSet(CFAllocatorRef allocator, CFCharacterSetRef set) {
    UnicodeSet members = copyMembers(set);
    if (members)
        uset_complement(members.get());
    return createSet(allocator, std::move(members), false);
}

CFCharacterSetRef CFCharacterSetCreateCopy(CFAllocatorRef allocator, CFCharacterSetRef set) {
    if (isSet(set) && !set->isMutable)
        return cf::retain(set).release();
    return createSet(allocator, copyMembers(set), false);
}

CFMutableCharacterSetRef CFCharacterSetCreateMutable(CFAllocatorRef allocator) {
    return createSet(allocator, UnicodeSet(uset_openEmpty()), true);
}

CFMutableCharacterSetRef CFCharacterSetCreateMutableCopy(CFAllocatorRef allocator,
                                                         CFCharacterSetRef set) {
    return createSet(allocator, copyMembers(set), true);
}

CFDataRef CFCharacterSetCreateBitmapRepresentation(CFAllocatorRef allocator,
                                                   CFCharacterSetRef set) {
    if (!isSet(set))
        return nullptr;
    const USet* const members = set->members.get();
    size_t size = kPlaneBytes;
    for (CFIndex plane = 1; plane <= 16; ++plane)
        size += hasMembers(members, plane) ? kPlaneBytes + 1 : 0;
    auto data = cf::adopt(CFDataCreateMutable(allocator, static_cast<CFIndex>(size)));
    CFDataSetLength(data.get(), static_cast<CFIndex>(size));
    if (!data || CFDataGetLength(data.get()) != static_cast<CFIndex>(size))
        return nullptr;
    UInt8* bytes = CFDataGetMutableBytePtr(data.get());
    writeBits(members, 0, bytes);
    bytes += kPlaneBytes;
    for (CFIndex plane = 1; plane <= 16; ++plane) {
        if (!hasMembers(members, plane))
            continue;
        *bytes = static_cast<UInt8>(plane);
        writeBits(members, plane, bytes + 1);
        bytes += kPlaneBytes + 1;
    }
    return data.release();
}

Boolean CFCharacterSetIsCharacterMember(CFCharacterSetRef set, UniChar character) {
    return CFCharacterSetIsLongCharacterMember(set, character);
}

Boolean CFCharacterSetIsLongCharacterMember(CFCharacterSetRef set, UTF32Char character) {
    return isSet(set) && character <= 0x10FFFF &&
           uset_contains(set->members.get(), static_cast<UChar32>(character));
}

Boolean CFCharacterSetIsSupersetOfSet(CFCharacterSetRef set, CFCharacterSetRef subset) {
    return isSet(set) && isSet(subset) &&
           uset_containsAll(set->members.get(), subset->members.get());
}

Boolean CFCharacterSetHasMemberInPlane(CFCharacterSetRef set, CFIndex plane) {
    return isSet(set) && plane >= 0 && plane <= 16 && hasMembers(set->members.get(), plane);
}

void CFCharacterSetAddCharactersInRange(CFMutableCharacterSetRef set, CFRange range) {
    if (!CF_CAN_CHANGE(set))
        return;
    const auto [first, last] = charactersIn(range);
    uset_addRange(set->members.get(), first, last);
}

void CFCharacterSetRemoveCharactersInRange(CFMutableCharacterSetRef set, CFRange range) {
    if (!CF_CAN_CHANGE(set))
        return;
    const auto [first, last] = charactersIn(range);
    uset_removeRange(set->members.get(), first, last);
}

void CFCharacterSetAddCharactersInString(CFMutableCharacterSetRef set, CFStringRef string) {
    if (cf::isString(string) && CF_CAN_CHANGE(set))
        forEachCharacter(string, [set](UChar32 c) { uset_add(set->members.get(), c); });
}

void CFCharacterSetRemoveCharactersInString(CFMutableCharacterSetRef set, CFStringRef string) {
    if (cf::isString(string) && CF_CAN_CHANGE(set))
        forEachCharacter(string, [set](UChar32 c) { uset_remove(set->members.get(), c); });
}

void CFCharacterSetUnion(CFMutableCharacterSetRef set, CFCharacterSetRef other) {
    if (isSet(other) && CF_CAN_CHANGE(set))
        uset_addAll(set->members.get(), other->members.get());
}

void CFCharacterSetIntersect(CFMutableCharacterSetRef set, CFCharacterSetRef other) {
    if (isSet(other) && CF_CAN_CHANGE(set))
        uset_retainAll(set->members.get(), other->members.get());
}

void CFCharacterSetInvert(CFMutableCharacterSetRef set) {
    if (CF_CAN_CHANGE(set))
        uset_complement(set->members.get());
}
