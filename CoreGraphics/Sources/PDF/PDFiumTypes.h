/* PDFiumTypes.h: the types in PDFium's interface, which is C. They are declared here because no
 * package brings its headers. */
#pragma once

typedef struct PDFiumAction* FPDF_ACTION;
typedef struct PDFiumBitmap* FPDF_BITMAP;
typedef struct PDFiumDest* FPDF_DEST;
typedef struct PDFiumDocument* FPDF_DOCUMENT;
typedef struct PDFiumLink* FPDF_LINK;
typedef struct PDFiumPage* FPDF_PAGE;
typedef struct PDFiumPageObject* FPDF_PAGEOBJECT;

typedef int FPDF_BOOL;
typedef unsigned long FPDF_DWORD;
typedef const unsigned short* FPDF_WIDESTRING; /* UTF-16, little-endian, ended by 0. */

typedef struct FS_RECTF {
    float left, top, right, bottom;
} FS_RECTF;

typedef struct FPDF_FILEWRITE {
    int version; /* 1 */
    int (*WriteBlock)(struct FPDF_FILEWRITE* self, const void* data, unsigned long size);
} FPDF_FILEWRITE;

typedef struct FPDF_LIBRARY_CONFIG {
    int version;
    const char** userFontPaths;  /* Ended by NULL; NULL for the usual ones. */
    void* isolate;               /* Of the script engine. From version 2. */
    unsigned int v8EmbedderSlot; /* From version 2. */
} FPDF_LIBRARY_CONFIG;
