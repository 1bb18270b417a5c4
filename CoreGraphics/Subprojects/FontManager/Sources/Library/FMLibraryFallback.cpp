// FMLibraryFallback.cpp: which fonts of a library can draw a code point.

#include "Fallback/FallbackAccess.h"
#include "Library/LibraryRecord.h"

void FMLibraryQueryFallback(FMLibraryRef library, UTF32Char codePoint, uint32_t* start,
                            uint32_t* end, uint32_t* set) {
    FMFallbackRange range{};
    if (library)
        range = fm::FallbackAccess::query(*library->fallback, codePoint).value_or(range);
    if (start)
        *start = range.start;
    if (end)
        *end = range.end;
    if (set)
        *set = range.set;
}

void FMLibraryGetFallbackFontSet(FMLibraryRef library, uint32_t set, const FMFontRef** first,
                                 const FMFontRef** end) {
    const FMFontRef* fonts = nullptr;
    std::size_t count = 0;
    if (library) {
        const FMFallback::FontList& list = library->fallback->getFontSet(set);
        fonts = list.data();
        count = list.size();
    }
    if (first)
        *first = fonts;
    if (end)
        *end = fonts ? fonts + count : nullptr;
}
