// CGContextPathTest.cpp: the current path and what it answers.

#include "XGPath.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Core/Context/CGContextRecord.h"
#include "Support/CollectedLog.h"
#include "Support/PathText.h"
#include "Support/RecordingBackend.h"

#include <gtest/gtest.h>

#include <limits>

using test::pathText;
using test::RecordingBackend;

namespace {

std::string current(const RecordingBackend& backend) {
    return pathText(backend.context()->path.get());
}

TEST(ContextPath, MapsPointsWhenTheyAreAdded) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CGContextScaleCTM(c, 2, 3);
    CGContextMoveToPoint(c, 1, 1);
    CGContextScaleCTM(c, 10, 10);
    CGContextAddLineToPoint(c, 1, 1);
    EXPECT_EQ(current(backend), "M 2 3 L 20 30");
    const auto copy = cf::adopt(CGContextCopyPath(c));
    EXPECT_EQ(pathText(copy.get()), "M 0.1 0.1 L 1 1") << "in the user space of now";
}

TEST(ContextPath, ArcsStartAPathOrJoinIt) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CGContextAddArc(c, 0, 0, 1, 0, 1.5707964f, 0);
    EXPECT_EQ(current(backend).substr(0, 8), "M 1 0 C ");
    EXPECT_NEAR(CGContextGetPathCurrentPoint(c).y, 1, 1e-6);
    CGContextAddArcToPoint(c, 0, 5, 5, 5, 1);
    EXPECT_NEAR(CGContextGetPathCurrentPoint(c).x, 1, 1e-5);
    EXPECT_NEAR(CGContextGetPathCurrentPoint(c).y, 5, 1e-5);
    CGContextBeginPath(c);
    CGContextAddEllipseInRect(c, CGRectMake(0, 0, 2, 2));
    EXPECT_TRUE(CGRectEqualToRect(CGContextGetPathBoundingBox(c), CGRectMake(0, 0, 2, 2)));
}

TEST(ContextPath, WarnsOfSegmentsWithoutACurrentPoint) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CollectedLog log;
    CGContextAddLineToPoint(c, 1, 1);
    CGContextAddQuadCurveToPoint(c, 1, 1, 2, 2);
    CGContextAddCurveToPoint(c, 1, 1, 2, 2, 3, 3);
    CGContextAddArcToPoint(c, 1, 1, 2, 2, 3);
    CGContextClosePath(c);
    EXPECT_TRUE(CGContextIsPathEmpty(c));
    EXPECT_EQ(log.lines().size(), 4u) << "closing nothing needs no warning";
    EXPECT_EQ(log.lines()[0], "4 CGContextAddLineToPoint: no current point to go on from");
}

TEST(ContextPath, ContainsWhatEachModeWouldCover) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CGContextScaleCTM(c, 2, 2);
    CGContextSetLineWidth(c, 2);
    CGContextAddRect(c, CGRectMake(0, 0, 12, 12));
    CGContextAddRect(c, CGRectMake(4, 4, 4, 4));
    const struct {
        const char* what;
        CGPoint point;
        bool fill, evenOdd, stroke;
    } cases[] = {
        {"between the two", {2, 2}, true, true, false},
        {"in both", {6, 6}, true, false, false},
        {"on the outer line, outside", {-0.5f, 6}, false, false, true},
        {"on the inner line, inside", {4.5f, 6}, true, false, true},
        {"far", {20, 20}, false, false, false},
    };
    for (const auto& [what, point, fill, evenOdd, stroke] : cases) {
        EXPECT_EQ(CGContextPathContainsPoint(c, point, kCGPathFill), fill) << what;
        EXPECT_EQ(CGContextPathContainsPoint(c, point, kCGPathEOFill), evenOdd) << what;
        EXPECT_EQ(CGContextPathContainsPoint(c, point, kCGPathStroke), stroke) << what;
        EXPECT_EQ(CGContextPathContainsPoint(c, point, kCGPathFillStroke), fill || stroke) << what;
        EXPECT_EQ(CGContextPathContainsPoint(c, point, kCGPathEOFillStroke), evenOdd || stroke)
            << what;
    }
}

TEST(ContextPath, HasNoCopyUnderATransformWithoutAnInverse) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CGContextScaleCTM(c, 0, 1);
    CGContextAddRect(c, CGRectMake(0, 0, 1, 1));
    EXPECT_EQ(CGContextCopyPath(c), nullptr);
    EXPECT_TRUE(CGRectIsNull(CGContextGetPathBoundingBox(c)));
}

