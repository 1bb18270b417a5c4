// Coverage.h: the code points that a face maps, as ranges and as a character set.
#pragma once

#include <CoreFoundation/CFCharacterSet.h>
#include <CoreFoundation/CFRef.h>

#include "Face/FreeType.h"

namespace fm {

// Visits the runs of consecutive code points that the face's charmap gives glyphs to, in ascending
// order. A charmap of a broken font may claim four thousand million of them: what lies beyond
// Unicode is left out.
template <typename Visit>
void forEachMappedRange(FT_Face face, Visit visit) {
    constexpr FT_ULong kLast = 0x10FFFF;
    FT_UInt glyph = 0;
    FT_ULong next = FT_Get_First_Char(face, &glyph);
    while (glyph != 0 && next <= kLast) {
        const FT_ULong first = next;
        FT_ULong last = next;
        while ((next = FT_Get_Next_Char(face, last, &glyph)) == last + 1 && glyph != 0 &&
               next <= kLast)
            last = next;
        visit(static_cast<uint32_t>(first), static_cast<uint32_t>(last));
        if (next <= last)
            return;
    }
}

// An immutable set, empty for a face without a charmap; none when memory runs out.
cf::Ref<CFCharacterSetRef> copyCharacterSet(FT_Face face);

} // namespace fm
