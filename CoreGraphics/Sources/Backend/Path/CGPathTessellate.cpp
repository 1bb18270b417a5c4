// CGPathTessellate.cpp: a path's inside as triangles.

#include "CGPathRecord.h"
#include "XGPath.h"
#include <CoreGraphics/CGPath.h>

#include "Core/Object/Diagnostics.h"
#include "PathFlattening.h"

#include <GL/glu.h>

#include <cfloat>
#include <cmath>
#include <memory>
#include <vector>

// Half a unit is hardly seen where a unit is a pixel.
double _CGPathDefaultTessellateTolerance = 0.5;

namespace {

constexpr std::size_t kTrianglesInBatch = 1024;

// Gathers triangles into batches for the caller. A corner that several triangles of a batch share
// is handed over once.
class Batches {
public:
    Batches(XGPathTessellateFunction function, void* info) : function_(function), info_(info) {}

    std::uint32_t addCorner(CGPoint point) {
        corners_.push_back({.point = point});
        return static_cast<std::uint32_t>(corners_.size() - 1);
    }
    CGPoint point(std::uint32_t corner) const { return corners_[corner].point; }

    // Three calls make a triangle.
    void useCorner(std::uint32_t corner) {
        Corner& used = corners_[corner];
        if (used.batch != batch_) {
            used.batch = batch_;
            used.index = static_cast<std::uint32_t>(vertices_.size());
            vertices_.push_back(used.point);
            grow(used.point);
        }
        indices_.push_back(used.index);
        if (indices_.size() == 3 * kTrianglesInBatch)
            flush();
    }

    void flush() {
        if (!indices_.empty())
            function_(info_, vertices_.data(), vertices_.size(), indices_.data(), indices_.size());
        vertices_.clear();
        indices_.clear();
        ++batch_;
    }

    // What was handed over so far is not all.
    void fail() { hasFailed_ = true; }
    bool hasFailed() const { return hasFailed_; }

    CGRect bounds() const {
        if (left_ > right_)
            return CGRectNull;
        return {{left_, bottom_}, {right_ - left_, top_ - bottom_}};
    }

private:
    struct Corner {
        CGPoint point = {0, 0};
        std::uint32_t batch = 0; // The last one that it was handed over with, and its place there.
        std::uint32_t index = 0;
    };

    void grow(CGPoint point) {
        left_ = std::min(left_, point.x);
        right_ = std::max(right_, point.x);
        bottom_ = std::min(bottom_, point.y);
        top_ = std::max(top_, point.y);
    }

    XGPathTessellateFunction function_;
    void* info_;
    std::vector<Corner> corners_;
    std::vector<CGPoint> vertices_;
    std::vector<std::uint32_t> indices_;
    std::uint32_t batch_ = 1;
    bool hasFailed_ = false;
    CGFloat left_ = FLT_MAX, bottom_ = FLT_MAX, right_ = -FLT_MAX, top_ = -FLT_MAX;
};

// ---- The sweep, by GLU

// GLU hands corners' data back as pointers; ours are their numbers.
void* toData(std::uint32_t corner) {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(corner));
}
std::uint32_t toCorner(void* data) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(data));
}
Batches& toBatches(void* data) {
    return *static_cast<Batches*>(data);
}

void GLAPIENTRY takeVertex(void* corner, void* batches) {
    toBatches(batches).useCorner(toCorner(corner));
}

// Edges cross here, or corners lie in one place.
void GLAPIENTRY takeCrossing(GLdouble place[3], void* corners[4], GLfloat weights[4], void** corner,
                             void* batches) {
    (void)corners;
    (void)weights;
    *corner = toData(toBatches(batches).addCorner(
        {static_cast<CGFloat>(place[0]), static_cast<CGFloat>(place[1])}));
}

// Memory ran out: nothing else can go wrong with points that are finite.
void GLAPIENTRY takeError(GLenum, void* batches) {
    toBatches(batches).fail();
}

// To be told of edges makes GLU deliver triangles alone, no fans and strips.
void GLAPIENTRY ignoreEdge(GLboolean) {}

struct DeleteTessellator {
    void operator()(GLUtesselator* tessellator) const { gluDeleteTess(tessellator); }
};
using Tessellator = std::unique_ptr<GLUtesselator, DeleteTessellator>;

template <typename Function>
void setCallback(GLUtesselator* tessellator, GLenum which, Function function) {
    gluTessCallback(tessellator, which, reinterpret_cast<_GLUfuncptr>(function));
}

Tessellator makeTessellator(bool evenOdd) {
    Tessellator tessellator(gluNewTess());
    if (!tessellator)
        return nullptr;
    gluTessNormal(tessellator.get(), 0, 0, 1); // Else it would be guessed from the corners.
    gluTessProperty(tessellator.get(), GLU_TESS_WINDING_RULE,
                    evenOdd ? GLU_TESS_WINDING_ODD : GLU_TESS_WINDING_NONZERO);
    setCallback(tessellator.get(), GLU_TESS_VERTEX_DATA, takeVertex);
    setCallback(tessellator.get(), GLU_TESS_COMBINE_DATA, takeCrossing);
    setCallback(tessellator.get(), GLU_TESS_ERROR_DATA, takeError);
    setCallback(tessellator.get(), GLU_TESS_EDGE_FLAG, ignoreEdge);
    return tessellator;
}

// Takes polygons from the flattener to GLU.
class Polygons {
public:
    Polygons(GLUtesselator* tessellator, Batches& batches)
        : tessellator_(tessellator), batches_(batches) {
        gluTessBeginPolygon(tessellator_, &batches_);
    }

    void beginContour() {
        endContour();
        gluTessBeginContour(tessellator_);
        isOpen_ = true;
    }
    void add(SkPoint point) {
        GLdouble place[3] = {point.fX, point.fY, 0};
        gluTessVertex(tessellator_, place, toData(batches_.addCorner({point.fX, point.fY})));
    }
    void end() {
        endContour();
        gluTessEndPolygon(tessellator_);
        if (!batches_.hasFailed())
            batches_.flush();
    }

private:
    void endContour() {
        if (isOpen_)
            gluTessEndContour(tessellator_);
        isOpen_ = false;
    }

    GLUtesselator* tessellator_;
    Batches& batches_;
    bool isOpen_ = false;
};

bool failForMemory(CGPathRef path) {
    CG_LOG_ERROR("no memory to tessellate [%p]", static_cast<const void*>(path));
    return false;
}

} // namespace

bool _CGPathTessellate(CGPathRef path, uint32_t fillRule, double tolerance,
                       XGPathTessellateFunction function, void* info, CGRect* bounds) {
    if (bounds)
        *bounds = CGRectNull;
    if (!path || !function)
        return false;
    CG_BUG_UNLESS(fillRule == kXGPathFillWinding || fillRule == kXGPathFillEvenOdd);
    if (!path->path.isFinite())
        return false;
    const SkPath filled = path->path; // The caller's function may change the path.
    const Tessellator tessellator = makeTessellator(fillRule == kXGPathFillEvenOdd);
    if (!tessellator)
        return failForMemory(path);
    Batches batches(function, info);
    Polygons polygons(tessellator.get(), batches);
    double wanted = tolerance > 0 ? tolerance : _CGPathDefaultTessellateTolerance;
    if (!(wanted > 0))
        wanted = 0.5; // A default that somebody made useless.
    cg::PathFlattener flattener(wanted, polygons);
    flattener.flatten(filled);
    polygons.end();
    if (batches.hasFailed())
        return failForMemory(path);
    if (bounds)
        *bounds = batches.bounds();
    return true;
}
