// StringTexts.h: strings to and from the standard library's, for tests.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include <ostream>
#include <random>
#include <string>
#include <string_view>

namespace test {

using String = cf::Ref<CFStringRef>;
using MutableString = cf::Ref<CFMutableStringRef>;

inline const UniChar* units(std::u16string_view text) {
    return reinterpret_cast<const UniChar*>(text.data());
}

// The text in the storage that its characters allow: narrow up to U+00FF.
inline String string(std::u16string_view text) {
    return cf::adopt(CFStringCreateWithCharacters(nullptr, units(text), CFIndex(text.size())));
}

inline MutableString mutableString(std::u16string_view text) {
    return cf::adopt(CFStringCreateMutableCopy(nullptr, 0, string(text).get()));
}

inline std::u16string text(CFStringRef string) {
    const CFIndex length = CFStringGetLength(string);
    std::u16string result(size_t(length), u'\0');
    CFStringGetCharacters(string, CFRangeMake(0, length),
                          reinterpret_cast<UniChar*>(result.data()));
    return result;
}

inline std::string utf8(CFStringRef string) {
    std::string result(size_t(CFStringGetLength(string)) * 3 + 1, '\0');
    if (!CFStringGetCString(string, result.data(), CFIndex(result.size()), kCFStringEncodingUTF8))
        return "(none)";
    result.resize(std::char_traits<char>::length(result.c_str()));
    return result;
}

// Texts of all kinds of characters, many of them in pairs and marks, none ill-formed.
inline std::u16string randomText(std::mt19937& random, size_t most) {
    static constexpr char32_t kKinds[][2] = {{0x20, 0x7E},     {0xA0, 0xFF},      {0x300, 0x36F},
                                             {0x370, 0x3FF},   {0x3041, 0x3096},  {0x4E00, 0x4FFF},
                                             {0xAC00, 0xACFF}, {0x1F600, 0x1F64F}};
    std::u16string result;
    const size_t kinds = 1 + random() % std::size(kKinds);
    for (size_t length = random() % (most + 1); result.size() < length;) {
        const auto& kind = kKinds[random() % kinds];
        const char32_t character = kind[0] + char32_t(random() % (kind[1] - kind[0] + 1));
        UniChar pair[2];
        result += CFStringGetSurrogatePairForLongCharacter(character, pair)
                      ? std::u16string{char16_t(pair[0]), char16_t(pair[1])}
                      : std::u16string{char16_t(pair[0])};
    }
    return result;
}

} // namespace test

inline bool operator==(const CFRange& a, const CFRange& b) {
    return a.location == b.location && a.length == b.length;
}
inline std::ostream& operator<<(std::ostream& out, const CFRange& range) {
    return out << "{" << range.location << ", " << range.length << "}";
}
