// FallbackAccess.h: what the library asks of its fallback beyond the class's own members.
#pragma once

#include <FontManager/FMFallback.h>

#include <optional>
#include <vector>

namespace fm {

struct FallbackAccess {
    // A copy of the range that `query` answers, taken before another thread can change it.
    static std::optional<FMFallbackRange> query(FMFallback& fallback, std::uint32_t codePoint);

    // The ids of a set's fonts; empty for a number that no range has.
    static std::vector<FMFontId> fontIdsOf(FMFallback& fallback, std::uint32_t setNumber);

    // Whether permanent fonts are still to be asked what they map. That waits until a code point
    // asks for it, so that processes which need no fallback open no font for it.
    static bool hasPendingWork(FMFallback& fallback);
};

} // namespace fm
