// Paths.h: making and showing paths in tests.
#pragma once

#include "XGPath.h"
#include <CoreFoundation/CFRef.h>

#include "Support/PathText.h"
#include "include/core/SkPath.h"

#include <gtest/gtest.h>

#include <limits>

namespace test {

using Path = cf::Ref<CGPathRef>;
using MutablePath = cf::Ref<CGMutablePathRef>;

inline constexpr float kInfinity = std::numeric_limits<float>::infinity();
inline constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

inline MutablePath makePath() {
    return cf::adopt(CGPathCreateMutable());
}

// One contour over the points, open.
inline MutablePath makeLines(std::initializer_list<CGPoint> points) {
    MutablePath path = makePath();
    CGPathAddLines(path.get(), nullptr, std::data(points), points.size());
    return path;
}

inline MutablePath makeRect(CGRect rect) {
    MutablePath path = makePath();
    CGPathAddRect(path.get(), nullptr, rect);
    return path;
}

inline std::string text(const Path& path) {
    return pathText(path.get());
}
inline std::string text(const MutablePath& path) {
    return pathText(path.get());
}

inline const SkPath& native(CGPathRef path) {
    return *static_cast<const SkPath*>(_CGPathGetNativeObject(path));
}

inline void expectRect(CGRect actual, CGRect expected, float tolerance, const char* what) {
    EXPECT_NEAR(actual.origin.x, expected.origin.x, tolerance) << what;
    EXPECT_NEAR(actual.origin.y, expected.origin.y, tolerance) << what;
    EXPECT_NEAR(actual.size.width, expected.size.width, tolerance) << what;
    EXPECT_NEAR(actual.size.height, expected.size.height, tolerance) << what;
}

} // namespace test
