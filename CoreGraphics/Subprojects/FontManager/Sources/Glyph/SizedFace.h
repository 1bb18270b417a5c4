// SizedFace.h: a face at a size and transform of the renderer's own, for a scope.
#pragma once

#include "Glyph/GlyphKey.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_SIZES_H

#include <cstdint>

namespace fm {

// The face's own size comes back with the scope's end, and it has no transform: other users of the
// face need not know of this one. The font is locked meanwhile.
class SizedFace {
public:
    // At `key.size`, with its transform and place.
    SizedFace(FT_Face face, const GlyphKey& key);
    // At the strike of pixels that comes nearest, without a transform.
    struct Strike {};
    SizedFace(FT_Face face, const GlyphKey& key, Strike);
    ~SizedFace();
    SizedFace(const SizedFace&) = delete;
    SizedFace& operator=(const SizedFace&) = delete;

    explicit operator bool() const { return isReady_; }

private:
    FT_Face face_;
    FT_Size before_;
    bool isReady_ = false;
};

// The pixels per em, in 1/64, of the smallest strike that is no smaller than `size`, else of the
// largest; `index` receives its place. The face has strikes.
std::int32_t nearestStrike(FT_Face face, std::int32_t size, FT_Int& index);

} // namespace fm
