// Typefaces.cpp: typefaces over the bytes of fonts.

#include "Backend/Raster/Typefaces.h"

#include "XGDataProvider.h"
#include "XGFont.h"
#include <CoreFoundation/CFURL.h>

#include "Core/Object/Diagnostics.h"
#include "Font/FontSource.h"
#include "include/core/SkData.h"
#include "include/core/SkFontArguments.h"
#include "include/core/SkFontMgr.h"
#include "include/core/SkStream.h"
#include "include/ports/SkFontMgr_empty.h"

#include <array>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace cg {

namespace {

struct DrawingFace : fm::Attachment {
    sk_sp<SkTypeface> typeface; // NULL where the font cannot be read.
};

// The provider's own memory, locked for as long as Skia reads from it.
std::unique_ptr<SkStreamAsset> streamOf(CGDataProviderRef provider) {
    const int64_t size = XGDataProviderGetSize(provider);
    const void* const bytes = size > 0 ? XGDataProviderLockData(provider) : nullptr;
    if (!bytes)
        return nullptr;
    const auto unlock = [](const void*, void* kept) {
        const auto adopted = cf::adopt(static_cast<CGDataProviderRef>(kept));
        XGDataProviderUnlockData(adopted.get());
    };
    return SkMemoryStream::Make(SkData::MakeWithProc(bytes, static_cast<size_t>(size), unlock,
                                                     cf::retain(provider).release()));
}

std::unique_ptr<SkStreamAsset> streamOf(CFURLRef url) {
    if (!url)
        return nullptr;
    std::array<UInt8, 4096> path;
    const auto scheme = cf::adopt(CFURLCopyScheme(url));
    if (scheme && CFEqual(scheme.get(), CFSTR("file"))) {
        if (!CFURLGetFileSystemRepresentation(url, true, path.data(), path.size()))
            return nullptr;
        return SkStream::MakeFromFile(reinterpret_cast<const char*>(path.data()));
    }
    const auto provider = cf::adopt(CGDataProviderCreateWithURL(url));
    return provider ? streamOf(provider.get()) : nullptr;
}

sk_sp<SkTypeface> makeTypeface(FMFontRef font) {
    static SkFontMgr* const manager = SkFontMgr_New_Custom_Empty().release();
    const fm::FontSource source = fm::sourceOf(font);
    auto stream = source.provider ? streamOf(source.provider.get()) : streamOf(source.url.get());
    if (!stream || source.faceIndex < 0 || source.faceIndex > std::numeric_limits<int>::max())
        return nullptr;
    SkFontArguments arguments;
    arguments.setCollectionIndex(static_cast<int>(source.faceIndex));
    return manager->makeFromStream(std::move(stream), arguments);
}

} // namespace

// Two threads may both make one; the second drops its own.
sk_sp<SkTypeface> typefaceOf(CGFontRef font) {
    const FMFontRef native = XGFontGetFMFont(font);
    if (!native)
        return nullptr;
    fm::Attachment* attached = fm::attachmentOf(native);
    if (!attached) {
        std::unique_ptr<DrawingFace> face(new (std::nothrow) DrawingFace);
        if (!face)
            return nullptr;
        face->typeface = makeTypeface(native);
        attached = fm::attach(native, std::move(face));
    }
    return static_cast<DrawingFace*>(attached)->typeface;
}

} // namespace cg
