// FMFontCreate.cpp: fonts from files, memory and providers.

#include <FontManager/FMFont.h>
#include <FontManager/FMLibrary.h>

#include "Core/Object/Diagnostics.h"
#include "Font/FMFontRecord.h"
#include "Font/FontRef.h"

#include <limits>
#include <new>

namespace {

// What a broken database is reported under.
constexpr const char* kSourcePath = "CoreGraphics/Subprojects/FontManager/Sources/FMFont";

fm::FontRef makeFont(std::int64_t faceIndex, bool standalone) {
    auto* const font = new (std::nothrow) FMFont;
    if (font) {
        font->faceIndex = faceIndex;
        font->set(fm::kStatusFaceIndexValid);
        if (standalone)
            font->set(fm::kStatusStandalone);
    }
    return fm::FontRef::adopt(font);
}

// Nobody else knows the font yet, so that its lock need not be held.
FMFontRef build(fm::FontRef font) {
    const FT_Face face = fm::activate(*font.get());
    if (!face)
        return nullptr;
    fm::buildFromFace(*font.get(), face);
    return font.release();
}

} // namespace

FMFontRef FMFontCreateWithPath(CFStringRef path, int64_t faceIndex, bool standalone) {
    if (!path || CFStringGetLength(path) == 0)
        return nullptr;
    fm::FontRef font = makeFont(faceIndex, standalone);
    if (!font)
        return nullptr;
    font.get()->location =
        cf::adopt(CFURLCreateWithFileSystemPath(nullptr, path, kCFURLPOSIXPathStyle, false));
    return font.get()->location ? build(std::move(font)) : nullptr;
}

FMFontRef FMFontCreateFromMemory(const void* bytes, size_t length, int64_t faceIndex,
                                 bool standalone) {
    if (!bytes || length == 0 || length > std::size_t{std::numeric_limits<CFIndex>::max()})
        return nullptr;
    const cf::Ref data = cf::adopt(
        CFDataCreate(nullptr, static_cast<const UInt8*>(bytes), static_cast<CFIndex>(length)));
    const cf::Ref provider = cf::adopt(CGDataProviderCreateWithCFData(data.get()));
    return FMFontCreateWithDataProvider(provider.get(), faceIndex, standalone);
}

FMFontRef FMFontCreateWithDataProvider(CGDataProviderRef provider, int64_t faceIndex, bool) {
    if (!provider)
        return nullptr;
    fm::FontRef font = makeFont(faceIndex, true);
    if (!font)
        return nullptr;
    font.get()->provider = cf::retain(provider);
    return build(std::move(font));
}

FMFontRef FMFontCreateWithFontId(FMLibraryRef library, FMFontId fontId) {
    if (!library || fontId == 0)
        return nullptr;
    fm::FontRef font = fm::FontRef::adopt(new (std::nothrow) FMFont);
    if (!font)
        return nullptr;
    FMFont& record = *font.get();
    record.library.store(library, std::memory_order_release);
    record.fontId.store(fontId, std::memory_order_relaxed);
    record.glyphIdCache = FMLibraryGetGlyphIdCache(library, fontId);
    if (!FMLibraryGetFontMetrics(library, fontId, &record.metrics)) {
        CG_LOG(kHostLogFault, "Assertion failed %s", kSourcePath);
        HostAbortWithBacktrace();
    }
    record.set(fm::kStatusMetricsValid);
    record.permFlags.store(FMLibraryGetFontPermFlags(library, fontId), std::memory_order_relaxed);
    return font.release();
}
