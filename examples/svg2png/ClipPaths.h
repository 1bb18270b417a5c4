// ClipPaths.h: limits drawing to the clip paths of a document.
#pragma once

#include "Handles.h"
#include "Occurrence.h"

#include <functional>

namespace svg {

// A clip path that is one shape becomes the context's clip. The drawing interface can only narrow a
// clip, so that several shapes, which are meant to add up, and shapes that are clipped themselves
// become a mask instead: the content is drawn into a transparency layer of its own, and the united
// shapes are put over it in a mode that keeps of the content what they cover.
class ClipPaths {
public:
    using Draw = std::function<void()>;

    ClipPaths(Scene& scene, CGContextRef context) : scene_(scene), context_(context) {}

    // Calls `draw` so that it leaves marks only inside the element's clip path, if it has one. The
    // context's user space is the element's.
    void limit(const Occurrence& clipped, const Draw& draw) {
        limitBy(clipped, clipped.style.clipPathId, nullptr, draw);
    }

private:
    // The clip paths that are being worked out, innermost first: none may need itself.
    struct Chain {
        Element clipPath;
        const Chain* outer = nullptr;
    };

    void limitBy(const Occurrence& clipped, const std::string& id, const Chain* chain,
                 const Draw& draw);
    void limitToShapes(const Occurrence& clipped, const Occurrence& clipPath, const Chain& chain,
                       const Draw& draw);
    void drawMask(const Interior& shapes, const CGAffineTransform& transform, const Chain& chain);
    void drawSilhouette(const Occurrence& shape, const Chain& chain);
    std::optional<CGAffineTransform> spaceOf(const Occurrence& clipped, Element clipPath);

    Scene& scene_;
    CGContextRef context_;
};

} // namespace svg
