// StrikeSize.h: a face's largest strike selected for a scope.
#pragma once

#include "Face/FreeType.h"

#include FT_SIZES_H

namespace fm {

// Measures bitmaps in a size of its own: the size that somebody else set on the face is active
// again afterwards.
class StrikeSize {
public:
    explicit StrikeSize(FT_Face face);
    ~StrikeSize();
    StrikeSize(const StrikeSize&) = delete;
    StrikeSize& operator=(const StrikeSize&) = delete;

    explicit operator bool() const { return selected_; }

    // Font units in a pixel of the strike.
    float horizontalScale() const { return horizontalScale_; }
    float verticalScale() const { return verticalScale_; }

private:
    FT_Size previous_;
    FT_Size size_ = nullptr;
    bool selected_ = false;
    float horizontalScale_ = 1;
    float verticalScale_ = 1;
};

} // namespace fm
