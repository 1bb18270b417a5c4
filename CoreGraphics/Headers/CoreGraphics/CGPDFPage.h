/* CGPDFPage.h: the pages of a PDF file. */
#pragma once

#include <CoreGraphics/CGPDFDocument.h>

CG_BEGIN_DECLS

typedef struct CGPDFPage* CGPDFPageRef;

/** The boxes of a page (ISO 32000-1, 14.11.2). */
CG_ENUM(int32_t, CGPDFBox) {
    kCGPDFMediaBox = 0,
    kCGPDFCropBox = 1,
    kCGPDFBleedBox = 2,
    kCGPDFTrimBox = 3,
    kCGPDFArtBox = 4
};

CG_END_DECLS
