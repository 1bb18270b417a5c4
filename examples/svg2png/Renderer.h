// Renderer.h: walks a document and draws it.
#pragma once

#include "ClipPaths.h"
#include "Handles.h"
#include "Occurrence.h"

#include <cstddef>

namespace svg {

class Renderer {
public:
    // Draws into a context whose user space has its origin at the top left and y down, one unit to
    // a pixel.
    Renderer(Scene& scene, CGContextRef context)
        : scene_(scene), context_(context), clipPaths_(scene, context) {}

    void draw(const Occurrence& occurrence);

private:
    void drawGroup(const Occurrence& occurrence, CGPathRef path);
    void drawContent(const Occurrence& occurrence, CGPathRef path, double opacity);
    void drawInterior(const Occurrence& occurrence);

    Scene& scene_;
    CGContextRef context_;
    ClipPaths clipPaths_;
};

// A bitmap to draw into, 32-bit BGRA premultiplied, transparent, its user space's origin at the
// bottom left. NULL when there is no memory for it.
Context makeBitmap(std::size_t width, std::size_t height);

// A picture of the document that fills width × height pixels, 32-bit BGRA premultiplied, top row
// first. NULL when there is no memory for it.
Context render(const Document& document, std::size_t width, std::size_t height, Report& report);

} // namespace svg
