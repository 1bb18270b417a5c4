// FMFontRecord.h: what a font holds, and what kinds of fonts do in their own way.
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>
#include <CoreGraphics/CGDataProvider.h>
#include <FontManager/FMFont.h>

#include "Face/FaceCache.h"
#include "Font/FaceOpener.h"
#include "Font/FontSource.h"
#include "Font/Locks.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace fm {

enum NameKey : std::uint16_t; // Of FMFontNames.h.

// Bits of a font's status word.
enum Status : std::uint16_t {
    kStatusHasVariationData = 2,
    kStatusMetricsValid = 8,
    kStatusRestrictionsValid = 16,
    kStatusFaceIndexValid = 32,
    kStatusOpeningDisabled = 64, // The face is not to be opened, whatever asks for it.
    kStatusStandalone = 0x8000,
};

// Something that another module keeps with a font and that goes when the font is purged.
using OwnedSlot = std::unique_ptr<void, void (*)(void*)>;
inline OwnedSlot emptySlot() {
    return {nullptr, [](void*) {}};
}

// What a face calls itself, in UTF-8, lent by the face; either may be NULL.
struct FaceNames {
    const char* family = nullptr;
    const char* style = nullptr;
};

// Numbers that nothing has been asked for yet.
constexpr CFIndex kUnknownGlyphCount = -1;
constexpr std::int32_t kUnknownEncoding = -1;

} // namespace fm

// Atomic members may be read without a lock; the rest belongs to whoever holds `mutex`. The metrics
// may be read by anyone once the status word calls them valid.
struct FMFont {
    FMFont() = default;
    virtual ~FMFont();
    FMFont(const FMFont&) = delete;
    FMFont& operator=(const FMFont&) = delete;

    // A glyph for each UTF-16 unit, 0 where there is none; whether all have one.
    virtual bool mapCharacters(const UniChar* characters, CGGlyph* glyphs, std::size_t count);
    // A glyph for each code point, as for characters.
    virtual bool mapCodePoints(const UTF32Char* codePoints, CGGlyph* glyphs, std::size_t count);
    // Advances in font units; false when they cannot be told.
    virtual bool advances(const CGGlyph* glyphs, CGSize* advances, std::size_t count);
    virtual bool hasGlyph(UTF32Char codePoint);

    // With the font locked. The name with a number of the name table, in the user's language: an
    // absent string when there is none, nothing when the face cannot be opened.
    virtual std::optional<cf::Ref<CFStringRef>> readName(fm::NameKey key);
    // What the makers call this very version, in English.
    virtual cf::Ref<CFStringRef> readEnglishUniqueName();
    virtual fm::FaceNames faceNames();

    bool has(fm::Status bit) const { return status.load(std::memory_order_acquire) & bit; }
    void set(fm::Status bit) { status.fetch_or(bit, std::memory_order_acq_rel); }
    void clear(fm::Status bit) {
        status.fetch_and(static_cast<std::uint16_t>(~bit), std::memory_order_acq_rel);
    }

    std::atomic<std::uint32_t> references{1};
    std::atomic<FMFontId> fontId{0};
    std::atomic<std::uint16_t> status{0};
    std::atomic<std::uint16_t> permFlags{0};
    std::atomic<FMFontFormat> format{kFMFontFormatUnknown};
    std::atomic<std::uint8_t> restrictions{0};
    std::atomic<bool> isPermanent{false}; // The library's to set.
    std::atomic<std::int32_t> stringEncoding{fm::kUnknownEncoding};
    std::atomic<CFIndex> glyphCount{fm::kUnknownGlyphCount};
    std::atomic<std::int64_t> lastModtime{0};
    std::atomic<std::uint64_t> glyphSerial{0}; // Stands for the font in the cache of glyphs.
    // The library that registered the font, not retained: it takes itself out of its fonts before
    // it goes.
    std::atomic<FMLibraryRef> library{nullptr};
    std::atomic<FT_Face> face{nullptr};
    std::atomic<fm::Attachment*> attachment{nullptr}; // Owned.

    fm::RecursiveMutex mutex;
    FMFontMetrics metrics{};
    std::int64_t faceIndex = 0;
    std::int64_t glyphIdCache = 0; // How glyphs of this font are cached, as its database says.
    cf::Ref<CFURLRef> location;
    cf::Ref<CFStringRef> windowsIdentifier;
    cf::Ref<CGDataProviderRef> provider;    // Of a font made from memory or a provider.
    cf::Ref<CFDataRef> hostData;            // The bytes of a font that the host knows by name only.
    std::unique_ptr<fm::FaceStream> stream; // What `face` reads from; outlives it.
    cf::Ref<CFMutableDictionaryRef> names;  // By integer; made with the first name.
    fm::FaceCache cache;
    fm::OwnedSlot harfBuzzFont = fm::emptySlot();
    fm::OwnedSlot variationData = fm::emptySlot();
    fm::OwnedSlot lentGlyph = fm::emptySlot(); // What FMFontGetGlyphUnsafe answered last.
};

namespace fm {

// The font's face, opened when it is not; NULL, after a line in the log, when it cannot be.
FT_Face openFace(FMFont& font);
// With the font locked and its face closed: opens it, without a word when that fails.
FT_Face activate(FMFont& font);
// With the font locked: finds out what its library knows of where its face is.
void learnOrigin(FMFont& font);
// With the font locked: closes the face, if any.
void closeFace(FMFont& font);

// Takes what is kept of the face itself: character map, colour flag and metrics.
void buildFromFace(FMFont& font, FT_Face face);

} // namespace fm
