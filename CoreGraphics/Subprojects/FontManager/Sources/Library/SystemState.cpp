// SystemState.cpp: what a stored database depends on besides the fonts' files.

#include "Library/SystemState.h"

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBundle.h>
#include <Host/Host.h>

#include <climits>
#include <cmath>

namespace fm {
namespace {

CFStringRef infoString(CFBundleRef bundle, CFStringRef key) {
    const CFTypeRef value = bundle ? CFBundleGetValueForInfoDictionaryKey(bundle, key) : nullptr;
    return value && CFGetTypeID(value) == CFStringGetTypeID() ? static_cast<CFStringRef>(value)
                                                              : CFSTR("");
}

} // namespace

// The token that the resources name themselves by, and the time of the configuration in them, which
// people edit in place.
cf::Ref<CFStringRef> systemResourcesToken() {
    const CFBundleRef bundle = _CFBundleGetSystemResources();
    const auto config = cf::adopt(
        bundle ? CFBundleCopyResourceURL(bundle, CFSTR("FontConfig"), CFSTR("xml"), CFSTR("Fonts"))
               : nullptr);
    const auto time = modificationTime(pathOf(config.get()).get()).value_or(0);
    return cf::adopt(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%@:%lld"),
                                              infoString(bundle, CFSTR("SystemResourcesToken")),
                                              static_cast<long long>(time)));
}

cf::Ref<CFStringRef> applicationInfoPath() {
    const CFBundleRef bundle = CFBundleGetMainBundle();
    const auto folder = cf::adopt(bundle ? CFBundleCopySupportFilesDirectoryURL(bundle) : nullptr);
    const auto file = cf::adopt(folder ? CFURLCreateCopyAppendingPathComponent(
                                             nullptr, folder.get(), CFSTR("Info.plist"), false)
                                       : nullptr);
    return pathOf(file.get());
}

std::optional<std::int64_t> modificationTime(CFStringRef path) {
    char bytes[PATH_MAX];
    double seconds = 0;
    if (!path || !CFStringGetFileSystemRepresentation(path, bytes, sizeof bytes) ||
        !HostFileGetModificationTime(bytes, &seconds))
        return std::nullopt;
    return static_cast<std::int64_t>(std::floor(seconds));
}

std::vector<cf::Ref<CFStringRef>> applicationFontPaths() {
    std::vector<cf::Ref<CFStringRef>> paths;
    const CFBundleRef bundle = CFBundleGetMainBundle();
    const auto folder = cf::adopt(bundle ? CFBundleCopyResourcesDirectoryURL(bundle) : nullptr);
    const CFTypeRef listed =
        bundle ? CFBundleGetValueForInfoDictionaryKey(bundle, CFSTR("UIAppFonts")) : nullptr;
    if (!folder || !listed || CFGetTypeID(listed) != CFArrayGetTypeID())
        return paths;
    const auto names = static_cast<CFArrayRef>(listed);
    for (CFIndex index = 0; index < CFArrayGetCount(names); ++index) {
        const auto name = static_cast<CFStringRef>(CFArrayGetValueAtIndex(names, index));
        if (!name || CFGetTypeID(name) != CFStringGetTypeID())
            continue;
        const auto url = cf::adopt(CFURLCreateWithFileSystemPathRelativeToBase(
            nullptr, name, kCFURLPOSIXPathStyle, false, folder.get()));
        if (auto path = pathOf(url.get()))
            paths.push_back(std::move(path));
    }
    return paths;
}

cf::Ref<CFStringRef> pathOf(CFURLRef url) {
    const auto absolute = cf::adopt(url ? CFURLCopyAbsoluteURL(url) : nullptr);
    const auto scheme = cf::adopt(absolute ? CFURLCopyScheme(absolute.get()) : nullptr);
    if (!scheme || !CFEqual(scheme.get(), CFSTR("file")))
        return nullptr;
    return cf::adopt(CFURLCopyFileSystemPath(absolute.get(), kCFURLPOSIXPathStyle));
}

} // namespace fm
