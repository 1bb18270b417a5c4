// FreeType.cpp: a face's own scale.

#include "Face/FreeType.h"

#include FT_TRUETYPE_TABLES_H

namespace fm {

namespace {

uint32_t strikePixelsPerEm(FT_Face face) {
    const FT_Int strike = largestStrike(face);
    if (strike < 0)
        return 1;
    const FT_Bitmap_Size& size = face->available_sizes[strike];
    const FT_Pos pixels = size.y_ppem / 64 > 0 ? size.y_ppem / 64 : size.height;
    return pixels > 0 ? static_cast<uint32_t>(pixels) : 1;
}

} // namespace

uint32_t unitsPerEm(FT_Face face) {
    if (face->units_per_EM > 0)
        return face->units_per_EM;
    const auto* const head = static_cast<const TT_Header*>(FT_Get_Sfnt_Table(face, FT_SFNT_HEAD));
    if (head && head->Units_Per_EM > 0)
        return head->Units_Per_EM;
    return strikePixelsPerEm(face);
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
