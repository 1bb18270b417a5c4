// LastResortFont.h: the font that is there when no other is.
#pragma once

#include "Font/FMFontRecord.h"
#include "Font/FontRef.h"

namespace fm {

// Has no face: its measures and names are fixed, and glyphs are those of the font it defers to.
class LastResortFont final : public FMFont {
public:
    LastResortFont();

    bool mapCharacters(const UniChar* characters, CGGlyph* glyphs, std::size_t count) override;
    bool mapCodePoints(const UTF32Char* codePoints, CGGlyph* glyphs, std::size_t count) override;
    // In this font's units, whatever the other's are.
    bool advances(const CGGlyph* glyphs, CGSize* advances, std::size_t count) override;
    bool hasGlyph(UTF32Char codePoint) override;
    std::optional<cf::Ref<CFStringRef>> readName(NameKey key) override;
    cf::Ref<CFStringRef> readEnglishUniqueName() override;
    FaceNames faceNames() override { return {}; }

    // The font whose glyphs stand in, retained; NULL and the font itself for none.
    void deferTo(FMFontRef font);
    FontRef deferredTo();

private:
    FontRef other_;
};

// The same object where it is one, else NULL.
LastResortFont* asLastResortFont(FMFontRef font);

} // namespace fm
