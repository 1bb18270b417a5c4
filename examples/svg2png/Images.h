// Images.h: the image files that a document shows.
#pragma once

#include "Handles.h"
#include "Occurrence.h"

namespace svg {

// Draws an image element: a file beside the document's own, or one in a "data" URL, of any format
// that image sources read.
void drawImage(Scene& scene, CGContextRef context, const Occurrence& occurrence);

} // namespace svg
