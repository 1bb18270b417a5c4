// Shapes.h: the outlines of the elements that have one.
#pragma once

#include "Handles.h"
#include "Occurrence.h"

namespace svg {

// The outline of a path or a basic shape, in its own user space. NULL for any other element and for
// shapes that draw nothing (a rectangle of no width).
Path shapePath(const Occurrence& occurrence);

} // namespace svg
