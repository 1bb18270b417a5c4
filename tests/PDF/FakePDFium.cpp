// FakePDFium.cpp: a library with PDFium's names, which counts how often each is called.

#include "PDF/PDFEngine.h"

namespace {

int initialised = 0, destroyed = 0, others = 0;

template <typename Result>
Result nothing() {
    return Result();
}

} // namespace

#define EXPORT extern "C" __attribute__((visibility("default")))

// Written out below, or left out: their generated forms get other names.
#define FPDF_InitLibraryWithConfig GeneratedInit
#define FPDF_DestroyLibrary GeneratedDestroy
#ifdef LACKS_LAST_FUNCTION
#define FPDFPage_CountObject OfAnotherName
#endif
#define DEFINE(result, name, parameters)                                                           \
    EXPORT result name parameters {                                                                \
        ++others;                                                                                  \
        return nothing<result>();                                                                  \
    }
#pragma GCC diagnostic ignored "-Wunused-parameter"
CG_PDFIUM_FUNCTIONS(DEFINE)
#undef FPDF_InitLibraryWithConfig
#undef FPDF_DestroyLibrary

EXPORT void FPDF_InitLibraryWithConfig(const FPDF_LIBRARY_CONFIG* config) {
    const bool isExpected = config->version == 2 && !config->userFontPaths && !config->isolate &&
                            config->v8EmbedderSlot == 0;
    initialised += isExpected ? 1 : 100;
}

EXPORT void FPDF_DestroyLibrary() {
    ++destroyed;
}

// Calls of each, as decimal digits: initialised, destroyed, all others.
EXPORT int countCalls() {
    return initialised * 100 + destroyed * 10 + others;
}
