// FMFont.cpp: what a font is, and the face that it opens and closes.

#include <FontManager/FMFont.h>

#include "Core/Object/Diagnostics.h"
#include "Font/FMFontRecord.h"
#include "Font/FontIterator.h"
#include "Font/LibraryQueries.h"

#include <array>
#include <mutex>

using Hold = std::lock_guard<fm::RecursiveMutex>;

FMFont::~FMFont() {
    fm::closeFace(*this);
    delete attachment.load(std::memory_order_relaxed);
}

// ---- Opening and closing

namespace fm {

namespace {

constexpr CFIndex kPathCapacity = 4096;

FT_Face openStream(FMFont& font, CGDataProviderRef provider) {
    font.stream = FaceStream::create(provider);
    const FT_Face face = font.stream ? openFaceOfStream(*font.stream, font.faceIndex) : nullptr;
    if (!face)
        font.stream.reset();
    return face;
}

FT_Face openURL(FMFont& font) {
    const cf::Ref scheme = cf::adopt(CFURLCopyScheme(font.location.get()));
    if (!scheme)
        return nullptr;
    if (!CFEqual(scheme.get(), CFSTR("file"))) {
        const cf::Ref provider = cf::adopt(CGDataProviderCreateWithURL(font.location.get()));
        return provider ? openStream(font, provider.get()) : nullptr;
    }
    std::array<UInt8, kPathCapacity> path;
    if (!CFURLGetFileSystemRepresentation(font.location.get(), true, path.data(), kPathCapacity))
        return nullptr;
    return openFaceOfFile(reinterpret_cast<const char*>(path.data()), font.faceIndex);
}

// The host's own fonts may have a name and no file.
FT_Face openHostFont(FMFont& font) {
    if (!font.hostData)
        font.hostData = hostFontData(font.windowsIdentifier.get(), nullptr);
    const cf::Ref provider = cf::adopt(CGDataProviderCreateWithCFData(font.hostData.get()));
    return provider ? openStream(font, provider.get()) : nullptr;
}

FT_Face openSource(FMFont& font) {
    learnOrigin(font);
    if (font.provider)
        return openStream(font, font.provider.get());
    if (font.location)
        return openURL(font);
    return font.windowsIdentifier ? openHostFont(font) : nullptr;
}

// A font may be the Unicode map of none of its characters: symbols, old bitmap fonts.
void selectCharmap(FT_Face face) {
    if (FT_Select_Charmap(face, FT_ENCODING_UNICODE) == 0)
        return;
    if (face->num_charmaps <= 0) {
        CG_LOG_WARNING("Font has no support for Unicode charmap");
        return;
    }
    CG_LOG_WARNING("Cannot select Unicode font charmap, selecting default.");
    FT_Set_Charmap(face, face->charmaps[0]);
}

} // namespace

void learnOrigin(FMFont& font) {
    if (!font.has(kStatusFaceIndexValid)) {
        if (const auto index = askLibrary(font, FMLibraryGetFontFaceIndex)) {
            font.faceIndex = *index;
            font.set(kStatusFaceIndexValid);
        }
    }
    // Where a font made from bytes was once found is of no use to it.
    if (font.provider)
        return;
    if (!font.location)
        font.location = copyFromLibrary(font, FMLibraryCopyFontLocationURL);
    if (!font.location && !font.windowsIdentifier)
        font.windowsIdentifier = copyFromLibrary(font, FMLibraryCopyFontWindowsIdentifier);
}

FT_Face activate(FMFont& font) {
    const FT_Face face = openSource(font);
    if (face) {
        selectCharmap(face);
        font.face.store(face, std::memory_order_release);
    }
    return face;
}

FT_Face openFace(FMFont& font) {
    if (const FT_Face face = font.face.load(std::memory_order_acquire))
        return face;
    if (font.has(kStatusOpeningDisabled))
        return nullptr;

    const Hold hold(font.mutex);
    if (const FT_Face face = font.face.load(std::memory_order_relaxed))
        return face;
    const FT_Face face = activate(font);
    if (!face) {
        CG_LOG_ERROR("Failed to activate font %p (url=%@, index=%lld).",
                     static_cast<const void*>(&font), static_cast<CFTypeRef>(font.location.get()),
                     static_cast<long long>(font.faceIndex));
    }
    return face;
}

void closeFace(FMFont& font) {
    // What others made of the face goes first.
    font.harfBuzzFont.reset();
    font.cache.faceWillClose();
    closeFace(font.face.exchange(nullptr, std::memory_order_acq_rel));
    font.stream.reset();
}

} // namespace fm

