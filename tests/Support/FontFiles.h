// FontFiles.h: fonts of the packages that tests depend on, one for each way of storing glyphs.
#pragma once

#include <FontManager/FMFont.h>

#include "Support/FontPaths.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <memory>

namespace test {

inline constexpr char kCompact[] = "/usr/share/fonts/opentype/urw-base35/NimbusRoman-Regular.otf";
inline constexpr char kType1[] = "/usr/share/fonts/X11/Type1/NimbusRoman-Regular.pfb";
inline constexpr char kChinese[] = "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc";
inline constexpr char kArabic[] = "/usr/share/fonts/truetype/noto/NotoSansArabic-Regular.ttf";
inline constexpr char kDevanagari[] =
    "/usr/share/fonts/truetype/noto/NotoSansDevanagari-Regular.ttf";

struct ReleaseFont {
    void operator()(FMFontRef font) const { FMFontRelease(font); }
};
using Font = std::unique_ptr<FMFont, ReleaseFont>;

inline Font openFont(const char* path, int64_t index = 0) {
    const auto name = CFStringCreateWithCString(nullptr, path, kCFStringEncodingUTF8);
    Font font(FMFontCreateWithPath(name, index, true));
    CFRelease(name);
    return font;
}

// FreeType's own, with a library for each: nothing of ours is in it.
class BareFace {
public:
    explicit BareFace(const char* path, FT_Long index = 0) {
        FT_Init_FreeType(&library_);
        if (FT_New_Face(library_, path, index, &face_) == 0)
            FT_Select_Charmap(face_, FT_ENCODING_UNICODE);
    }
    ~BareFace() { FT_Done_FreeType(library_); }
    BareFace(const BareFace&) = delete;
    BareFace& operator=(const BareFace&) = delete;

    FT_Face get() const { return face_; }
    FT_GlyphSlot slot() const { return face_->glyph; }
    CGGlyph glyph(FT_ULong character) const {
        return static_cast<CGGlyph>(FT_Get_Char_Index(face_, character));
    }

private:
    FT_Library library_ = nullptr;
    FT_Face face_ = nullptr;
};

} // namespace test
