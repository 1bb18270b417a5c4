/* FMFallback.h: which fonts can draw a code point. C++ only; empty for C, which asks a library
 * (FMLibraryQueryFallback). */
#pragma once

#include <FontManager/FMBase.h>

#if defined(__cplusplus)

#include <CoreFoundation/CFCharacterSet.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#define FM_MEMBER_EXPORT __attribute__((visibility("default")))

/** Code points from `start` up to, not with, `end` that the same fonts map. */
struct FMFallbackRange {
    std::uint32_t start;
    std::uint32_t end;
    std::uint32_t set; /**< The number of those fonts' set; see FMFallback::getFontSet. */
};

namespace fm {
struct FallbackAccess;
}

/** Parts the code points, as they are asked for, into ranges that the same set of fonts covers.
 *
 *  Neighbouring code points of one set join once both have been asked for. Any number of threads
 * may ask. A range that a call answers stays where it is, but a later call may lengthen it or join
 * it to another and end it: threads that share a fallback use FMLibraryQueryFallback, which copies.
 */
class FMFallback {
public:
    using FontList = std::vector<FMFontRef>;
    /** Gives the fonts of a set; the fallback takes over a reference to each of them. Called once
     *  for a set, or when two threads ask at the same time, at most once by each. */
    using FontListCallback = std::function<FontList(std::uint32_t set, FMFallback* fallback)>;

    /** `library`, which is not retained, knows the permanent fonts and their database; NULL where
     *  character maps are all there is to ask. */
    FM_MEMBER_EXPORT FMFallback(FMLibraryRef library, FontListCallback fontListCallback);
    FM_MEMBER_EXPORT ~FMFallback();
    FMFallback(const FMFallback&) = delete;
    FMFallback& operator=(const FMFallback&) = delete;

    /** The range that holds `codePoint`; NULL when no font covers it. */
    FM_MEMBER_EXPORT const FMFallbackRange* query(std::uint32_t codePoint);
    /** The same of code points that have been asked for before, else NULL. */
    FM_MEMBER_EXPORT const FMFallbackRange* _queryCodepoint(std::uint32_t codePoint);
    /** What `query` does about a code point that it meets for the first time. The fonts with
     *  character maps are asked or, where none has any, the library's permanent fonts. */
    FM_MEMBER_EXPORT const FMFallbackRange* _getCharRangeForCodepoint(std::uint32_t codePoint);

    /** Takes in every code point that the font maps, under the font's id. */
    FM_MEMBER_EXPORT void addFontToCharmaps(FMFontRef font);
    /** Writes the character maps to the library's database, which must be in memory: the code
     * points in `charSet`, or all when that is NULL. */
    FM_MEMBER_EXPORT void storeCharmaps(CFCharacterSetRef charSet);
    /** Takes in the character maps that the library's database holds. */
    FM_MEMBER_EXPORT void initWithCharMaps();

    /** The fonts of a set, in the order of their ids; kept until the fallback goes. Empty for a
     *  number that no range has. Ends the process when there is no callback to ask. */
    FM_MEMBER_EXPORT const FontList& getFontSet(std::uint32_t setNumber);

private:
    friend struct fm::FallbackAccess;
    struct State;
    std::unique_ptr<State> state_;
};

#endif
