// FaceUse.h: a font's face for a scope: the font is locked and its face open meanwhile.
#pragma once

#include "Font/FMFontRecord.h"

#include <mutex>

namespace fm {

// With `const fm::FaceUse use(font);` the face is at hand for as long as `use` lives. A NULL font
// has no face.
class FaceUse {
public:
    explicit FaceUse(FMFontRef font) {
        if (!font)
            return;
        hold_ = std::unique_lock(font->mutex);
        face_ = openFace(*font);
    }
    explicit FaceUse(FMFont& font) : FaceUse(&font) {}
    FaceUse(const FaceUse&) = delete;
    FaceUse& operator=(const FaceUse&) = delete;

    explicit operator bool() const { return face_ != nullptr; }
    // NULL where it cannot be opened.
    FT_Face face() const { return face_; }

private:
    std::unique_lock<RecursiveMutex> hold_;
    FT_Face face_ = nullptr;
};

} // namespace fm
