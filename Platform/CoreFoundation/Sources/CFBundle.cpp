// CFBundle.cpp: finding bundles, and what they say about themselves.

#include "CFBundle.h"

#include <CoreFoundation/CFConstantString.h>
#include <CoreFoundation/CFNumber.h>

#include "BundleInternal.h"
#include "Record.h"
#include "StringBytes.h"

#include <mutex>
#include <new>

CF_CONST_STRING_DECL(kCFBundleInfoDictionaryVersionKey, "CFBundleInfoDictionaryVersion");
CF_CONST_STRING_DECL(kCFBundleExecutableKey, "CFBundleExecutable");
CF_CONST_STRING_DECL(kCFBundleIdentifierKey, "CFBundleIdentifier");
CF_CONST_STRING_DECL(kCFBundleVersionKey, "CFBundleVersion");
CF_CONST_STRING_DECL(kCFBundleDevelopmentRegionKey, "CFBundleDevelopmentRegion");
CF_CONST_STRING_DECL(kCFBundleNameKey, "CFBundleName");
CF_CONST_STRING_DECL(kCFBundleLocalizationsKey, "CFBundleLocalizations");

namespace {

using cf::bundle::Folder;
using cf::bundle::isBundle;

CFStringRef copyBundleForDebugging(CFTypeRef object) {
    const auto* const bundle = static_cast<const __CFBundle*>(object);
    return CFStringCreateWithFormat(nullptr, nullptr, CFSTR("<CFBundle %p>{%@}"), object,
                                    bundle->path.get());
}

constexpr CFRuntimeClass kBundleClass = {
    .className = "CFBundle",
    .finalize = cf::destroy<__CFBundle>,
    .copyDebugDescription = copyBundleForDebugging,
};

// The bundles in use, by path. The list holds a reference of its own to each; a bundle whose only
// reference that is is no longer in use, and nobody can come by another while the list is locked.
class Registry {
public:
    cf::Ref<CFBundleRef> find(CFStringRef path) {
        dropUnused();
        const void* const found = CFDictionaryGetValue(bundles_.get(), path);
        return cf::retain(static_cast<CFBundleRef>(const_cast<void*>(found)));
    }

    void add(CFBundleRef bundle) {
        CFDictionarySetValue(bundles_.get(), bundle->path.get(), bundle);
    }

    cf::Ref<CFArrayRef> copyAll() {
        dropUnused();
        const auto all = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
        const auto collect = [](const void*, const void* bundle, void* context) {
            CFArrayAppendValue(static_cast<CFMutableArrayRef>(context), bundle);
        };
        CFDictionaryApplyFunction(bundles_.get(), collect, all.get());
        return cf::retain<CFArrayRef>(all.get());
    }

    host::Mutex mutex; // Guards the list. Taken before any bundle's own.

private:
    void dropUnused() {
        const auto unused = cf::adopt(CFArrayCreateMutable(nullptr, 0, nullptr));
        const auto collect = [](const void* path, const void* bundle, void* context) {
            if (CFGetRetainCount(bundle) == 1)
                CFArrayAppendValue(static_cast<CFMutableArrayRef>(context), path);
        };
        CFDictionaryApplyFunction(bundles_.get(), collect, unused.get());
        for (CFIndex i = 0, count = CFArrayGetCount(unused.get()); i < count; ++i)
            CFDictionaryRemoveValue(bundles_.get(), CFArrayGetValueAtIndex(unused.get(), i));
    }

