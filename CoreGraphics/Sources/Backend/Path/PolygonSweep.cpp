// PolygonSweep.cpp: GLU's tessellator and its callbacks.

#include "PolygonSweep.h"

namespace {

// GLU hands corners' data back as pointers; ours are their numbers.
void* toData(std::uint32_t corner) {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(corner));
}
std::uint32_t toCorner(void* data) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(data));
}

// To be told of edges makes GLU deliver triangles alone, no fans and strips.
void GLAPIENTRY ignoreEdge(GLboolean) {}

template <typename Function>
void setCallback(GLUtesselator* tessellator, GLenum which, Function function) {
    gluTessCallback(tessellator, which, reinterpret_cast<_GLUfuncptr>(function));
}

} // namespace

cg::PolygonSweep::PolygonSweep(bool evenOdd, TriangleList& triangles)
    : tessellator_(gluNewTess()), triangles_(triangles) {
    GLUtesselator* const tessellator = tessellator_.get();
    if (!tessellator)
        return;
    gluTessNormal(tessellator, 0, 0, 1); // Else it would be guessed from the corners.
    gluTessProperty(tessellator, GLU_TESS_WINDING_RULE,
                    evenOdd ? GLU_TESS_WINDING_ODD : GLU_TESS_WINDING_NONZERO);
    setCallback(tessellator, GLU_TESS_VERTEX_DATA, takeVertex);
    setCallback(tessellator, GLU_TESS_COMBINE_DATA, takeCrossing);
    setCallback(tessellator, GLU_TESS_ERROR_DATA, takeError);
    setCallback(tessellator, GLU_TESS_EDGE_FLAG, ignoreEdge);
}

void cg::PolygonSweep::run(const PathPolygons& polygons, Sweep sweep) {
    GLUtesselator* const tessellator = tessellator_.get();
    sweep_ = sweep;
    gluTessBeginPolygon(tessellator, this);
    for (std::size_t index = 0; index < polygons.contourCount(); ++index) {
        gluTessBeginContour(tessellator);
        for (const SkPoint point : polygons.contour(index)) {
            GLdouble coordinates[3] = {point.fX, point.fY, 0};
            gluTessVertex(tessellator, coordinates,
                          toData(triangles_.addCorner(place(coordinates[0], coordinates[1]))));
        }
        gluTessEndContour(tessellator);
    }
    gluTessEndPolygon(tessellator);
}

CGPoint cg::PolygonSweep::place(double s, double t) const {
    const auto x = static_cast<CGFloat>(s), y = static_cast<CGFloat>(t);
    return sweep_ == Sweep::AlongX ? CGPoint{x, y} : CGPoint{-y, x};
}

void GLAPIENTRY cg::PolygonSweep::takeVertex(void* corner, void* self) {
    static_cast<PolygonSweep*>(self)->triangles_.useCorner(toCorner(corner));
}

// Edges cross here, or corners lie in one place.
void GLAPIENTRY cg::PolygonSweep::takeCrossing(GLdouble place[3], void* corners[4],
                                               GLfloat weights[4], void** corner, void* self) {
    (void)corners;
    (void)weights;
    auto& sweep = *static_cast<PolygonSweep*>(self);
    *corner = toData(sweep.triangles_.addCorner(sweep.place(place[0], place[1])));
}

// Memory ran out: nothing else can go wrong with points that are finite.
void GLAPIENTRY cg::PolygonSweep::takeError(GLenum, void* self) {
    static_cast<PolygonSweep*>(self)->hasFailed_ = true;
}
