// Libraries.cpp: loading shared libraries and finding names in them.

#include <Host/Host.h>

#include <dlfcn.h>

void* HostLibraryOpen(const char* path) {
    return dlopen(path, RTLD_LAZY | RTLD_LOCAL);
}

void HostLibraryClose(void* library) {
    if (library)
        dlclose(library);
}

void* HostLibraryFindSymbol(void* library, const char* name) {
    return library && name ? dlsym(library, name) : nullptr;
}

const char* HostLibraryGetErrorText(void) {
    const char* const text = dlerror();
    return text ? text : "";
}
