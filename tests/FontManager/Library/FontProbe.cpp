// FontProbe.cpp: a program that asks the shared library for fonts and tells how many font files it
// opened for that.
//
//     FontProbe NAME…
//
// Prints a line for each name, one for the preferred CJK font, and "opened" with the count.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FontManager.h>
#include <Host/Host.h>

#include <dlfcn.h>
#include <stdarg.h>
#include <sys/types.h>

#include <atomic>
#include <cstdio>
#include <cstring>

namespace {

std::atomic<int> opened;

void countFont(const char* path) {
    const char* const end = path ? std::strrchr(path, '.') : nullptr;
    for (const char* const suffix : {".ttf", ".otf", ".ttc", ".pfb", ".t1", ".pcf", ".gz"})
        if (end && std::strcmp(end, suffix) == 0)
            ++opened;
}

template <typename Function>
Function original(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

void print(const char* what, FMFontRef font) {
    const auto name = cf::adopt(FMFontCopyPostScriptName(font, false));
    char text[256] = "-";
    if (name)
        CFStringGetCString(name.get(), text, sizeof text, kCFStringEncodingUTF8);
    std::printf("%s: %s\n", what, text);
}

} // namespace

// All libraries of the process open files through these.
extern "C" __attribute__((visibility("default"))) int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = va_arg(rest, unsigned);
    va_end(rest);
    countFont(path);
    static const auto next = original<int (*)(const char*, int, ...)>("open");
    return next(path, flags, mode);
}

extern "C" __attribute__((visibility("default"))) int open64(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = va_arg(rest, unsigned);
    va_end(rest);
    countFont(path);
    static const auto next = original<int (*)(const char*, int, ...)>("open64");
    return next(path, flags, mode);
}

int main(int count, char** names) {
    const FMLibraryRef library = FMLibraryGetShared();
    for (int index = 1; index < count; ++index) {
        const auto name =
            cf::adopt(CFStringCreateWithCString(nullptr, names[index], kCFStringEncodingUTF8));
        const FMFontRef font = FMLibraryCopyFontWithName(library, name.get(), 0);
        print(names[index], font);
        FMFontRelease(font);
    }
    print("cjk", FMLibraryGetPreferredCJKFont(library));
    HostTaskWaitForAll();
    std::printf("opened %d\n", opened.load());
}
