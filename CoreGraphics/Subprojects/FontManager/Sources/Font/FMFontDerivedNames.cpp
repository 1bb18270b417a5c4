// FMFontDerivedNames.cpp: names that a database may know, and that are worked out where it does
// not.

#include "Font/FMFontNames.h"
#include "Font/FaceUse.h"
#include "Font/LibraryQueries.h"
#include "Font/NameTable.h"

namespace {

using Text = cf::Ref<CFStringRef>;
using Reading = std::optional<Text>;
using CopyFromLibrary = CFStringRef (*)(FMLibraryRef, FMFontId);

Text make(const char* utf8) {
    if (!utf8 || !*utf8)
        return nullptr;
    return cf::adopt(CFStringCreateWithCString(nullptr, utf8, kCFStringEncodingUTF8));
}

// What the font's database says, else what `read` finds.
template <typename Read>
CFStringRef copyKnownName(FMFontRef font, fm::NameKey key, bool afresh, CopyFromLibrary copy,
                          Read read) {
    return fm::copyName(font, key, afresh, [&](FMFont& locked) -> Reading {
        if (Text known = fm::copyFromLibrary(locked, copy))
            return known;
        return read(locked);
    });
}

// A name from the table that falls back on another call's answer.
Reading readElse(FMFont& font, fm::NameKey key, bool afresh,
                 CFStringRef (*otherwise)(FMFontRef, bool)) {
    Reading name = font.readName(key);
    if (name && !*name && otherwise)
        return cf::adopt(otherwise(&font, afresh));
    return name;
}

bool isAllowedInPostScriptName(UniChar character) {
    static const CFCharacterSetRef letters =
        CFCharacterSetGetPredefined(kCFCharacterSetAlphaNumeric);
    return character == '_' || character == '-' ||
           CFCharacterSetIsCharacterMember(letters, character);
}

// White space goes; what else PostScript names cannot hold becomes "_".
Text cleanedForPostScript(CFStringRef name) {
    static const CFCharacterSetRef spaces =
        CFCharacterSetGetPredefined(kCFCharacterSetWhitespaceAndNewline);
    const cf::Ref cleaned = cf::adopt(CFStringCreateMutable(nullptr, 0));
    if (!name || !cleaned)
        return nullptr;
    const CFIndex length = CFStringGetLength(name);
    for (CFIndex i = 0; i < length; ++i) {
        const UniChar character = CFStringGetCharacterAtIndex(name, i);
        if (CFCharacterSetIsCharacterMember(spaces, character))
            continue;
        const UniChar kept = isAllowedInPostScriptName(character) ? character : UniChar{'_'};
        CFStringAppendCharacters(cleaned.get(), &kept, 1);
    }
    return cf::adopt(CFStringCreateCopy(nullptr, cleaned.get()));
}

Text join(CFStringRef format, CFStringRef first, CFStringRef second) {
    return cf::adopt(CFStringCreateWithFormat(nullptr, nullptr, format, first, second));
}

// Bitmap fonts without an SFNT wrapper have no PostScript name of their own, and need one to be
// found by.
Text postScriptNameOfBitmaps(FMFont& font, bool afresh) {
    const Text family = cf::adopt(FMFontCopyFamilyName(&font, afresh));
    const Text style = cf::adopt(FMFontCopyStyleName(&font, afresh));
    const Text cleanFamily = cleanedForPostScript(family.get());
    const Text cleanStyle = cleanedForPostScript(style.get());
    if (!cleanFamily || !cleanStyle)
        return cleanFamily;
    return join(CFSTR("%@-%@"), cleanFamily.get(), cleanStyle.get());
}

Reading readPostScriptName(FMFont& font, bool afresh) {
    Reading name = font.readName(fm::kNamePostScript);
    if (name && !*name && FMFontGetFormat(&font) == kFMFontFormatBitmap)
        return postScriptNameOfBitmaps(font, afresh);
    return name;
}

Reading readStyleName(FMFont& font, bool afresh) {
    if (Text style = make(font.faceNames().style))
        return style;
    return readElse(font, fm::kNamePreferredSubFamily, afresh, FMFontCopySubFamilyName);
}

Text readNimbraFamilyName(FMFont& font) {
    const Text whole = make(font.faceNames().family);
    CFStringRef family = nullptr;
    if (whole)
        FMLibraryInferFromName(whole.get(), &family, nullptr, nullptr);
    return family ? cf::adopt(family) : cf::retain(CFSTR("Unnamed Font Family"));
}

// How the kind of a font is spelled out where fonts are told apart; NULL for most.
CFStringRef wordForFormat(FMFontFormat format) {
    switch (format) {
    case kFMFontFormatOpenType:
        return CFSTR("OpenType PostScript");
    case kFMFontFormatOpenTypeBitmap:
        return CFSTR("OpenType TrueType");
    case kFMFontFormatPostScript:
        return CFSTR("PostScript");
    default:
        return nullptr;
    }
}

Text makeNimbraId(FMFont& font, bool afresh) {
    const Text family = cf::adopt(FMFontCopyNimbraFamilyName(&font, afresh));
    const Text style = cf::adopt(FMFontCopyStyleName(&font, afresh));
    const Text unique = font.readEnglishUniqueName();
    return cf::adopt(CFStringCreateWithFormat(
        nullptr, nullptr, CFSTR("%@:%@:%@:%@:%lld:%lld"), family.get(),
        unique ? unique.get() : family.get(), style ? style.get() : CFSTR("Regular"),
        wordForFormat(FMFontGetFormat(&font)), static_cast<long long>(FMFontGetFaceIndex(&font)),
        static_cast<long long>(FMFontGetNumberOfGlyphs(&font))));
}

// The full name where it tells the family, else family and style.
Reading composeDisplayName(FMFont& font, bool afresh) {
    const Reading full = font.readName(fm::kNameFull);
    if (!full)
        return std::nullopt;
    Text family = cf::adopt(FMFontCopyPreferredFamilyName(&font, afresh));
    if (!family)
        family = cf::adopt(FMFontCopyFamilyName(&font, afresh));
    if (!family || (*full && CFStringHasPrefix(full->get(), family.get())))
        return full;
    const Text style = cf::adopt(FMFontCopyStyleName(&font, afresh));
    return style ? join(CFSTR("%@ %@"), family.get(), style.get()) : family;
}

} // namespace

