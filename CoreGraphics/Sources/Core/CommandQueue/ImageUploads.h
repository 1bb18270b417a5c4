// ImageUploads.h: images that the graphics processor has copies of.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGImage.h>

#include <cstdint>

namespace cg {

// The image that was tracked under a key, or none.
cf::Ref<CGImageRef> uploadedImage(std::uint32_t key);

} // namespace cg
