// ImageSampling.cpp: interpolation qualities as Skia's sampling options.

#include "Backend/Raster/ImageSampling.h"

#include "include/core/SkSize.h"

namespace cg {

namespace {

bool reduces(const SkMatrix& toPixels) {
    SkSize scale;
    return toPixels.decomposeScale(&scale) && (scale.width() < 1 || scale.height() < 1);
}

} // namespace

SkSamplingOptions samplingFor(CGInterpolationQuality quality, const SkMatrix& toPixels) {
    switch (quality) {
    case kCGInterpolationNone:
        return SkSamplingOptions(SkFilterMode::kNearest);
    case kCGInterpolationDefault:
    case kCGInterpolationMedium:
        return SkSamplingOptions(SkFilterMode::kLinear,
                                 reduces(toPixels) ? SkMipmapMode::kNearest : SkMipmapMode::kNone);
    case kCGInterpolationHigh:
        return reduces(toPixels) ? SkSamplingOptions(SkFilterMode::kLinear, SkMipmapMode::kLinear)
                                 : SkSamplingOptions(SkCubicResampler::CatmullRom());
    default:
        return SkSamplingOptions(SkFilterMode::kLinear);
    }
}

} // namespace cg
