/* PDFiumAdapter.c: names that the distribution's PDFium lacks, over those that it has today. The
 * engine looks its functions up in this library, which is linked to PDFium, so that the loader
 * finds the names of both. */

#include "../PDFiumTypes.h"

#define ADAPTER_EXPORT __attribute__((visibility("default")))

/* What PDFium exports. */
unsigned long FPDF_GetFileIdentifier(FPDF_DOCUMENT document, int kind, void* buffer,
                                     unsigned long size);
int FPDF_GetSecurityHandlerRevision(FPDF_DOCUMENT document);
int FPDFDest_GetDestPageIndex(FPDF_DOCUMENT document, FPDF_DEST dest);
FPDF_PAGEOBJECT FPDFPageObj_NewImageObj(FPDF_DOCUMENT document);
int FPDFPage_CountObjects(FPDF_PAGE page);

/* What the engine looks up. */
ADAPTER_EXPORT unsigned long FPDF_GetDocumentID(FPDF_DOCUMENT document, int kind, void* buffer,
                                                unsigned long size);
ADAPTER_EXPORT FPDF_BOOL FPDF_IsDocumentEncrypted(FPDF_DOCUMENT document);
ADAPTER_EXPORT unsigned long FPDFDest_GetPageIndex(FPDF_DOCUMENT document, FPDF_DEST dest);
ADAPTER_EXPORT FPDF_BOOL FPDF_SetMetaText(FPDF_DOCUMENT document, const char* tag,
                                          FPDF_WIDESTRING value);
ADAPTER_EXPORT FPDF_PAGEOBJECT FPDFPageObj_NewImgeObj(FPDF_DOCUMENT document);
ADAPTER_EXPORT int FPDFPage_CountObject(FPDF_PAGE page);

/* `kind` is 0 for the permanent identifier, 1 for the changing one. Answers the identifier's length
 * in bytes, and fills the buffer when that is large enough. */
unsigned long FPDF_GetDocumentID(FPDF_DOCUMENT document, int kind, void* buffer,
                                 unsigned long size) {
    return FPDF_GetFileIdentifier(document, kind, buffer, size);
}

/* The revision is -1 without a security handler. */
FPDF_BOOL FPDF_IsDocumentEncrypted(FPDF_DOCUMENT document) {
    return FPDF_GetSecurityHandlerRevision(document) >= 0;
}

/* Old versions answered 0 for a destination without a page. */
unsigned long FPDFDest_GetPageIndex(FPDF_DOCUMENT document, FPDF_DEST dest) {
    const int index = FPDFDest_GetDestPageIndex(document, dest);
    return index > 0 ? (unsigned long)index : 0;
}

/* PDFium cannot write meta data through its interface any more: nothing is set, and says so. */
FPDF_BOOL FPDF_SetMetaText(FPDF_DOCUMENT document, const char* tag, FPDF_WIDESTRING value) {
    (void)document;
    (void)tag;
    (void)value;
    return 0;
}

FPDF_PAGEOBJECT FPDFPageObj_NewImgeObj(FPDF_DOCUMENT document) {
    return FPDFPageObj_NewImageObj(document);
}

int FPDFPage_CountObject(FPDF_PAGE page) {
    return FPDFPage_CountObjects(page);
}
