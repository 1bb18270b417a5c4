/* CGPDFDocument.h: PDF files. */
#pragma once

#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGGeometry.h>

CG_BEGIN_DECLS

typedef struct CGPDFDocument* CGPDFDocumentRef;

CG_END_DECLS
