// CGPath.cpp: the path class, and how paths are made, copied and told apart.

#include "CGPathRecord.h"
#include "XGPath.h"
#include <CoreGraphics/CGPath.h>

#include "Core/Context/XGBackend.h"
#include "Core/Object/RuntimeObject.h"
#include "PathElements.h"

#include <bit>

namespace {

// Equal paths share it, so it goes by what equality looks at: -0 and 0 are one.
CFHashCode hashOf(CGPathRef path) {
    CFHashCode hash = path->evenOddFlag;
    const auto mix = [&hash](CFHashCode value) { hash = (hash ^ value) * 0x01000193; };
    for (const uint8_t verb : cg::verbsOf(path->path))
        mix(verb);
    for (const SkPoint& point : cg::pointsOf(path->path)) {
        mix(std::bit_cast<uint32_t>(point.fX + 0.0f));
        mix(std::bit_cast<uint32_t>(point.fY + 0.0f));
    }
    return hash;
}

constexpr CFRuntimeClass kPathClass = {
    .className = "CGPath",
    .copy = cg::copyBy<CGPathCreateCopy>,
    .finalize = cg::finalize<CGPath>,
    .equal = cg::equalBy<CGPathEqualToPath>,
    .hash = cg::hashBy<hashOf>,
};

CGMutablePathRef createCopy(CGPathRef source, const CGAffineTransform* m, uint32_t flags) {
    if (!source)
        return nullptr;
    const CGMutablePathRef copy = cg::createPath(flags);
    if (!copy)
        return nullptr;

    const SkMatrix matrix = m ? cg::skiaMatrix(*m) : SkMatrix::I();
    copy->evenOddFlag = source->evenOddFlag;
    source->path.transform(matrix, &copy->path);
    const bool sharesPoints = matrix.isIdentity();
    if (sharesPoints || !(flags & cg::kPathIsMutable))
        cg::settle(copy->path);
    return copy;
}

} // namespace

CFTypeID CGPathGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kPathClass);
    return id;
}

CGMutablePathRef cg::createPath(uint32_t flags) {
    const CGMutablePathRef path = cg::create<CGPath>(CGPathGetTypeID());
    if (path)
        path->flags = flags;
    return path;
}

CGPathRef CGPathRetain(CGPathRef path) {
    return cg::retain(path);
}
void CGPathRelease(CGPathRef path) {
    cg::release(path);
}

CGMutablePathRef CGPathCreateMutable(void) {
    return cg::createPath(cg::kPathIsMutable);
}

CGPathRef CGPathCreateCopy(CGPathRef path) {
    return createCopy(path, nullptr, 0);
}

CGMutablePathRef CGPathCreateMutableCopy(CGPathRef path) {
    return createCopy(path, nullptr, cg::kPathIsMutable);
}

CGPathRef CGPathCreateCopyByTransformingPath(CGPathRef path, const CGAffineTransform* m) {
    return createCopy(path, m, 0);
}

CGMutablePathRef CGPathCreateMutableCopyByTransformingPath(CGPathRef path,
                                                           const CGAffineTransform* m) {
    return createCopy(path, m, cg::kPathIsMutable);
}

CGMutablePathRef _CGPathCreateReversedPath(CGPathRef path) {
    if (!path)
        return nullptr;
    const CGMutablePathRef reversed = cg::createPath(cg::kPathIsMutable);
    if (reversed)
        reversed->path.reverseAddPath(path->path);
    return reversed;
}

// Deliberate: of two paths with bytes other than 0 and 1 neither is filled even-odd, yet they are
// different paths.
bool CGPathEqualToPath(CGPathRef path1, CGPathRef path2) {
    if (path1 == path2)
        return true;
    return path1 && path2 && path1->evenOddFlag == path2->evenOddFlag && path1->path == path2->path;
}

void _CGPathSetEvenOddFill(CGMutablePathRef path, uint8_t flag) {
    SkPath* const points = cg::editablePoints(path);
    if (!points)
        return;
    path->evenOddFlag = flag;
    points->setFillType(flag == 1 ? SkPathFillType::kEvenOdd : SkPathFillType::kWinding);
}

bool _CGPathIsEvenOddFill(CGPathRef path) {
    return path && path->evenOddFlag == 1;
}

void* _CGPathGetNativeObject(CGPathRef path) {
    return path ? const_cast<SkPath*>(&path->path) : nullptr;
}

void cg::settlePath(CGPathRef path) {
    settle(path->path);
}

void cg::rewindPath(CGMutablePathRef path) {
    if (SkPath* const points = editablePoints(path)) {
        points->rewind();
        path->evenOddFlag = 0;
    }
}
