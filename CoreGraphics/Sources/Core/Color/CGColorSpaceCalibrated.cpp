// CGColorSpaceCalibrated.cpp: spaces defined by their white point.

#include <CoreGraphics/CGColorSpace.h>

#include "Core/Color/CGColorSpaceRecord.h"

#include <algorithm>
#include <array>

namespace {

// Copies as many values as `out` holds; leaves it alone without any.
template <std::size_t count>
void assign(std::array<CGFloat, count>& out, const CGFloat* values) {
    if (values)
        std::copy_n(values, count, out.begin());
}

} // namespace

// A NaN gamma passes: only a negative one is told apart.
CGColorSpaceRef CGColorSpaceCreateCalibratedGray(const CGFloat whitePoint[3],
                                                 const CGFloat blackPoint[3], CGFloat gamma) {
    if (!whitePoint || gamma < 0)
        return nullptr;
    const auto space = cg::createColorSpace(kCGColorSpaceModelMonochrome, 1);
    if (!space)
        return nullptr;
    auto& calibration = space->calibration.emplace<cg::GrayCalibration>();
    assign(calibration.whitePoint, whitePoint);
    assign(calibration.blackPoint, blackPoint);
    calibration.gamma = gamma;
    return space;
}

CGColorSpaceRef CGColorSpaceCreateCalibratedRGB(const CGFloat whitePoint[3],
                                                const CGFloat blackPoint[3], const CGFloat gamma[3],
                                                const CGFloat matrix[9]) {
    if (!whitePoint)
        return nullptr;
    const auto space = cg::createColorSpace(kCGColorSpaceModelRGB, 3);
    if (!space)
        return nullptr;
    auto& calibration = space->calibration.emplace<cg::RGBCalibration>();
    assign(calibration.whitePoint, whitePoint);
    assign(calibration.blackPoint, blackPoint);
    assign(calibration.gamma, gamma);
    assign(calibration.matrix, matrix);
    return space;
}

CGColorSpaceRef CGColorSpaceCreateLab(const CGFloat whitePoint[3], const CGFloat blackPoint[3],
                                      const CGFloat range[4]) {
    if (!whitePoint)
        return nullptr;
    const auto space = cg::createColorSpace(kCGColorSpaceModelLab, 3);
    if (!space)
        return nullptr;
    auto& calibration = space->calibration.emplace<cg::LabCalibration>();
    assign(calibration.whitePoint, whitePoint);
    assign(calibration.blackPoint, blackPoint);
    assign(calibration.range, range);
    return space;
}
