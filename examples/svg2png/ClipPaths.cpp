// ClipPaths.cpp: limits drawing to the clip paths of a document.

#include "ClipPaths.h"

#include "Shapes.h"
#include "Text.h"

namespace svg {

namespace {

// The only shape of a clip path that has no other and nothing that needs more than a clip.
const Occurrence* onlyPlainShape(const Interior& shapes) {
    const Occurrence* only = nullptr;
    for (const Occurrence& shape : shapes.children) {
        if (shape.element.name().empty() || !shape.style.isDisplayed || shape.element.is("title"))
            continue;
        if (only || !shape.style.clipPathId.empty() || isContainer(shape))
            return nullptr;
        only = &shape;
    }
    return only && only->style.isVisible ? only : nullptr;
}

} // namespace

void ClipPaths::limitBy(const Occurrence& clipped, const std::string& id, const Chain* chain,
                        const Draw& draw) {
    const Element element = id.empty() ? Element() : scene_.document.find(id);
    if (!element.is("clipPath"))
        return draw();
    for (const Chain* link = chain; link; link = link->outer) {
        if (link->clipPath == element) {
            scene_.report.warn("a clip path that needs itself is left out");
            return draw();
        }
    }
    const Occurrence clipPath = occurFor(scene_, clipped, element);
    const Chain inner = {element, chain};
    limitBy(clipped, clipPath.style.clipPathId, &inner,
            [&] { limitToShapes(clipped, clipPath, inner, draw); });
}

void ClipPaths::limitToShapes(const Occurrence& clipped, const Occurrence& clipPath,
                              const Chain& chain, const Draw& draw) {
    const auto units = spaceOf(clipped, clipPath.element);
    if (!units)
        return;
    const SavedState saved(context_);
    const Interior shapes = interiorOf(scene_, clipPath);
    const Occurrence* only = onlyPlainShape(shapes);
    const Path path = only ? shapePath(*only) : nullptr;
    if (!path) {
        const TransparencyLayer layer(context_);
        draw();
        drawMask(shapes, *units, chain);
        return;
    }
    const auto transform = CGAffineTransformConcat(transformOf(only->element), *units);
    const Path inUserSpace(CGPathCreateMutable());
    CGPathAddPath(inUserSpace.get(), &transform, path.get());
    CGContextAddPath(context_, inUserSpace.get());
    if (only->style.clipRule == FillRule::EvenOdd)
        CGContextEOClip(context_);
    else
        CGContextClip(context_);
    draw();
}

void ClipPaths::drawMask(const Interior& shapes, const CGAffineTransform& transform,
                         const Chain& chain) {
    const SavedState saved(context_);
    CGContextSetBlendMode(context_, kCGBlendModeDestinationIn);
    const TransparencyLayer layer(context_);
    CGContextConcatCTM(context_, transform);
    CGContextSetRGBFillColor(context_, 0, 0, 0, 1);
    for (const Occurrence& shape : shapes.children)
        drawSilhouette(shape, chain);
}

void ClipPaths::drawSilhouette(const Occurrence& shape, const Chain& chain) {
    if (!shape.style.isDisplayed)
        return;
    const SavedState saved(context_);
    CGContextConcatCTM(context_, transformOf(shape.element));
    limitBy(shape, shape.style.clipPathId, &chain, [&] {
        if (const Path path = shapePath(shape)) {
            if (!shape.style.isVisible)
                return;
            CGContextAddPath(context_, path.get());
            if (shape.style.clipRule == FillRule::EvenOdd)
                CGContextEOFillPath(context_);
            else
                CGContextFillPath(context_);
        } else if (shape.element.is("text")) {
            if (shape.style.isVisible)
                drawTextSilhouette(scene_, context_, shape);
        } else if (shape.element.is("use")) {
            const Interior used = interiorOf(scene_, shape);
            CGContextConcatCTM(context_, used.transform);
            for (const Occurrence& child : used.children)
                drawSilhouette(child, chain);
        }
    });
}

// Maps the clip path's shapes into the clipped element's user space; nothing when they are given in
// parts of a bounding box that has no area.
std::optional<CGAffineTransform> ClipPaths::spaceOf(const Occurrence& clipped, Element clipPath) {
    const CGAffineTransform transform = transformOf(clipPath);
    if (unitsOf(clipPath, "clipPathUnits", Units::UserSpace) == Units::UserSpace)
        return transform;
    const CGRect box = boundsOf(scene_, clipped);
    if (CGRectIsEmpty(box))
        return std::nullopt;
    return CGAffineTransformConcat(transform, boxToUserSpace(box));
}

} // namespace svg
