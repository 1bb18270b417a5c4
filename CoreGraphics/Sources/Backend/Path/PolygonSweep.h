// PolygonSweep.h: polygons into triangles, crossings resolved.
#pragma once

#include "PathPolygons.h"
#include "TriangleList.h"

#include <GL/glu.h>

#include <memory>

namespace cg {

// Which way a sweep goes over the polygons that it is given: along x, or along y over polygons that
// were turned by `turned` before.
enum class Sweep { AlongX, AlongY };

// A quarter turn, so that polygons keep their sense.
inline SkPoint turned(SkPoint point) {
    return {point.fY, -point.fX};
}

// GLU's tessellator. Its time grows with the number of corners times the number of contours that
// it has in hand: what can be told apart is better given apart.
class PolygonSweep {
public:
    PolygonSweep(bool evenOdd, TriangleList& triangles);

    // False when memory ran out, here or before.
    bool isGood() const { return tessellator_ && !hasFailed_; }
    void run(const PathPolygons& polygons, Sweep sweep);

private:
    struct Delete {
        void operator()(GLUtesselator* tessellator) const { gluDeleteTess(tessellator); }
    };
    CGPoint place(double s, double t) const;

    static void GLAPIENTRY takeVertex(void* corner, void* self);
    static void GLAPIENTRY takeCrossing(GLdouble place[3], void* corners[4], GLfloat weights[4],
                                        void** corner, void* self);
    static void GLAPIENTRY takeError(GLenum error, void* self);

    std::unique_ptr<GLUtesselator, Delete> tessellator_;
    TriangleList& triangles_;
    Sweep sweep_ = Sweep::AlongX;
    bool hasFailed_ = false;
};

} // namespace cg
