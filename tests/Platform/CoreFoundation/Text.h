// Text.h: strings of the C++ kind made from CF's, for tests to compare.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include <string>

namespace test {

inline const char kNone[] = "(none)";

// The string in UTF-8; kNone for NULL.
inline std::string textOf(CFStringRef string) {
    if (!string)
        return kNone;
    CFIndex size = 0;
    const CFRange all = {0, CFStringGetLength(string)};
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, '?', false, nullptr, 0, &size);
    std::string text(size_t(size), '\0');
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, '?', false,
                     reinterpret_cast<UInt8*>(text.data()), size, nullptr);
    return text;
}

// The same of a string that the caller owns, which is released.
inline std::string takeText(CFStringRef string) {
    return textOf(cf::adopt(string).get());
}

inline cf::Ref<CFStringRef> makeText(const std::string& text) {
    return cf::adopt(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                             CFIndex(text.size()), kCFStringEncodingUTF8, false));
}

} // namespace test