CFStringRef FMFontCopyFullName(FMFontRef font, bool afresh) {
    return copyKnownName(font, fm::kNameFull, afresh, FMLibraryCopyFontFullName,
                         [&](FMFont& locked) {
                             return readElse(locked, fm::kNameFull, afresh, FMFontCopyFamilyName);
                         });
}

CFStringRef FMFontCopyPostScriptName(FMFontRef font, bool afresh) {
    return copyKnownName(font, fm::kNamePostScript, afresh, FMLibraryCopyFontPostScriptName,
                         [&](FMFont& locked) { return readPostScriptName(locked, afresh); });
}

CFStringRef FMFontCopyUniqueId(FMFontRef font, bool afresh) {
    return copyKnownName(font, fm::kNameUniqueId, afresh, FMLibraryCopyFontUniqueId,
                         [](FMFont& locked) { return locked.readName(fm::kNameUnique); });
}

CFStringRef FMFontCopyStyleName(FMFontRef font, bool afresh) {
    return copyKnownName(font, fm::kNameStyle, afresh, FMLibraryCopyFontStyleName,
                         [&](FMFont& locked) { return readStyleName(locked, afresh); });
}

CFStringRef FMFontCopyNimbraFamilyName(FMFontRef font, bool afresh) {
    return copyKnownName(font, fm::kNameNimbraFamily, afresh, FMLibraryCopyFontNimbraFamilyName,
                         [](FMFont& locked) -> Reading { return readNimbraFamilyName(locked); });
}

CFStringRef FMFontCopyNimbraId(FMFontRef font, bool afresh) {
    return copyKnownName(font, fm::kNameNimbraId, afresh, FMLibraryCopyFontNimbraId,
                         [&](FMFont& locked) -> Reading { return makeNimbraId(locked, afresh); });
}

CFStringRef FMFontCopyDisplayName(FMFontRef font, bool afresh) {
    return copyKnownName(font, fm::kNameDisplay, afresh, FMLibraryCopyFontDisplayName,
                         [&](FMFont& locked) { return composeDisplayName(locked, afresh); });
}

CFStringRef FMFontCopySanitizedFamilyName(const char* utf8Name, const char* suffix) {
    const Text whole =
        utf8Name ? cf::adopt(CFStringCreateWithCString(nullptr, utf8Name, kCFStringEncodingUTF8))
                 : Text();
    const cf::Ref name =
        cf::adopt(whole ? CFStringCreateMutableCopy(nullptr, 0, whole.get()) : nullptr);
    if (!name)
        return nullptr;
    CFStringLowercase(name.get(), nullptr);
    if (const Text ending = make(suffix)) {
        const CFRange found =
            CFStringFind(name.get(), ending.get(),
                         kCFCompareCaseInsensitive | kCFCompareAnchored | kCFCompareBackwards);
        if (found.location != kCFNotFound)
            CFStringDelete(name.get(), found);
    }
    for (const CFStringRef separator : {CFSTR(" "), CFSTR("-")}) {
        const CFRange all = CFRangeMake(0, CFStringGetLength(name.get()));
        CFStringFindAndReplace(name.get(), separator, CFSTR(""), all, 0);
    }
    return CFStringCreateCopy(nullptr, name.get());
}
