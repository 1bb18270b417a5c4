// Symbol.cpp: finding what other libraries of the process define.

#include <Host/Host.h>

#include <dlfcn.h>

void* HostSymbolFind(const char* name) {
    return name ? dlsym(RTLD_DEFAULT, name) : nullptr;
}
