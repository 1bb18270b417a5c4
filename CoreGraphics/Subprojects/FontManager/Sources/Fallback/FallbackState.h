// FallbackState.h: what a fallback knows.
#pragma once

#include <FontManager/FMFallback.h>
#include <Host/Host.h>

#include "Fallback/CharacterCoverage.h"
#include "Fallback/CharacterRanges.h"
#include "Fallback/FontSets.h"

#include <map>
#include <vector>

// The mutex guards all that changes. Fonts, the library and the callback take locks that come
// before it, so it is never held while one of them is called; what they answered is then compared
// with what another thread may have entered meanwhile.
struct FMFallback::State {
    const FMLibraryRef library;
    const FontListCallback fontListCallback;

    host::Mutex mutex;
    fm::CharacterRanges ranges;
    fm::FontSets sets;
    std::map<std::uint32_t, FontList> lists;
    // Added by addFontToCharmaps or read from the database: while there is any, nothing else
    // counts.
    fm::CharacterCoverage characterMaps;
    // What the permanent fonts 1 to askedFonts have answered.
    fm::CharacterCoverage answers;
    FMFontId askedFonts = 0;

    // How many fonts the library's database has.
    FMFontId permanentFonts() const;
    // Whether there are permanent fonts to ask that have not been. Needs the mutex.
    bool isToAsk(FMFontId permanentFonts) const {
        return characterMaps.isEmpty() && askedFonts < permanentFonts;
    }
    // Asks them.
    void askPermanentFonts();
    std::vector<FMFontId> fontsCovering(std::uint32_t codePoint);
};
