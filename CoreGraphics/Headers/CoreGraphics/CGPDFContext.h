/* CGPDFContext.h: contexts that write PDF files. */
#pragma once

#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGDataConsumer.h>
#include <CoreGraphics/CGPDFDocument.h>
