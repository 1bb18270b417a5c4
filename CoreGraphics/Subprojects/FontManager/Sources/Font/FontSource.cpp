// FontSource.cpp: a font's bytes for other renderers, and what they keep with the font.

#include "Font/FontSource.h"

#include <FontManager/FMFont.h>

#include "Font/FMFontRecord.h"

#include <mutex>

namespace fm {

FontSource sourceOf(FMFontRef font) {
    if (!font)
        return {};
    FontSource source = {.url = cf::adopt(FMFontCopyLocationURL(font)),
                         .faceIndex = FMFontGetFaceIndex(font)};
    const std::lock_guard hold(font->mutex);
    source.provider = font->provider;
    if (!source.provider && font->hostData)
        source.provider = cf::adopt(CGDataProviderCreateWithCFData(font->hostData.get()));
    return source;
}

Attachment* attachmentOf(FMFontRef font) {
    return font ? font->attachment.load(std::memory_order_acquire) : nullptr;
}

Attachment* attach(FMFontRef font, std::unique_ptr<Attachment> attachment) {
    Attachment* first = nullptr;
    const bool isFirst = font->attachment.compare_exchange_strong(
        first, attachment.get(), std::memory_order_acq_rel, std::memory_order_acquire);
    return isFirst ? attachment.release() : first;
}

} // namespace fm
