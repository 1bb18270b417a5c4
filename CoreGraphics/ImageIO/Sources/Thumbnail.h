// Thumbnail.h: small copies of images.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGImage.h>

#include <cstdint>

namespace imageio {

// A copy of `image` whose longer side has at most `mostPixels`, each pixel the mean of those that
// it covers, turned upright from `orientation`. In the image's own space if that is one of RGB.
// Nothing when the image's pixels cannot be read.
cf::Ref<CGImageRef> makeThumbnail(CGImageRef image, std::size_t mostPixels,
                                  std::uint32_t orientation);

} // namespace imageio
