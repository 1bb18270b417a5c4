// FontSource.h: what another renderer needs to read a font for itself.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFURL.h>
#include <CoreGraphics/CGDataProvider.h>
#include <FontManager/FMBase.h>

#include <cstdint>
#include <memory>

namespace fm {

// Where a font's bytes are; of a font without a face, nowhere.
struct FontSource {
    cf::Ref<CFURLRef> url;
    cf::Ref<CGDataProviderRef> provider; // Before the URL, where there is one.
    std::int64_t faceIndex = 0;
};
FontSource sourceOf(FMFontRef font);

// What a renderer makes of a font. It goes with the font and not before, so that one who holds the
// font may use it without a lock.
struct Attachment {
    virtual ~Attachment() = default;
};
// NULL where nothing is attached.
Attachment* attachmentOf(FMFontRef font);
// The first one stays; gives the one that does.
Attachment* attach(FMFontRef font, std::unique_ptr<Attachment> attachment);

} // namespace fm
