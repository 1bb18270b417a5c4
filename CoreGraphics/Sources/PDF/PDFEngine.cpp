// PDFEngine.cpp: loading PDFium, once, and ending it, once.

#include "PDF/PDFEngine.h"

#include "XGPDFEngine.h"
#include <Host/Host.h>

#include "Core/Object/Diagnostics.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstring>

namespace cg {

namespace {

// The adapter is linked to the distribution's PDFium: the loader finds the names of both in it.
constexpr const char* kDefaultPath = "libNimbraPDFium.so.0";

struct Binding {
    const char* name;
    std::size_t offset; // Of the pointer in the table.
};

constexpr std::array kBindings = {
#define CG_LIST_BINDING(result, name, parameters) Binding{#name, offsetof(PDFEngine, name)},
    CG_PDFIUM_FUNCTIONS(CG_LIST_BINDING)
#undef CG_LIST_BINDING
};
static_assert(sizeof(PDFEngine) == kBindings.size() * sizeof(void*), "pointers alone");

PDFEngine engine;
std::atomic<bool> isLoaded = false;

void setPointer(const Binding& binding, void* function) {
    std::memcpy(reinterpret_cast<std::byte*>(&engine) + binding.offset, &function, sizeof function);
}

// The library stays open even if it lacks a function: others may have taken addresses in it.
void load(const char* path) {
    void* const library = HostLibraryOpen(path ? path : kDefaultPath);
    if (!library)
        return;
    for (const Binding& binding : kBindings) {
        void* const function = HostLibraryFindSymbol(library, binding.name);
        if (!function) {
            CG_LOG_AS(kHostLogError, "Load", "Failed to load pdfium function: %s",
                      HostLibraryGetErrorText());
            return;
        }
        setPointer(binding, function);
    }
    constexpr FPDF_LIBRARY_CONFIG config = {
        .version = 2, .userFontPaths = nullptr, .isolate = nullptr, .v8EmbedderSlot = 0};
    engine.FPDF_InitLibraryWithConfig(&config);
    isLoaded = true;
}

} // namespace

const PDFEngine* pdfEngine() {
    return isLoaded ? &engine : nullptr;
}

} // namespace cg

bool _CGPDFLoadPDFiumLibrary(const char* path) {
    [[maybe_unused]] static const bool once = (cg::load(path), true);
    return cg::isLoaded;
}

// A table of functions that must not be called any more is no table.
void _CGPDFDestroyPDFiumLibrary(void) {
    [[maybe_unused]] static const bool once = [] {
        if (cg::isLoaded.exchange(false))
            cg::engine.FPDF_DestroyLibrary();
        return true;
    }();
}
