// CFBundleExecutable.cpp: a bundle's code, and the bundles of this system's own libraries.

#include "BundleInternal.h"
#include "CFBundle.h"
#include "ErrorInternal.h"
#include "StringBytes.h"

#include <cstdlib>
#include <mutex>

namespace {

using cf::bundle::isBundle;
using cf::bundle::Path;

enum ExecutableError : CFIndex { kNoSuchExecutable = 4, kExecutableDoesNotLoad = 3587 };

bool isFile(const Path& path) {
    return path.isValid() && HostFileExists(path.get()) && !HostFileIsDirectory(path.get());
}

// The executable's file by its name in the information dictionary.
bool findExecutable(CFBundleRef bundle, Path& path) {
    const cf::CString name(cf::bundle::textIn(bundle->info.get(), kCFBundleExecutableKey));
    if (!name || std::string_view(name.get()).find('/') != std::string_view::npos)
        return false;
    path = bundle->folder.path;
    if (bundle->folder.layout == cf::bundle::Layout::Contents)
        path.append("Contents/Linux");
    path.append(name.get());
    return isFile(path);
}

// Both want the bundle's mutex to be held.
cf::Ref<CFURLRef> executableOf(CFBundleRef bundle) {
    if (bundle->executable)
        return bundle->executable;
    Path path;
    return findExecutable(bundle, path) ? cf::url::makeFileURL(nullptr, path.get(), false)
                                        : nullptr;
}
void* loadLibrary(CFBundleRef bundle) {
    cf::url::HostPath path;
    if (bundle->library)
        return bundle->library;
    if (bundle->isMain)
        bundle->library = HostLibraryOpen(nullptr);
    else if (cf::url::getHostPath(executableOf(bundle).get(), path))
        bundle->library = HostLibraryOpen(path.text);
    return bundle->library;
}

void* findPointer(CFBundleRef bundle, CFStringRef name) {
    const cf::CString symbol(name);
    if (!isBundle(bundle) || !symbol)
        return nullptr;
    const std::lock_guard hold(bundle->mutex);
    return HostLibraryFindSymbol(loadLibrary(bundle), symbol.get());
}

// ---- Bundles of libraries

bool isFolder(Path& path, std::string_view name) {
    path.append(name);
    return path.isValid() && HostFileIsDirectory(path.get());
}

// The first folder of resources there is for a library in the folder `library`.
bool findResourceFolder(const Path& library, std::string_view name, Path& found) {
    const char* const given = std::getenv("NIMBRA_RESOURCES");
    if (given && given[0] == '/') {
        found.assign(given);
        if (isFolder(found, name))
            return true;
    }
    found = library;
    found.append("Resources");
    if (isFolder(found, name))
        return true;
    // Beside the folder of libraries, or the one above that.
    Path prefix = library;
    for (int i = 0; i < 2 && prefix.removeLast(); ++i) {
        found = prefix;
        found.append("share/nimbra");
        if (isFolder(found, name))
            return true;
    }
    return false;
}

bool findImage(const void* address, Path& image) {
    return address && HostPathGetImageOfAddress(address, image.buffer(), image.capacity());
}

} // namespace

CFURLRef CFBundleCopyExecutableURL(CFBundleRef bundle) {
    if (!isBundle(bundle))
        return nullptr;
    const std::lock_guard hold(bundle->mutex);
    return executableOf(bundle).release();
}

Boolean CFBundleLoadExecutable(CFBundleRef bundle) {
    return CFBundleLoadExecutableAndReturnError(bundle, nullptr);
}

Boolean CFBundleLoadExecutableAndReturnError(CFBundleRef bundle, CFErrorRef* error) {
    if (!isBundle(bundle))
        return false;
    const std::lock_guard hold(bundle->mutex);
    if (!executableOf(bundle)) {
        cf::storeError(error, kCFErrorDomainCocoa, kNoSuchExecutable,
                       "the bundle has no executable");
        return false;
    }
    const bool isLoaded = loadLibrary(bundle) != nullptr;
    if (!isLoaded)
        cf::storeError(error, kCFErrorDomainCocoa, kExecutableDoesNotLoad,
                       "the host cannot load the bundle's executable");
    return isLoaded;
}

Boolean CFBundleIsExecutableLoaded(CFBundleRef bundle) {
    if (!isBundle(bundle))
        return false;
    const std::lock_guard hold(bundle->mutex);
    return bundle->isMain || bundle->library;
}

void CFBundleUnloadExecutable(CFBundleRef bundle) {
    if (!isBundle(bundle))
        return;
    const std::lock_guard hold(bundle->mutex);
    HostLibraryClose(bundle->library);
    bundle->library = nullptr;
}

void* CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef functionName) {
    return findPointer(bundle, functionName);
}

void* CFBundleGetDataPointerForName(CFBundleRef bundle, CFStringRef symbolName) {
    return findPointer(bundle, symbolName);
}

CFBundleRef _CFBundleCreateWithImageOfAddress(CFAllocatorRef allocator, const void* address,
                                              CFStringRef name) {
    const cf::CString text(name);
    Path image;
    if (!text || std::string_view(text.get()).empty() ||
        std::string_view(text.get()).find('/') != std::string_view::npos ||
        !findImage(address, image))
        return nullptr;
    Path folder = image;
    Path found;
    if (!folder.removeLast() || !findResourceFolder(folder, text.get(), found))
        return nullptr;
    const auto url = cf::url::makeFileURL(nullptr, found.get(), true);
    auto bundle = cf::adopt(CFBundleCreate(allocator, url.get()));
    if (!bundle)
        return nullptr;
    const std::lock_guard hold(bundle.get()->mutex);
    if (!bundle.get()->executable)
        bundle.get()->executable = cf::url::makeFileURL(nullptr, image.get(), false);
    return bundle.release();
}

CFBundleRef _CFBundleGetSystemResources(void) {
    static const CFBundleRef system = _CFBundleCreateWithImageOfAddress(
        nullptr, reinterpret_cast<const void*>(&_CFBundleGetSystemResources), CFSTR("System"));
    return system;
}
