/* XGPDFEngine: PDFium, which parses and renders PDF documents. It is not linked but loaded when a
 * program asks for it, so that programs without PDF do without. */
#pragma once

#include <CoreGraphics/CGBase.h>

CG_BEGIN_DECLS

/** Loads PDFium, finds the functions that we call, and initialises it: once in a process, whatever
 *  a later call's path. The answer is whether it is there. NULL stands for the adapter that is
 *  installed beside this library. A library that cannot be opened is not worth a
 *  line in the log; one that lacks a function is, with an error that names it. Any thread. */
CG_EXPORT bool _CGPDFLoadPDFiumLibrary(const char* path);
/** Ends PDFium for the rest of the process, if it was loaded. Any thread. */
CG_EXPORT void _CGPDFDestroyPDFiumLibrary(void);

CG_END_DECLS
