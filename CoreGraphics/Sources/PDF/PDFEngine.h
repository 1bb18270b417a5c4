// PDFEngine.h: the functions of PDFium that we call, found when it is loaded.
#pragma once

#include "PDF/PDFiumTypes.h"

// result, name, parameters: in the order in which they are looked up. Some names are of old
// versions, one has been misspelt from the start; the adapter library has them for current ones.
#define CG_PDFIUM_FUNCTIONS(X)                                                                     \
    X(FPDF_BITMAP, FPDFBitmap_Create, (int width, int height, int alpha))                          \
    X(void, FPDFBitmap_Destroy, (FPDF_BITMAP bitmap))                                              \
    X(FPDF_BOOL, FPDFPage_GetCropBox,                                                              \
      (FPDF_PAGE page, float* left, float* bottom, float* right, float* top))                      \
    X(FPDF_BOOL, FPDFPage_GetMediaBox,                                                             \
      (FPDF_PAGE page, float* left, float* bottom, float* right, float* top))                      \
    X(int, FPDFPage_GetRotation, (FPDF_PAGE page))                                                 \
    X(void, FPDF_CloseDocument, (FPDF_DOCUMENT document))                                          \
    X(void, FPDF_ClosePage, (FPDF_PAGE page))                                                      \
    X(void, FPDF_DestroyLibrary, (void))                                                           \
    X(unsigned long, FPDF_GetDocPermissions, (FPDF_DOCUMENT document))                             \
    X(unsigned long, FPDF_GetDocumentID,                                                           \
      (FPDF_DOCUMENT document, int kind, void* buffer, unsigned long size))                        \
    X(FPDF_BOOL, FPDF_GetFileVersion, (FPDF_DOCUMENT document, int* version))                      \
    X(unsigned long, FPDF_GetLastError, (void))                                                    \
    X(int, FPDF_GetPageCount, (FPDF_DOCUMENT document))                                            \
    X(int, FPDF_GetPageSizeByIndex,                                                                \
      (FPDF_DOCUMENT document, int index, double* width, double* height))                          \
    X(int, FPDF_GetSecurityHandlerRevision, (FPDF_DOCUMENT document))                              \
    X(void, FPDF_InitLibraryWithConfig, (const FPDF_LIBRARY_CONFIG* config))                       \
    X(FPDF_BOOL, FPDF_IsDocumentEncrypted, (FPDF_DOCUMENT document))                               \
    X(FPDF_DOCUMENT, FPDF_LoadMemDocument, (const void* data, int size, const char* password))     \
    X(FPDF_PAGE, FPDF_LoadPage, (FPDF_DOCUMENT document, int index))                               \
    X(void, FPDF_RenderPageBitmap,                                                                 \
      (FPDF_BITMAP bitmap, FPDF_PAGE page, int x, int y, int width, int height, int rotation,      \
       int flags))                                                                                 \
    X(void, FPDFBitmap_FillRect,                                                                   \
      (FPDF_BITMAP bitmap, int left, int top, int width, int height, FPDF_DWORD color))            \
    X(void*, FPDFBitmap_GetBuffer, (FPDF_BITMAP bitmap))                                           \
    X(FPDF_BOOL, FPDF_DeviceToPage,                                                                \
      (FPDF_PAGE page, int x, int y, int width, int height, int rotation, int deviceX,             \
       int deviceY, double* pageX, double* pageY))                                                 \
    X(FPDF_LINK, FPDFLink_GetLinkAtPoint, (FPDF_PAGE page, double x, double y))                    \
    X(FPDF_ACTION, FPDFLink_GetAction, (FPDF_LINK link))                                           \
    X(FPDF_DEST, FPDFAction_GetDest, (FPDF_DOCUMENT document, FPDF_ACTION action))                 \
    X(unsigned long, FPDFAction_GetType, (FPDF_ACTION action))                                     \
    X(unsigned long, FPDFAction_GetURIPath,                                                        \
      (FPDF_DOCUMENT document, FPDF_ACTION action, void* buffer, unsigned long size))              \
    X(unsigned long, FPDFDest_GetPageIndex, (FPDF_DOCUMENT document, FPDF_DEST dest))              \
    X(FPDF_BOOL, FPDFLink_GetAnnotRect, (FPDF_LINK link, FS_RECTF * rect))                         \
    X(FPDF_BOOL, FPDF_PageToDevice,                                                                \
      (FPDF_PAGE page, int x, int y, int width, int height, int rotation, double pageX,            \
       double pageY, int* deviceX, int* deviceY))                                                  \
    X(FPDF_PAGE, FPDFPage_New, (FPDF_DOCUMENT document, int index, double width, double height))   \
    X(FPDF_BOOL, FPDF_SaveAsCopy,                                                                  \
      (FPDF_DOCUMENT document, FPDF_FILEWRITE * file, FPDF_DWORD flags))                           \
    X(FPDF_BOOL, FPDF_SetMetaText,                                                                 \
      (FPDF_DOCUMENT document, const char* tag, FPDF_WIDESTRING value))                            \
    X(FPDF_DOCUMENT, FPDF_CreateNewDocument, (void))                                               \
    X(FPDF_BOOL, FPDFImageObj_SetBitmap,                                                           \
      (FPDF_PAGE * pages, int count, FPDF_PAGEOBJECT image, FPDF_BITMAP bitmap))                   \
    X(void, FPDFPage_InsertObject, (FPDF_PAGE page, FPDF_PAGEOBJECT object))                       \
    X(FPDF_BOOL, FPDFPage_GenerateContent, (FPDF_PAGE page))                                       \
    X(FPDF_PAGEOBJECT, FPDFPageObj_NewImgeObj, (FPDF_DOCUMENT document))                           \
    X(int, FPDFBitmap_GetStride, (FPDF_BITMAP bitmap))                                             \
    X(FPDF_BOOL, FPDFPage_HasTransparency, (FPDF_PAGE page))                                       \
    X(FPDF_BOOL, FPDFImageObj_SetMatrix,                                                           \
      (FPDF_PAGEOBJECT image, double a, double b, double c, double d, double e, double f))         \
    X(int, FPDFPage_CountObject, (FPDF_PAGE page))

namespace cg {

// One pointer for each function, by its name.
struct PDFEngine {
#define CG_DECLARE_POINTER(result, name, parameters) result(*name) parameters;
    CG_PDFIUM_FUNCTIONS(CG_DECLARE_POINTER)
#undef CG_DECLARE_POINTER
};

// The functions, or NULL while PDFium is not loaded. Any thread.
const PDFEngine* pdfEngine();

} // namespace cg