struct FT_FaceRec_* FMFontGetFTFaceUnsafe(FMFontRef font, bool open) {
    if (!font)
        return nullptr;
    return open ? fm::openFace(*font) : font->face.load(std::memory_order_acquire);
}

bool FMFontIsActive(FMFontRef font) {
    return FMFontGetFTFaceUnsafe(font, false) != nullptr;
}

void FMFontLock(FMFontRef font) {
    if (font)
        font->mutex.lock();
}

void FMFontUnlock(FMFontRef font) {
    if (font)
        font->mutex.unlock();
}

void FMFontPurge(FMFontRef font) {
    if (!font)
        return;
    const Hold hold(font->mutex);
    font->names = nullptr;
    font->variationData.reset();
    font->clear(fm::kStatusHasVariationData);
    font->cache.clear();
    fm::closeFace(*font);
}

void FMFontClearFaceData(FMFontRef font) {
    if (!font)
        return;
    const Hold hold(font->mutex);
    fm::closeFace(*font);
    font->hostData = nullptr;
}

// ---- Keeping

FMFontRef FMFontRetain(FMFontRef font) {
    if (font)
        font->references.fetch_add(1, std::memory_order_relaxed);
    return font;
}

void FMFontRelease(FMFontRef font) {
    if (font && font->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete font;
}

bool FMFontEqual(FMFontRef a, FMFontRef b) {
    return a && a == b;
}

CFHashCode FMFontHash(FMFontRef font) {
    return reinterpret_cast<CFHashCode>(font);
}

// ---- Origin

int64_t FMFontGetFaceIndex(FMFontRef font) {
    if (!font)
        return 0;
    const Hold hold(font->mutex);
    fm::learnOrigin(*font);
    return font->faceIndex;
}

CFURLRef FMFontCopyLocationURL(FMFontRef font) {
    if (!font)
        return nullptr;
    const Hold hold(font->mutex);
    fm::learnOrigin(*font);
    return cf::Ref(font->location).release();
}

void FMFontCacheWindowsIdentifier(FMFontRef font, CFStringRef identifier) {
    if (!font)
        return;
    const Hold hold(font->mutex);
    font->windowsIdentifier =
        cf::adopt(identifier ? CFStringCreateCopy(nullptr, identifier) : nullptr);
}

CFStringRef FMFontCopyWindowsIdentifier(FMFontRef font) {
    if (!font)
        return nullptr;
    const Hold hold(font->mutex);
    fm::learnOrigin(*font);
    return cf::Ref(font->windowsIdentifier).release();
}

int64_t FMFontGetLastModtime(FMFontRef font) {
    return font ? font->lastModtime.load(std::memory_order_relaxed) : 0;
}

void FMFontSetLastModtime(FMFontRef font, int64_t seconds) {
    if (font)
        font->lastModtime.store(seconds, std::memory_order_relaxed);
}

FMFontId FMFontGetFontId(FMFontRef font) {
    return font ? font->fontId.load(std::memory_order_relaxed) : 0;
}

void FMFontSetFontId(FMFontRef font, FMFontId fontId) {
    if (font)
        font->fontId.store(fontId, std::memory_order_relaxed);
}

// ---- Flags

bool FMFontIsStandalone(FMFontRef font) {
    return font && font->has(fm::kStatusStandalone);
}

bool FMFontIsPermanent(FMFontRef font) {
    return font && font->isPermanent.load(std::memory_order_relaxed);
}

uint16_t FMFontGetPermFlags(FMFontRef font) {
    return font ? font->permFlags.load(std::memory_order_relaxed) : uint16_t{0};
}

void FMFontSetPermFlags(FMFontRef font, uint16_t flags) {
    if (font)
        font->permFlags.store(flags, std::memory_order_relaxed);
}

bool FMFontHasColorBitmap(FMFontRef font) {
    return (FMFontGetPermFlags(font) & kFMFontPermHasColorBitmap) != 0;
}

bool FMFontIsPlatformEmoji(FMFontRef font) {
    return (FMFontGetPermFlags(font) & kFMFontPermIsPlatformEmoji) != 0;
}
