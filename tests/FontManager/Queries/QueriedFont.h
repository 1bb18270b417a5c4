// QueriedFont.h: a font for a test to ask.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FontManager.h>

#include "Font/FontRef.h"
#include "Support/InstalledFonts.h"

#include <string>

namespace test {

inline fm::FontRef openFont(const std::string& path, long index = 0) {
    const auto name =
        cf::adopt(CFStringCreateWithCString(nullptr, path.c_str(), kCFStringEncodingUTF8));
    return fm::FontRef::adopt(FMFontCreateWithPath(name.get(), index, true));
}

inline fm::FontRef openFont(const InstalledFace& face) {
    return openFont(face.path, face.index);
}

inline std::string text(CFStringRef string) {
    char utf8[512] = "";
    return string && CFStringGetCString(string, utf8, sizeof utf8, kCFStringEncodingUTF8)
               ? utf8
               : "(none)";
}

} // namespace test
