// CFURLResources.cpp: what the host knows about the file that a URL names.

#include <CoreFoundation/CFConstantString.h>
#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFNumber.h>
#include <Host/Host.h>

#include "CFURL.h"
#include "CFURLInternal.h"
#include "ErrorInternal.h"
#include "StringBytes.h"

CF_CONST_STRING_DECL(kCFURLNameKey, "NSURLNameKey");
CF_CONST_STRING_DECL(kCFURLPathKey, "_NSURLPathKey");
CF_CONST_STRING_DECL(kCFURLIsDirectoryKey, "NSURLIsDirectoryKey");
CF_CONST_STRING_DECL(kCFURLIsRegularFileKey, "NSURLIsRegularFileKey");
CF_CONST_STRING_DECL(kCFURLFileSizeKey, "NSURLFileSizeKey");
CF_CONST_STRING_DECL(kCFURLContentModificationDateKey, "NSURLContentModificationDateKey");

namespace {

using cf::url::HostPath;
using Value = cf::Ref<CFTypeRef>;

enum FileError : CFIndex { kNoSuchFile = 260, kUnsupportedScheme = 262 };

void storeFileError(CFURLRef url, FileError code, CFErrorRef* error) {
    if (!error)
        return;
    const void* const key = kCFErrorURLKey;
    const void* const value = url;
    *error = CFErrorCreateWithUserInfoKeysAndValues(nullptr, kCFErrorDomainCocoa, code, &key,
                                                    &value, url ? 1 : 0);
}

// The path of a file that is there.
bool findFile(CFURLRef url, HostPath& path, CFErrorRef* error) {
    if (!cf::url::isURL(url) || !cf::url::isFile(url)) {
        storeFileError(cf::url::isURL(url) ? url : nullptr, kUnsupportedScheme, error);
        return false;
    }
    if (!cf::url::getHostPath(url, path) || !HostFileExists(path.text)) {
        storeFileError(url, kNoSuchFile, error);
        return false;
    }
    return true;
}

Value truth(bool value) {
    return cf::retain<CFTypeRef>(value ? kCFBooleanTrue : kCFBooleanFalse);
}

// -1 for what is not a regular file, or may not be read.
int64_t sizeOf(const HostPath& path) {
    const host::Descriptor file(HostFileOpenForReading(path.text));
    return file ? HostFileGetSize(file.get()) : -1;
}

Value modificationDate(const HostPath& path) {
    double seconds = 0;
    if (!HostFileGetModificationTime(path.text, &seconds))
        return nullptr;
    return cf::adopt<CFTypeRef>(CFDateCreate(nullptr, seconds - kCFAbsoluteTimeIntervalSince1970));
}

Value fileSize(const HostPath& path) {
    const int64_t size = HostFileIsDirectory(path.text) ? -1 : sizeOf(path);
    return size < 0 ? nullptr
                    : cf::adopt<CFTypeRef>(CFNumberCreate(nullptr, kCFNumberSInt64Type, &size));
}

Value propertyOf(CFURLRef url, const HostPath& path, CFStringRef key) {
    if (CFEqual(key, kCFURLNameKey))
        return cf::adopt<CFTypeRef>(CFURLCopyLastPathComponent(url));
    if (CFEqual(key, kCFURLPathKey))
        return cf::retain<CFTypeRef>(cf::makeString(nullptr, path.text).get());
    if (CFEqual(key, kCFURLIsDirectoryKey))
        return truth(HostFileIsDirectory(path.text));
    if (CFEqual(key, kCFURLIsRegularFileKey))
        return truth(!HostFileIsDirectory(path.text) && sizeOf(path) >= 0);
    if (CFEqual(key, kCFURLFileSizeKey))
        return fileSize(path);
    if (CFEqual(key, kCFURLContentModificationDateKey))
        return modificationDate(path);
    return nullptr;
}

} // namespace

Boolean CFURLResourceIsReachable(CFURLRef url, CFErrorRef* error) {
    HostPath path;
    return findFile(url, path, error);
}

Boolean CFURLCopyResourcePropertyForKey(CFURLRef url, CFStringRef key,
                                        void* propertyValueTypeRefPtr, CFErrorRef* error) {
    if (!propertyValueTypeRefPtr)
        return false;
    auto& result = *static_cast<CFTypeRef*>(propertyValueTypeRefPtr);
    result = nullptr;
    HostPath path;
    if (!findFile(url, path, error))
        return false;
    if (key)
        result = propertyOf(url, path, key).release();
    return true;
}
