// PreferredLanguages.cpp: the user's languages, as fonts are chosen by them.

#include "Library/PreferredLanguages.h"

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFLocale.h>

namespace fm {

cf::Ref<CFStringRef> preferredFontLanguage() {
    const auto languages = cf::adopt(CFLocaleCopyPreferredLanguages());
    if (!languages || CFArrayGetCount(languages.get()) == 0)
        return cf::retain(CFSTR(""));
    const auto first = static_cast<CFStringRef>(CFArrayGetValueAtIndex(languages.get(), 0));
    for (const CFStringRef chinese : {CFSTR("zh-Hans"), CFSTR("zh-Hant")})
        if (CFStringHasPrefix(first, chinese))
            return cf::retain(chinese);
    const CFRange hyphen = CFStringFind(first, CFSTR("-"), 0);
    const CFIndex end = hyphen.location == kCFNotFound ? CFStringGetLength(first) : hyphen.location;
    return cf::adopt(CFStringCreateWithSubstring(nullptr, first, CFRangeMake(0, end)));
}

cf::Ref<CFStringRef> serializedPreferredLanguages() {
    const auto languages = cf::adopt(CFLocaleCopyPreferredLanguages());
    if (!languages)
        return cf::retain(CFSTR(""));
    return cf::adopt(CFStringCreateByCombiningStrings(nullptr, languages.get(), CFSTR(",")));
}

} // namespace fm
