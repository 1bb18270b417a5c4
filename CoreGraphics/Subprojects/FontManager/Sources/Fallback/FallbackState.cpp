// FallbackState.cpp: finds the fonts that cover a code point.

#include "Fallback/FallbackState.h"

#include <FontManager/FMDatabase.h>
#include <FontManager/FMLibrary.h>

#include "Fallback/MappedCodePoints.h"
#include "Font/FontRef.h"
#include "Font/Locks.h"
#include "Library/LibraryRecord.h"

#include <algorithm>
#include <limits>
#include <mutex>

FMFontId FMFallback::State::permanentFonts() const {
    if (!library)
        return 0;
    const CFIndex count = FMDatabaseGetFontsCount(fm::databaseOf(library));
    return static_cast<FMFontId>(
        std::clamp<CFIndex>(count, 0, std::numeric_limits<FMFontId>::max()));
}

// All fonts are asked for all that they map at once: asked for one code point each time, hundreds
// of faces would stay open, or be opened over and over. The library's lock is held, so that two
// threads do not both do so.
void FMFallback::State::askPermanentFonts() {
    const FMFontId count = permanentFonts();
    {
        const std::lock_guard hold(mutex);
        if (!isToAsk(count))
            return;
    }
    const fm::GlobalLock global;
    for (FMFontId id = askedFonts + 1; id <= count && id > 0; ++id) {
        const auto font = fm::FontRef::adopt(FMLibraryCopyPermanentFont(library, id));
        const auto codePoints = fm::mappedCodePoints(font.get());
        const std::lock_guard hold(mutex);
        answers.add(id, codePoints);
        askedFonts = id;
    }
}

std::vector<FMFontId> FMFallback::State::fontsCovering(std::uint32_t codePoint) {
    askPermanentFonts();
    const std::lock_guard hold(mutex);
    return (characterMaps.isEmpty() ? answers : characterMaps).fontsCovering(codePoint);
}
