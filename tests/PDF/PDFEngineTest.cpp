// PDFEngineTest.cpp: finding PDFium, once in a process.

#include "PDF/PDFEngine.h"

#include "XGPDFEngine.h"
#include <Host/Host.h>

#include "Support/CollectedLog.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {

// Loading happens once in a process: each case runs in one of its own, and fails by its text.
#define EXPECT_IN_A_PROCESS(function)                                                              \
    EXPECT_EXIT(                                                                                   \
        {                                                                                          \
            const std::string fault = function();                                                  \
            std::fputs(fault.c_str(), stderr);                                                     \
            std::exit(fault.empty() ? 0 : 1);                                                      \
        },                                                                                         \
        testing::ExitedWithCode(0), "")

class PDFEngine : public testing::Test {
protected:
    PDFEngine() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

int callsOf(const char* path) {
    void* const library = HostLibraryOpen(path);
    const auto count = reinterpret_cast<int (*)()>(HostLibraryFindSymbol(library, "countCalls"));
    return count ? count() : -1;
}

std::string loadsOnce() {
    CollectedLog log;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([] { _CGPDFLoadPDFiumLibrary(WHOLE_PDFIUM); });
    for (std::thread& thread : threads)
        thread.join();
    if (!_CGPDFLoadPDFiumLibrary("/nowhere") || !cg::pdfEngine())
        return "not loaded";
    if (callsOf(WHOLE_PDFIUM) != 100)
        return "not initialised once, as expected";
    cg::pdfEngine()->FPDFPage_CountObject(nullptr);
    cg::pdfEngine()->FPDFBitmap_Create(1, 1, 1);
    if (callsOf(WHOLE_PDFIUM) != 102)
        return "functions that are not the library's";
    _CGPDFDestroyPDFiumLibrary();
    _CGPDFDestroyPDFiumLibrary();
    if (callsOf(WHOLE_PDFIUM) != 112 || cg::pdfEngine() || _CGPDFLoadPDFiumLibrary(WHOLE_PDFIUM))
        return "not ended once and for all";
    return log.lines().empty() ? "" : "a line in the log";
}

TEST_F(PDFEngine, IsLoadedAndEndedOnce) {
    EXPECT_IN_A_PROCESS(loadsOnce);
}

std::string badPathCountsAsTheOneTry() {
    CollectedLog log;
    if (_CGPDFLoadPDFiumLibrary("/nowhere") || _CGPDFLoadPDFiumLibrary(WHOLE_PDFIUM))
        return "loaded";
    _CGPDFDestroyPDFiumLibrary();
    return log.lines().empty() ? "" : "a line in the log";
}

TEST_F(PDFEngine, IsNotLookedForTwice) {
    EXPECT_IN_A_PROCESS(badPathCountsAsTheOneTry);
}

std::string lacksAFunction() {
    CollectedLog log;
    if (_CGPDFLoadPDFiumLibrary(LACKING_PDFIUM) || cg::pdfEngine())
        return "loaded";
    if (callsOf(LACKING_PDFIUM) != 0)
        return "a function was called";
    const auto& lines = log.lines();
    const std::string start = "3 Load: Failed to load pdfium function: ";
    if (lines.size() != 1 || !lines[0].starts_with(start) ||
        lines[0].find("FPDFPage_CountObject") == std::string::npos)
        return "logged: " + (lines.empty() ? std::string("nothing") : lines[0]);
    return "";
}

TEST_F(PDFEngine, IsRefusedWithoutOneOfItsFunctions) {
    EXPECT_IN_A_PROCESS(lacksAFunction);
}

// ---- The distribution's own

// A page of 200 by 100 points with a rectangle in it, written by hand: no table of offsets is
// needed where a reader can rebuild it.
std::string pageWithARect() {
    const std::string drawing = "1 0 0 rg 20 10 50 40 re f";
    return "%PDF-1.4\n"
           "1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
           "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
           "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 100]/Contents 4 0 R>>endobj\n"
           "4 0 obj<</Length " +
           std::to_string(drawing.size()) + ">>stream\n" + drawing +
           "\nendstream endobj\n"
           "trailer<</Root 1 0 R/Size 5>>\n%%EOF\n";
}

std::string rendersAPage() {
    if (!_CGPDFLoadPDFiumLibrary(PDFIUM_ADAPTER))
        return "not loaded";
    const cg::PDFEngine& pdf = *cg::pdfEngine();
    const std::string file = pageWithARect();
    const FPDF_DOCUMENT document =
        pdf.FPDF_LoadMemDocument(file.data(), static_cast<int>(file.size()), nullptr);
    double width = 0, height = 0;
    if (!document || pdf.FPDF_GetPageCount(document) != 1 ||
        !pdf.FPDF_GetPageSizeByIndex(document, 0, &width, &height) || width != 200 || height != 100)
        return "no document of one page of 200 by 100 points";
    if (pdf.FPDF_IsDocumentEncrypted(document) || pdf.FPDF_GetDocumentID(document, 0, nullptr, 0))
        return "encrypted, or with an identifier";
    const FPDF_PAGE page = pdf.FPDF_LoadPage(document, 0);
    if (!page || pdf.FPDFPage_CountObject(page) != 1)
        return "no page with one object";

    const FPDF_BITMAP bitmap = pdf.FPDFBitmap_Create(200, 100, 0);
    pdf.FPDFBitmap_FillRect(bitmap, 0, 0, 200, 100, 0xFFFFFFFF);
    pdf.FPDF_RenderPageBitmap(bitmap, page, 0, 0, 200, 100, 0, 0);
    const auto* const rows = static_cast<const std::uint8_t*>(pdf.FPDFBitmap_GetBuffer(bitmap));
    const int stride = pdf.FPDFBitmap_GetStride(bitmap);
    int wrong = 0;
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 200; ++x) {
            const bool isRed = x >= 20 && x < 70 && y >= 50 && y < 90;
            const std::uint8_t* const pixel = rows + y * stride + x * 4;
            wrong += pixel[2] != 0xFF || pixel[1] != (isRed ? 0 : 0xFF);
        }
    }
    pdf.FPDFBitmap_Destroy(bitmap);
    pdf.FPDF_ClosePage(page);
    pdf.FPDF_CloseDocument(document);
    _CGPDFDestroyPDFiumLibrary();
    return wrong == 0 ? "" : std::to_string(wrong) + " pixels differ";
}

TEST_F(PDFEngine, RendersWithTheDistributionsLibrary) {
    if (std::string(PDFIUM_ADAPTER).empty())
        GTEST_SKIP() << "PDFium (libreoffice-core-nogui) was not installed when this was built";
    EXPECT_IN_A_PROCESS(rendersAPage);
}

} // namespace