TEST(ContextPath, CopiesDoNotSeeTheStorageUsedAgain) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CGContextAddRect(c, CGRectMake(0, 0, 1, 1));
    const auto copy = cf::adopt(CGContextCopyPath(c));
    CGContextFillPath(c);
    CGContextMoveToPoint(c, 5, 5);
    EXPECT_EQ(current(backend), "M 5 5");
    EXPECT_EQ(pathText(copy.get()), "M 0 0 L 1 0 L 1 1 L 0 1 Z");
}

// ---- Stroked outlines

TEST(StrokedPath, IsTheOutlineOfTheLine) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CGContextSetLineWidth(c, 2);
    CGContextMoveToPoint(c, 0, 0);
    CGContextAddLineToPoint(c, 10, 0);
    CGContextReplacePathWithStrokedPath(c);
    EXPECT_TRUE(CGRectEqualToRect(CGContextGetPathBoundingBox(c), CGRectMake(0, -1, 10, 2)));
    CGContextAddLineToPoint(c, 20, 20);
    EXPECT_EQ(CGContextGetPathCurrentPoint(c).x, 20) << "and can be added to";
}

TEST(StrokedPath, HasThePenOfUserSpace) {
    const struct {
        const char* what;
        CGAffineTransform ctm;
        CGRect expected; // Of the line (0, 0) to (10, 0), 2 wide, in device space.
    } cases[] = {
        {"identity", {1, 0, 0, 1, 0, 0}, {{0, -1}, {10, 2}}},
        {"scaled", {3, 0, 0, 3, 1, 1}, {{1, -2}, {30, 6}}},
        {"mirrored", {3, 0, 0, -3, 0, 0}, {{0, -3}, {30, 6}}},
        {"turned", {0, 3, -3, 0, 0, 0}, {{-3, 0}, {6, 30}}},
        {"stretched", {3, 0, 0, 5, 0, 0}, {{0, -5}, {30, 10}}},
        {"stretched, far off", {300, 0, 0, 5, 1000, 1000}, {{1000, 995}, {3000, 10}}},
        {"skewed", {1, 0, 1, 1, 0, 0}, {{-1, -1}, {12, 2}}},
    };
    for (const auto& [what, ctm, expected] : cases) {
        RecordingBackend backend;
        const CGContextRef c = backend.context();
        CGContextConcatCTM(c, ctm);
        CGContextSetLineWidth(c, 2);
        CGContextMoveToPoint(c, 0, 0);
        CGContextAddLineToPoint(c, 10, 0);
        CGContextReplacePathWithStrokedPath(c);
        const CGRect bounds = CGPathGetBoundingBox(c->path.get());
        const CGFloat tolerance = 1e-3f;
        EXPECT_NEAR(CGRectGetMinX(bounds), CGRectGetMinX(expected), tolerance) << what;
        EXPECT_NEAR(CGRectGetMinY(bounds), CGRectGetMinY(expected), tolerance) << what;
        EXPECT_NEAR(CGRectGetMaxX(bounds), CGRectGetMaxX(expected), tolerance) << what;
        EXPECT_NEAR(CGRectGetMaxY(bounds), CGRectGetMaxY(expected), tolerance) << what;
    }
}

TEST(StrokedPath, VanishesUnderATransformWithoutAnInverse) {
    const auto nan = std::numeric_limits<CGFloat>::quiet_NaN();
    for (const CGAffineTransform& ctm :
         {CGAffineTransform{0, 0, 0, 0, 0, 0}, {1, 0, 0, 0, 0, 0}, {nan, 0, 0, nan, 0, 0}}) {
        RecordingBackend backend;
        const CGContextRef c = backend.context();
        CGContextConcatCTM(c, ctm);
        CGContextMoveToPoint(c, 0, 0);
        CGContextAddLineToPoint(c, 10, 0);
        CGContextReplacePathWithStrokedPath(c);
        EXPECT_TRUE(CGContextIsPathEmpty(c));
    }
}

TEST(StrokedPath, NeedsAPath) {
    RecordingBackend backend;
    CGContextReplacePathWithStrokedPath(backend.context());
    EXPECT_TRUE(CGContextIsPathEmpty(backend.context()));
}

} // namespace
