// CFURLEscapes.cpp: percent escapes in strings that are not URLs yet, or no longer.

#include <CoreFoundation/CFRef.h>

#include "CFURL.h"
#include "CFURLSyntax.h"
#include "StringBytes.h"

namespace {

using UnitBuffer = cf::GrowableArray<UniChar>;

bool contains(CFStringRef characters, CFStringRef string, CFRange range) {
    if (!characters || CFStringGetLength(characters) == 0)
        return false;
    const auto part = cf::adopt(CFStringCreateWithSubstring(nullptr, string, range));
    return part && CFStringFind(characters, part.get(), 0).location != kCFNotFound;
}

// One or two units: a pair of surrogates is one character.
CFRange characterAt(CFStringRef string, CFIndex index) {
    const bool isPair =
        CFStringIsSurrogateHighCharacter(CFStringGetCharacterAtIndex(string, index)) &&
        CFStringIsSurrogateLowCharacter(CFStringGetCharacterAtIndex(string, index + 1));
    return CFRangeMake(index, isPair ? 2 : 1);
}

void appendUnits(CFStringRef string, CFRange range, UnitBuffer& result) {
    if (UniChar* const room = result.extend(static_cast<size_t>(range.length)))
        CFStringGetCharacters(string, range, room);
}

void appendLetters(std::string_view letters, UnitBuffer& result) {
    for (const char letter : letters)
        result.append(static_cast<UniChar>(static_cast<uint8_t>(letter)));
}

CFStringRef createFrom(CFAllocatorRef allocator, const UnitBuffer& units) {
    static constexpr UniChar kNothing = 0;
    if (units.failed())
        return nullptr;
    return CFStringCreateWithCharacters(allocator, units.empty() ? &kNothing : units.data(),
                                        static_cast<CFIndex>(units.size()));
}

// Replaces runs of escapes. A run is decoded as a whole, because one character may take several.
class Unescaper {
public:
    Unescaper(CFStringRef string, CFStringRef kept, CFStringEncoding encoding)
        : string_(string), kept_(kept), encoding_(encoding) {}

    bool run() {
        const CFIndex count = CFStringGetLength(string_);
        for (CFIndex i = 0; i < count;) {
            const UniChar unit = CFStringGetCharacterAtIndex(string_, i);
            if (unit != '%') {
                result_.append(unit);
                ++i;
                continue;
            }
            const CFIndex end = findEndOfRun(i, count);
            if (!appendRun(i, end))
                return false;
            i = end;
        }
        return true;
    }
    const UnitBuffer& result() const { return result_; }

private:
    CFIndex findEndOfRun(CFIndex from, CFIndex count) const {
        while (from < count && CFStringGetCharacterAtIndex(string_, from) == '%')
            from += 3;
        return from < count ? from : count;
    }

    bool appendRun(CFIndex from, CFIndex end) {
        cf::TextBuffer escapes;
        cf::TextBuffer bytes;
        if (!cf::appendBytes(string_, CFRangeMake(from, end - from), kCFStringEncodingUTF8,
                             escapes) ||
            !cf::url::appendUnescaped(view(escapes), bytes) || bytes.failed())
            return false;
        const auto run = cf::makeString(nullptr, view(bytes), encoding_);
        if (!run)
            return false;
        size_t byte = 0;
        for (CFIndex i = 0, count = CFStringGetLength(run.get()); i < count;) {
            const CFRange range = characterAt(run.get(), i);
            CFIndex size = 0;
            CFStringGetBytes(run.get(), range, encoding_, 0, false, nullptr, 0, &size);
            if (contains(kept_, run.get(), range))
                appendLetters(view(escapes).substr(byte * 3, static_cast<size_t>(size) * 3),
                              result_);
            else
                appendUnits(run.get(), range, result_);
            byte += static_cast<size_t>(size);
            i += range.length;
        }
        return true;
    }

    CFStringRef string_;
    CFStringRef kept_;
    CFStringEncoding encoding_;
    UnitBuffer result_;
};

// The letters that RFC 2396 lets stand in a URL: those that are not control characters, white
// space, delimiters or unwise.
bool isLegalLetter(UniChar unit) {
    constexpr std::string_view kIllegal = "`#%^{}\"[]|\\<>";
    return unit > 0x20 && unit < 0x7F &&
           kIllegal.find(static_cast<char>(unit)) == std::string_view::npos;
}

} // namespace

CFStringRef CFURLCreateStringByReplacingPercentEscapes(CFAllocatorRef allocator, CFStringRef string,
                                                       CFStringRef charactersToLeaveEscaped) {
    return CFURLCreateStringByReplacingPercentEscapesUsingEncoding(
        allocator, string, charactersToLeaveEscaped, kCFStringEncodingUTF8);
}

CFStringRef CFURLCreateStringByReplacingPercentEscapesUsingEncoding(
    CFAllocatorRef allocator, CFStringRef string, CFStringRef charactersToLeaveEscaped,
    CFStringEncoding encoding) {
    if (!string)
        return nullptr;
    if (!charactersToLeaveEscaped || CFStringFind(string, CFSTR("%"), 0).location == kCFNotFound)
        return CFStringCreateCopy(allocator, string);
    Unescaper unescaper(string, charactersToLeaveEscaped, encoding);
    return unescaper.run() ? createFrom(allocator, unescaper.result()) : nullptr;
}

CFStringRef CFURLCreateStringByAddingPercentEscapes(CFAllocatorRef allocator, CFStringRef string,
                                                    CFStringRef charactersToLeaveUnescaped,
                                                    CFStringRef legalURLCharactersToBeEscaped,
                                                    CFStringEncoding encoding) {
    if (!string)
        return nullptr;
    UnitBuffer result;
    cf::TextBuffer bytes;
    cf::TextBuffer escapes;
    for (CFIndex i = 0, count = CFStringGetLength(string); i < count;) {
        const CFRange range = characterAt(string, i);
        const bool isLegal = isLegalLetter(CFStringGetCharacterAtIndex(string, i)) &&
                             !contains(legalURLCharactersToBeEscaped, string, range);
        i += range.length;
        if (isLegal || contains(charactersToLeaveUnescaped, string, range)) {
            appendUnits(string, range, result);
            continue;
        }
        bytes.truncate(0);
        escapes.truncate(0);
        if (!cf::appendBytes(string, range, encoding, bytes))
            return nullptr;
        for (const char byte : bytes)
            cf::url::appendEscape(static_cast<uint8_t>(byte), escapes);
        appendLetters(view(escapes), result);
    }
    return createFrom(allocator, result);
}
