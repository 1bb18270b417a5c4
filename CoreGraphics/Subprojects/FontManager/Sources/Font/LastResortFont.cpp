// LastResortFont.cpp: a font without a face.

#include "Font/LastResortFont.h"

#include "Font/FMFontNames.h"

#include <algorithm>
#include <new>

namespace fm {

namespace {

constexpr FMFontMetrics kMetrics = {
    .unitsPerEm = 2048,
    .ascent = 1900,
    .descent = -500,
    .xHeight = 1082,
    .capHeight = 1456,
    .reserved48 = 2400,
    .underlinePosition = -200,
    .underlineThickness = 100,
    .panose = {2, 0, 0, 0, 0, 0, 0, 2, 0, 4},
    .bbox = {{-1825, -555}, {6013, 2718}},
    .heightMultiple = 1,
    .heightMultipleForUIKit = 1,
};

} // namespace

LastResortFont::LastResortFont() {
    metrics = kMetrics;
    // There is nothing to open, and no use in saying so each time.
    status = kStatusMetricsValid | kStatusStandalone | kStatusOpeningDisabled;
}

void LastResortFont::deferTo(FMFontRef font) {
    FontRef other = font == this ? FontRef() : FontRef::retain(font);
    // What was deferred to may go with this assignment: not under this font's lock.
    const std::lock_guard hold(mutex);
    std::swap(other_, other);
}

FontRef LastResortFont::deferredTo() {
    const std::lock_guard hold(mutex);
    return other_;
}

bool LastResortFont::mapCharacters(const UniChar* characters, CGGlyph* glyphs, std::size_t count) {
    if (const FontRef other = deferredTo())
        return other.get()->mapCharacters(characters, glyphs, count);
    std::fill_n(glyphs, count, CGGlyph{0});
    return false;
}

bool LastResortFont::mapCodePoints(const UTF32Char* codePoints, CGGlyph* glyphs,
                                   std::size_t count) {
    if (const FontRef other = deferredTo())
        return other.get()->mapCodePoints(codePoints, glyphs, count);
    std::fill_n(glyphs, count, CGGlyph{0});
    return false;
}

bool LastResortFont::advances(const CGGlyph* glyphs, CGSize* advances, std::size_t count) {
    const FontRef other = deferredTo();
    const FMFontMetrics* const theirs = FMFontGetMetrics(other.get());
    if (!theirs || theirs->unitsPerEm == 0 || !other.get()->advances(glyphs, advances, count))
        return false;
    const CGFloat scale =
        static_cast<CGFloat>(kMetrics.unitsPerEm) / static_cast<CGFloat>(theirs->unitsPerEm);
    std::for_each_n(advances, count, [scale](CGSize& advance) {
        advance = {advance.width * scale, advance.height * scale};
    });
    return true;
}

bool LastResortFont::hasGlyph(UTF32Char codePoint) {
    const FontRef other = deferredTo();
    return other && other.get()->hasGlyph(codePoint);
}

std::optional<cf::Ref<CFStringRef>> LastResortFont::readName(NameKey key) {
    switch (key) {
    case kNameCopyright:
    case kNameFamily:
    case kNameUnique:
    case kNameFull:
    case kNameVersion:
    case kNamePostScript:
    case kNamePreferredFamily:
    case kNameCompatibleFull:
        return cf::retain(CFSTR("LastResort"));
    case kNameSubFamily:
    case kNamePreferredSubFamily:
        return cf::retain(CFSTR("regular"));
    default:
        return nullptr;
    }
}

cf::Ref<CFStringRef> LastResortFont::readEnglishUniqueName() {
    return *readName(kNameUnique);
}

LastResortFont* asLastResortFont(FMFontRef font) {
    return dynamic_cast<LastResortFont*>(font);
}

} // namespace fm

FMFontRef FMFontCreateLastResortFont() {
    return new (std::nothrow) fm::LastResortFont;
}
