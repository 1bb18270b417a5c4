// PatternShaders.h: patterns as Skia's shaders, with the pixels of those used last.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGAffineTransform.h>

#include "Backend/Raster/PatternCells.h"
#include "Backend/Raster/PatternTile.h"
#include "include/core/SkRect.h"
#include "include/core/SkShader.h"

#include <array>
#include <cstdint>
#include <vector>

namespace cg {

// Keeps few tiles, and neither patterns nor colours alive. Used on one context's thread alone.
class PatternShaders {
public:
    // What paints with the pattern, opaque as its cells are, over a surface's rows and columns to
    // which `patternToPixels` maps pattern space. It is right inside `clip`. NULL when it has not
    // been made.
    sk_sp<SkShader> find(const PatternInk& ink, const CGAffineTransform& patternToPixels,
                         const SkIRect& clip);
    // The same, made if need be, for which the pattern's callback may be called. NULL where nothing
    // is to be painted, with a line in the log if that is an error.
    sk_sp<SkShader> make(const PatternInk& ink, const CGAffineTransform& patternToPixels,
                         const SkIRect& clip);

private:
    // What the colour of a cell depends on.
    struct Colors {
        explicit Colors(const PatternInk& ink);
        bool areThoseOf(const PatternInk& ink) const;

        std::uint64_t pattern;
        cf::Ref<CGColorSpaceRef> space;         // Of an uncoloured pattern.
        std::array<CGFloat, 8> components = {}; // Without the opacity.
    };

    // How a pattern's pixels are made for a matrix and a clip.
    struct Plan {
        SkMatrix drawn;      // What the pixels depend on: for tiles, where they lie is left out.
        bool isTile = false; // Else they show all that the clip lets through.
        TileAxis x, y;
        SkMatrix pixelsToSurface; // For the shader.
        bool dependsOnClip = false;
    };

    struct Entry {
        Colors colors;
        Plan plan;
        SkBitmap pixels;
        sk_sp<SkShader> shader;
        CGAffineTransform matrix; // For which the shader was made.
        SkIRect clip;             // The same, where the plan depends on it.
    };

    static Plan planFor(const PatternGrid& grid, const SkMatrix& matrix, const SkIRect& clip);
    static bool haveSamePixels(const Plan& a, const SkIRect& clipOfA, const Plan& b,
                               const SkIRect& clipOfB);
    void keep(Entry entry);

    std::vector<Entry> entries_; // Used last, first.
};

} // namespace cg