    cf::Ref<CFMutableDictionaryRef> bundles_ = cf::adopt(CFDictionaryCreateMutable(
        nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
};

// Never destroyed: bundles may be asked for until the process is gone.
Registry& registry() {
    alignas(Registry) static char memory[sizeof(Registry)];
    static Registry* const registry = new (memory) Registry;
    return *registry;
}

cf::Ref<CFBundleRef> makeBundle(CFAllocatorRef allocator, const Folder& folder) {
    auto path = cf::makeString(nullptr, folder.path.get());
    auto url = cf::url::makeFileURL(allocator, folder.path.get(), true);
    auto info = folder.readInfo();
    if (!info)
        info = cf::adopt(CFDictionaryCreate(nullptr, nullptr, nullptr, 0,
                                            &kCFTypeDictionaryKeyCallBacks,
                                            &kCFTypeDictionaryValueCallBacks));
    if (!path || !url || !info)
        return nullptr;
    auto* const bundle = cf::construct<__CFBundle>(allocator, CFBundleGetTypeID());
    if (!bundle)
        return nullptr;
    bundle->folder = folder;
    bundle->path = std::move(path);
    bundle->url = std::move(url);
    bundle->info = std::move(info);
    return cf::adopt(bundle);
}

// The folder of the bundle whose program is `executable`.
cf::Ref<CFURLRef> folderOfProgram(cf::bundle::Path executable) {
    if (!executable.removeLast())
        return nullptr;
    cf::bundle::Path above = executable;
    if (above.lastComponent() == "Linux" && above.removeLast() &&
        above.lastComponent() == "Contents" && above.removeLast())
        executable = above;
    return cf::url::makeFileURL(nullptr, executable.get(), true);
}

CFBundleRef createMainBundle() {
    cf::bundle::Path executable;
    if (!HostPathGetExecutable(executable.buffer(), executable.capacity()))
        return nullptr;
    Folder folder;
    const auto url = folderOfProgram(executable);
    if (!url || !cf::bundle::openFolder(url.get(), folder))
        return nullptr;
    auto bundle = cf::bundle::findOrCreate(nullptr, folder);
    if (bundle) {
        bundle.get()->executable = cf::url::makeFileURL(nullptr, executable.get(), false);
        bundle.get()->isMain = true;
    }
    return bundle.release();
}

// ---- Versions

// Takes a number of at most `digits` digits off the front, as binary-coded decimal.
bool takeDecimal(std::string_view& text, size_t digits, UInt32& value) {
    size_t count = 0;
    for (value = 0; count < text.size() && text[count] >= '0' && text[count] <= '9'; ++count)
        value = value << 4 | static_cast<UInt32>(text[count] - '0');
    text.remove_prefix(count);
    return count > 0 && count <= digits;
}

UInt32 stageOf(char letter) {
    switch (letter) {
    case 'd':
        return 0x20;
    case 'a':
        return 0x40;
    case 'b':
        return 0x60;
    case 'f':
        return 0x80;
    default:
        return 0;
    }
}

UInt32 parseVersion(std::string_view text) {
    UInt32 major = 0;
    UInt32 minor = 0;
    UInt32 fix = 0;
    UInt32 stage = 0x80;
    UInt32 build = 0;
    if (!takeDecimal(text, 2, major))
        return 0;
    for (UInt32* const part : {&minor, &fix}) {
        if (!text.starts_with('.'))
            break;
        text.remove_prefix(1);
        if (!takeDecimal(text, 1, *part))
            return 0;
    }
    if (!text.empty()) {
        stage = stageOf(text.front());
        text.remove_prefix(1);
        for (; !text.empty() && text.front() >= '0' && text.front() <= '9' && build <= 0xFF;
             text.remove_prefix(1))
            build = build * 10 + static_cast<UInt32>(text.front() - '0');
    }
    return text.empty() && stage && build <= 0xFF
               ? major << 24 | minor << 20 | fix << 16 | stage << 8 | build
               : 0;
}

} // namespace

namespace cf::bundle {

bool isBundle(CFBundleRef bundle) {
    return isA(bundle, kBundleClass);
}

Ref<CFBundleRef> findOrCreate(CFAllocatorRef allocator, const Folder& folder) {
    const auto path = makeString(nullptr, folder.path.get());
    if (!path)
        return nullptr;
    const std::lock_guard hold(registry().mutex);
    auto bundle = registry().find(path.get());
    if (!bundle) {
        bundle = makeBundle(allocator, folder);
        if (bundle)
            registry().add(bundle.get());
    }
    return bundle;
}

} // namespace cf::bundle

CFTypeID CFBundleGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kBundleClass);
    return id;
}

CFBundleRef CFBundleGetMainBundle(void) {
    static const CFBundleRef main = createMainBundle();
    return main;
}

CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef bundleID) {
    if (!bundleID)
        return nullptr;
    CFBundleGetMainBundle();
    const std::lock_guard hold(registry().mutex);
    const auto all = registry().copyAll();
    for (CFIndex i = 0, count = CFArrayGetCount(all.get()); i < count; ++i) {
        const auto bundle =
            static_cast<CFBundleRef>(const_cast<void*>(CFArrayGetValueAtIndex(all.get(), i)));
        const CFStringRef identifier = CFBundleGetIdentifier(bundle);
        if (identifier && CFEqual(identifier, bundleID))
            return bundle;
    }
    return nullptr;
}

CFArrayRef CFBundleGetAllBundles(void) {
    CFBundleGetMainBundle();
    thread_local cf::Ref<CFArrayRef> lent;
    // What was lent before would count as a use.
    lent = nullptr;
    const std::lock_guard hold(registry().mutex);
    lent = registry().copyAll();
    return lent.get();
}

CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef bundleURL) {
    Folder folder;
    return cf::bundle::openFolder(bundleURL, folder)
               ? cf::bundle::findOrCreate(allocator, folder).release()
               : nullptr;
}

CFArrayRef CFBundleCreateBundlesFromDirectory(CFAllocatorRef allocator, CFURLRef directoryURL,
                                              CFStringRef bundleType) {
    cf::url::HostPath path;
    if (!cf::url::getHostPath(directoryURL, path) || !HostFileIsDirectory(path.text))
        return nullptr;
    const auto names = cf::bundle::listFolder(path.text);
    auto bundles = cf::adopt(CFArrayCreateMutable(allocator, 0, &kCFTypeArrayCallBacks));
    for (CFIndex i = 0, count = CFArrayGetCount(names.get()); i < count; ++i) {
        const auto name = static_cast<CFStringRef>(CFArrayGetValueAtIndex(names.get(), i));
        const auto url =
            cf::adopt(CFURLCreateCopyAppendingPathComponent(nullptr, directoryURL, name, true));
        const auto type = cf::adopt(CFURLCopyPathExtension(url.get()));
        const bool matches = !bundleType || (type && CFEqual(type.get(), bundleType));
        const auto bundle = cf::adopt(matches ? CFBundleCreate(allocator, url.get()) : nullptr);
        if (bundle)
            CFArrayAppendValue(bundles.get(), bundle.get());
    }
    return bundles.release();
}

CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle) {
    return isBundle(bundle) ? cf::Ref(bundle->url).release() : nullptr;
}

CFDictionaryRef CFBundleGetInfoDictionary(CFBundleRef bundle) {
    return isBundle(bundle) ? bundle->info.get() : nullptr;
}

CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key) {
    if (!isBundle(bundle) || !key)
        return nullptr;
    const CFDictionaryRef local = CFBundleGetLocalInfoDictionary(bundle);
    const void* const value = local ? CFDictionaryGetValue(local, key) : nullptr;
    return value ? value : CFDictionaryGetValue(bundle->info.get(), key);
}

CFStringRef CFBundleGetIdentifier(CFBundleRef bundle) {
    return isBundle(bundle) ? cf::bundle::textIn(bundle->info.get(), kCFBundleIdentifierKey)
                            : nullptr;
}

UInt32 CFBundleGetVersionNumber(CFBundleRef bundle) {
    if (!isBundle(bundle))
        return 0;
    const void* const value = CFDictionaryGetValue(bundle->info.get(), kCFBundleVersionKey);
    if (value && CFGetTypeID(value) == CFNumberGetTypeID()) {
        int64_t number = 0;
        CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &number);
        return number >= 0 && number <= UINT32_MAX ? static_cast<UInt32>(number) : 0;
    }
    cf::TextBuffer text;
    const CFStringRef version = cf::bundle::textIn(bundle->info.get(), kCFBundleVersionKey);
    return version && cf::appendUTF8(version, text) ? parseVersion(view(text)) : 0;
}

CFStringRef CFBundleGetDevelopmentRegion(CFBundleRef bundle) {
    return isBundle(bundle) ? cf::bundle::textIn(bundle->info.get(), kCFBundleDevelopmentRegionKey)
                            : nullptr;
}

CFDictionaryRef CFBundleCopyInfoDictionaryInDirectory(CFURLRef bundleURL) {
    Folder folder;
    return cf::bundle::openFolder(bundleURL, folder) ? folder.readInfo().release() : nullptr;
}
