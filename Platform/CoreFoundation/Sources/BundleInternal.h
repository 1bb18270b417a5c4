// BundleInternal.h: what a bundle object holds, and the paths inside a bundle's folder.
#pragma once

#include <CoreFoundation/CFBundle.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <Host/Host.h>

#include "CFURLInternal.h"

#include <climits>
#include <string_view>

namespace cf::bundle {

enum class Layout {
    Contents,  // Contents/Info.plist, Contents/Resources
    Resources, // Resources/Info.plist, Resources
    Flat,      // All in the folder itself.
};

// A path that grows by components. Once one did not fit it stays invalid.
class Path {
public:
    Path() = default;
    explicit Path(const char* text) { assign(text); }

    void assign(std::string_view text);
    void append(std::string_view component);
    // Cuts the last component off; false when there is none.
    bool removeLast();
    std::string_view lastComponent() const;

    bool isValid() const { return isValid_; }
    const char* get() const { return text_; }
    char* buffer() { return text_; }
    static constexpr size_t capacity() { return PATH_MAX; }

private:
    char text_[PATH_MAX] = "";
    bool isValid_ = true;
};

// A folder seen as a bundle.
struct Folder {
    Path path;
    Layout layout = Layout::Flat;

    Path resources() const;
    // Where Info.plist lies.
    Path supportFiles() const;
    Ref<CFDictionaryRef> readInfo() const;
};

// The folder that a file URL names; false when there is none.
bool openFolder(CFURLRef url, Folder& folder);

// Where "name.type" lies, in which language. Each part may be NULL.
struct ResourceName {
    CFStringRef name = nullptr;
    CFStringRef type = nullptr;
    CFStringRef folder = nullptr;
};

// The first such file in the folders of `languages`, before them the one for all languages.
Ref<CFURLRef> findResource(const Folder& folder, const ResourceName& name, CFArrayRef languages);
// The same in a single folder, with an empty `language` for the one of all languages.
Ref<CFURLRef> findResourceIn(const Folder& folder, const ResourceName& name, CFStringRef language);

// The "xx.lproj" folders among the resources and the languages that `info` lists.
Ref<CFArrayRef> copyLanguages(const Folder& folder, CFDictionaryRef info);
// The languages to look in, best first: the user's, then the one that resources are written in.
Ref<CFArrayRef> copySearchOrder(const Folder& folder, CFDictionaryRef info);

// A string of the information dictionary, lent.
CFStringRef textIn(CFDictionaryRef info, CFStringRef key);

// The names in a folder, in their order; empty when it cannot be read.
Ref<CFArrayRef> listFolder(const char* path);

bool isBundle(CFBundleRef bundle);

} // namespace cf::bundle

struct __CFBundle {
    CFRuntimeBase base;
    cf::bundle::Folder folder;
    cf::Ref<CFStringRef> path; // By which bundles are told apart.
    cf::Ref<CFURLRef> url;
    cf::Ref<CFDictionaryRef> info;
    cf::Ref<CFURLRef> executable; // Of a program or library that was found in another way.
    bool isMain = false;

    host::Mutex mutex; // Guards the members below, which are made when first asked for.
    cf::Ref<CFArrayRef> searchOrder;
    cf::Ref<CFDictionaryRef> localInfo;
    cf::Ref<CFMutableDictionaryRef> tables; // Of strings, by name.
    void* library = nullptr;

    ~__CFBundle() { HostLibraryClose(library); }
};

namespace cf::bundle {

// The bundle in use for the folder, or a new one.
Ref<CFBundleRef> findOrCreate(CFAllocatorRef allocator, const Folder& folder);

// The languages to look in for a bundle's resources, worked out once.
Ref<CFArrayRef> searchOrderOf(CFBundleRef bundle);

} // namespace cf::bundle
