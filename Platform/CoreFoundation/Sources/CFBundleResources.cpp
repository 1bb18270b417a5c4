// CFBundleResources.cpp: looking for files among a bundle's resources.

#include "BundleInternal.h"
#include "CFBundle.h"
#include "StringBytes.h"

namespace cf::bundle {

namespace {

// Whether the name stays below the folder that it is looked for in.
bool staysInside(std::string_view name) {
    while (!name.empty()) {
        const size_t slash = name.find('/');
        if (name.substr(0, slash) == ".." || slash == 0)
            return false;
        name.remove_prefix(slash == std::string_view::npos ? name.size() : slash + 1);
    }
    return true;
}

// Appends a part of a resource's place, which may be missing. False for parts that lead elsewhere.
bool appendPart(CFStringRef part, Path& path) {
    if (!part || CFStringGetLength(part) == 0)
        return true;
    const CString text(part);
    if (!text || !staysInside(text.get()))
        return false;
    path.append(text.get());
    return path.isValid();
}

// The folder among the resources that a language's resources lie in.
bool findPlace(const Folder& folder, const ResourceName& name, CFStringRef language, Path& path) {
    path = folder.resources();
    if (language && CFStringGetLength(language) > 0) {
        const auto languageFolder =
            adopt(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%@.lproj"), language));
        if (!languageFolder || !appendPart(languageFolder.get(), path) ||
            !HostFileIsDirectory(path.get()))
            return false;
    }
    return appendPart(name.folder, path);
}

// ".png" for "png" and for ".png".
std::string_view withoutDot(std::string_view type) {
    return type.starts_with('.') ? type.substr(1) : type;
}

bool hasType(std::string_view file, std::string_view type) {
    return type.empty() || (file.size() > type.size() + 1 && file.ends_with(type) &&
                            file[file.size() - type.size() - 1] == '.');
}

// Calls `take(path)` for each file of the type until it answers true.
template <typename Take>
void forEachOfType(const Path& place, std::string_view type, Take take) {
    const auto names = listFolder(place.get());
    for (CFIndex i = 0, count = CFArrayGetCount(names.get()); i < count; ++i) {
        const CString name(static_cast<CFStringRef>(CFArrayGetValueAtIndex(names.get(), i)));
        if (!name || !hasType(name.get(), type))
            continue;
        Path path = place;
        path.append(name.get());
        if (path.isValid() && take(path))
            return;
    }
}

Ref<CFURLRef> urlOf(const Path& path) {
    return url::makeFileURL(nullptr, path.get(), HostFileIsDirectory(path.get()));
}

} // namespace

Ref<CFURLRef> findResourceIn(const Folder& folder, const ResourceName& name, CFStringRef language) {
    Path path;
    TextBuffer type;
    if (!findPlace(folder, name, language, path) || (name.type && !appendUTF8(name.type, type)))
        return nullptr;
    Ref<CFURLRef> found;
    if (!name.name) {
        forEachOfType(path, withoutDot(view(type)), [&](const Path& file) {
            found = urlOf(file);
            return true;
        });
        return found;
    }
    TextBuffer file;
    if (!appendUTF8(name.name, file))
        return nullptr;
    if (!type.empty()) {
        file.append('.');
        file.append(withoutDot(view(type)));
    }
    if (file.empty() || file.failed() || !staysInside(view(file)))
        return nullptr;
    path.append(view(file));
    return path.isValid() && HostFileExists(path.get()) ? urlOf(path) : nullptr;
}

Ref<CFURLRef> findResource(const Folder& folder, const ResourceName& name, CFArrayRef languages) {
    auto found = findResourceIn(folder, name, nullptr);
    for (CFIndex i = 0, count = CFArrayGetCount(languages); !found && i < count; ++i)
        found = findResourceIn(folder, name,
                               static_cast<CFStringRef>(CFArrayGetValueAtIndex(languages, i)));
    return found;
}

namespace {

void appendAllOfType(const Folder& folder, const ResourceName& name, CFStringRef language,
                     CFMutableArrayRef urls) {
    Path path;
    TextBuffer type;
    if (!findPlace(folder, name, language, path) || (name.type && !appendUTF8(name.type, type)))
        return;
    forEachOfType(path, withoutDot(view(type)), [&](const Path& file) {
        const bool isOfLanguages = file.lastComponent().ends_with(".lproj");
        if (const auto url = isOfLanguages ? nullptr : urlOf(file))
            CFArrayAppendValue(urls, url.get());
        return false;
    });
}

CFURLRef copyFolderURL(CFBundleRef bundle, const Path& path) {
    return bundle->folder.layout == Layout::Flat ? Ref(bundle->url).release()
                                                 : urlOf(path).release();
}

} // namespace

} // namespace cf::bundle

using cf::bundle::isBundle;

CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle) {
    return isBundle(bundle) ? cf::bundle::copyFolderURL(bundle, bundle->folder.resources())
                            : nullptr;
}

CFURLRef CFBundleCopySupportFilesDirectoryURL(CFBundleRef bundle) {
    return isBundle(bundle) ? cf::bundle::copyFolderURL(bundle, bundle->folder.supportFiles())
                            : nullptr;
}

CFURLRef CFBundleCopyResourceURL(CFBundleRef bundle, CFStringRef resourceName,
                                 CFStringRef resourceType, CFStringRef subDirName) {
    if (!isBundle(bundle))
        return nullptr;
    return cf::bundle::findResource(bundle->folder, {resourceName, resourceType, subDirName},
                                    cf::bundle::searchOrderOf(bundle).get())
        .release();
}

CFURLRef CFBundleCopyResourceURLForLocalization(CFBundleRef bundle, CFStringRef resourceName,
                                                CFStringRef resourceType, CFStringRef subDirName,
                                                CFStringRef localizationName) {
    if (!isBundle(bundle))
        return nullptr;
    const cf::bundle::ResourceName name = {resourceName, resourceType, subDirName};
    auto found = cf::bundle::findResourceIn(bundle->folder, name, nullptr);
    if (!found && localizationName)
        found = cf::bundle::findResourceIn(bundle->folder, name, localizationName);
    return found.release();
}

CFURLRef CFBundleCopyResourceURLInDirectory(CFURLRef bundleURL, CFStringRef resourceName,
                                            CFStringRef resourceType, CFStringRef subDirName) {
    cf::bundle::Folder folder;
    if (!cf::bundle::openFolder(bundleURL, folder))
        return nullptr;
    const auto info = folder.readInfo();
    const auto languages = cf::bundle::copySearchOrder(folder, info.get());
    return cf::bundle::findResource(folder, {resourceName, resourceType, subDirName},
                                    languages.get())
        .release();
}

CFArrayRef CFBundleCopyResourceURLsOfType(CFBundleRef bundle, CFStringRef resourceType,
                                          CFStringRef subDirName) {
    if (!isBundle(bundle))
        return nullptr;
    auto urls = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    const cf::bundle::ResourceName name = {nullptr, resourceType, subDirName};
    cf::bundle::appendAllOfType(bundle->folder, name, nullptr, urls.get());
    const auto languages = cf::bundle::searchOrderOf(bundle);
    for (CFIndex i = 0, count = CFArrayGetCount(languages.get()); i < count; ++i)
        cf::bundle::appendAllOfType(
            bundle->folder, name,
            static_cast<CFStringRef>(CFArrayGetValueAtIndex(languages.get(), i)), urls.get());
    return urls.release();
}
