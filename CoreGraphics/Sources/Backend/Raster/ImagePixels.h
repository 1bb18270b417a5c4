// ImagePixels.h: an image's pixels as Skia reads them.
#pragma once

#include <CoreGraphics/CGImage.h>

#include "Core/Image/DrawablePixels.h"
#include "include/core/SkBitmap.h"
#include "include/core/SkPixmap.h"
#include "include/core/SkSize.h"

#include <optional>

namespace cg {

class ImageCache;

// Keeps the image's bytes reachable while it lives, which is not longer than the image.
class ImagePixels {
public:
    // The pixels in the destination's colours. Nothing when they cannot be read.
    static std::optional<ImagePixels> of(CGImageRef image, CGColorSpaceRef destination,
                                         CGColorRenderingIntent intent);

    const SkPixmap& pixmap() const { return pixmap_; }
    // The same as a bitmap that is kept with the image; NULL where there is none.
    const SkBitmap* bitmap() const;
    // Whether the pixels say only how much of a colour is let through.
    bool isCoverage() const { return pixmap_.colorType() == kAlpha_8_SkColorType; }
    // The picture halved as often as brings it nearest to `scale` times its size. The halves are
    // kept with the image; nothing where there is nowhere to keep them.
    std::optional<SkPixmap> halved(SkSize scale) const;

private:
    explicit ImagePixels(DrawablePixels drawable);
    bool makeOpaque();

    DrawablePixels drawable_;
    SkPixmap pixmap_;
    ImageCache* cache_ = nullptr; // The image's; NULL for pixels that it is not about.
    SkBitmap opaque_; // A copy, where the unused bytes of pixels would be taken for opacity.
};

} // namespace cg
