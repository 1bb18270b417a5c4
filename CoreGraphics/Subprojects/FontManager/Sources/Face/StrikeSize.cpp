// StrikeSize.cpp: selecting a face's largest strike.

#include "Face/StrikeSize.h"

namespace fm {

namespace {

float unitsPerPixel(FT_Face face, FT_UShort pixelsPerEm) {
    return pixelsPerEm > 0 ? static_cast<float>(unitsPerEm(face)) / pixelsPerEm : 1;
}

} // namespace

StrikeSize::StrikeSize(FT_Face face) : previous_(face->size) {
    const FT_Int strike = largestStrike(face);
    if (strike < 0 || FT_New_Size(face, &size_))
        return;
    selected_ = !FT_Activate_Size(size_) && !FT_Select_Size(face, strike);
    if (selected_) {
        horizontalScale_ = unitsPerPixel(face, size_->metrics.x_ppem);
        verticalScale_ = unitsPerPixel(face, size_->metrics.y_ppem);
    }
}

StrikeSize::~StrikeSize() {
    if (!size_)
        return;
    if (previous_)
        FT_Activate_Size(previous_);
    FT_Done_Size(size_);
}

} // namespace fm
