// FreeType.cpp: a face's own scale.

#include "Face/FreeType.h"

#include FT_TRUETYPE_TABLES_H

namespace fm {

namespace {

// Rounded as FreeType rounds the sizes that it selects.
uint32_t firstStrikePixelsPerEm(FT_Face face) {
    const FT_Pos pixels =
        face->num_fixed_sizes > 0 ? (face->available_sizes[0].y_ppem + 32) / 64 : 0;
    return pixels > 0 && pixels <= 0xFFFF ? static_cast<uint32_t>(pixels) : 1;
}

} // namespace

uint32_t unitsPerEm(FT_Face face) {
    if (face->units_per_EM > 0)
        return face->units_per_EM;
    const auto* const head = static_cast<const TT_Header*>(FT_Get_Sfnt_Table(face, FT_SFNT_HEAD));
    if (head && head->Units_Per_EM > 0)
        return head->Units_Per_EM;
    return firstStrikePixelsPerEm(face);
}

FT_Int largestStrike(FT_Face face) {
    FT_Int largest = -1;
    for (FT_Int i = 0; i < face->num_fixed_sizes; ++i)
        if (largest < 0 || face->available_sizes[i].y_ppem > face->available_sizes[largest].y_ppem)
            largest = i;
    return largest;
}

bool hasHorizontalMetrics(FT_Face face) {
    return FT_IS_SFNT(face) && FT_Get_Sfnt_Table(face, FT_SFNT_HHEA);
}

} // namespace fm
