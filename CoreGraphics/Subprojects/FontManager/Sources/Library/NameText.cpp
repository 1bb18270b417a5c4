// NameText.cpp: names of fonts as UTF-16 text.

#include "Library/NameText.h"

#include <algorithm>
#include <cstddef>

namespace fm {

std::u16string unitsOf(CFStringRef string) {
    const CFIndex length = CFStringGetLength(string);
    std::u16string units(static_cast<std::size_t>(length), u'\0');
    CFStringGetCharacters(string, CFRangeMake(0, length), reinterpret_cast<UniChar*>(units.data()));
    return units;
}

cf::Ref<CFStringRef> stringOf(std::u16string_view units) {
    return cf::adopt(CFStringCreateWithCharacters(nullptr,
                                                  reinterpret_cast<const UniChar*>(units.data()),
                                                  static_cast<CFIndex>(units.size())));
}

std::u16string lowerCased(std::u16string_view text) {
    std::u16string result(text);
    if (std::ranges::all_of(text, [](char16_t c) { return c < 0x80; })) {
        for (char16_t& c : result)
            c = c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + (u'a' - u'A')) : c;
        return result;
    }
    const auto string = cf::adopt(CFStringCreateMutableCopy(nullptr, 0, stringOf(text).get()));
    if (!string)
        return result;
    CFStringLowercase(string.get(), nullptr);
    return unitsOf(string.get());
}

std::u16string lowerCased(CFStringRef string) {
    return string ? lowerCased(unitsOf(string)) : std::u16string();
}

std::u16string sanitizedFamily(std::u16string lowerCasedName) {
    std::erase_if(lowerCasedName, [](char16_t c) { return c == u' ' || c == u'-'; });
    return lowerCasedName;
}

} // namespace fm
