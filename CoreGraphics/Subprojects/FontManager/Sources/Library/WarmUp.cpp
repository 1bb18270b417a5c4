// WarmUp.cpp: makes a library's fonts ready in the background.

#include "Library/WarmUp.h"

#include <Host/Host.h>

#include "Core/Object/RuntimeObject.h"
#include "Library/LibraryRecord.h"

namespace fm {
namespace {

void makePermanentFonts(void* context) {
    const auto library = cf::adopt(static_cast<FMLibraryRef>(context));
    const auto count = static_cast<FMFontId>(FMDatabaseGetFontsCount(databaseOf(library.get())));
    for (FMFontId id = 1; id <= count && CFGetRetainCount(library.get()) > 1; ++id)
        FMFontRelease(FMLibraryCopyPermanentFont(library.get(), id));
}

} // namespace

void startWarmUp(FMLibraryRef library) {
    auto kept = cf::retain(library);
    if (HostTaskSubmit(makePermanentFonts, kept.get()))
        static_cast<void>(kept.release());
}

} // namespace fm
