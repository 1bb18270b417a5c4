// BundlePath.cpp: paths inside a bundle's folder.

#include "BundleInternal.h"
#include "FileData.h"
#include "StringBytes.h"

#include <algorithm>
#include <cstring>

namespace cf::bundle {

void Path::assign(std::string_view text) {
    isValid_ = !text.empty() && text.size() < sizeof text_;
    const size_t length = isValid_ ? text.size() : 0;
    std::copy_n(text.data(), length, text_);
    text_[length] = '\0';
}

void Path::append(std::string_view component) {
    const size_t length = std::strlen(text_);
    if (!isValid_ || component.empty())
        return;
    isValid_ = length + 1 + component.size() < sizeof text_;
    if (!isValid_)
        return;
    const bool needsSlash = length == 0 || text_[length - 1] != '/';
    char* const end = text_ + length;
    if (needsSlash)
        *end = '/';
    char* const start = end + (needsSlash ? 1 : 0);
    std::copy(component.begin(), component.end(), start);
    start[component.size()] = '\0';
}

bool Path::removeLast() {
    char* const slash = std::strrchr(text_, '/');
    if (!slash || slash[1] == '\0')
        return false;
    slash[slash == text_ ? 1 : 0] = '\0';
    return true;
}

std::string_view Path::lastComponent() const {
    const char* const slash = std::strrchr(text_, '/');
    return slash ? slash + 1 : text_;
}

Path Folder::resources() const {
    Path result = path;
    if (layout == Layout::Contents)
        result.append("Contents/Resources");
    else if (layout == Layout::Resources)
        result.append("Resources");
    return result;
}

Path Folder::supportFiles() const {
    Path result = path;
    if (layout == Layout::Contents)
        result.append("Contents");
    else if (layout == Layout::Resources)
        result.append("Resources");
    return result;
}

Ref<CFDictionaryRef> Folder::readInfo() const {
    Path file = supportFiles();
    file.append("Info.plist");
    FileState state;
    return file.isValid() ? readDictionary(file.get(), state) : nullptr;
}

namespace {

bool hasInfo(const Folder& folder) {
    Path file = folder.supportFiles();
    file.append("Info.plist");
    return file.isValid() && HostFileExists(file.get());
}

} // namespace

bool openFolder(CFURLRef url, Folder& folder) {
    url::HostPath path;
    if (!url::getHostPath(url, path) || !HostFileIsDirectory(path.text))
        return false;
    folder.path.assign(path.text);
    for (const Layout layout : {Layout::Contents, Layout::Resources, Layout::Flat}) {
        folder.layout = layout;
        if (hasInfo(folder))
            break;
    }
    return folder.path.isValid();
}

CFStringRef textIn(CFDictionaryRef info, CFStringRef key) {
    const void* const value = key ? CFDictionaryGetValue(info, key) : nullptr;
    const bool isText = value && CFGetTypeID(value) == CFStringGetTypeID();
    return isText ? static_cast<CFStringRef>(value) : nullptr;
}

Ref<CFArrayRef> listFolder(const char* path) {
    const auto names = adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    const auto collect = [](const char* name, void* context) {
        // A name that is not UTF-8 cannot be asked for by a string.
        if (const auto string = makeString(nullptr, name))
            CFArrayAppendValue(static_cast<CFMutableArrayRef>(context), string.get());
    };
    const auto compare = [](const void* a, const void* b, void*) {
        return CFStringCompare(static_cast<CFStringRef>(a), static_cast<CFStringRef>(b), 0);
    };
    HostDirectoryEnumerate(path, collect, names.get());
    CFArraySortValues(names.get(), CFRangeMake(0, CFArrayGetCount(names.get())), compare, nullptr);
    return retain<CFArrayRef>(names.get());
}

} // namespace cf::bundle
