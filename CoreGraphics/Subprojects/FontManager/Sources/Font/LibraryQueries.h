// LibraryQueries.h: what a font asks its library's database before it opens its face.
#pragma once

#include <FontManager/FMLibrary.h>

#include "Font/FMFontRecord.h"

#include <optional>

namespace fm {

// What `read(library, fontId)` answers about a font that its library's database knows; nothing of
// any other font.
template <typename Answer>
std::optional<Answer> askLibrary(const FMFont& font, Answer (*read)(FMLibraryRef, FMFontId)) {
    const FMLibraryRef library = font.library.load(std::memory_order_acquire);
    const FMFontId fontId = font.fontId.load(std::memory_order_relaxed);
    if (!library || fontId == 0)
        return std::nullopt;
    return read(library, fontId);
}

// The same of objects: NULL, too, where the database has none.
template <typename Object>
cf::Ref<Object> copyFromLibrary(const FMFont& font, Object (*copy)(FMLibraryRef, FMFontId)) {
    return cf::adopt(askLibrary(font, copy).value_or(nullptr));
}

} // namespace fm
