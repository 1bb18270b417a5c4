// CFURLAccess.cpp: what a URL names, loaded at once.

#include "CFURLAccess.h"

#include <CoreFoundation/CFConstantString.h>
#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFNumber.h>

#include "Base64.h"
#include "CFRuntimeInternal.h"
#include "CFURLInternal.h"
#include "FileData.h"

CF_CONST_STRING_DECL(kCFURLFileExists, "kCFURLFileExists");
CF_CONST_STRING_DECL(kCFURLFileLength, "kCFURLFileLength");
CF_CONST_STRING_DECL(kCFURLFileLastModificationTime, "kCFURLFileLastModificationTime");

namespace {

using Data = cf::Ref<CFDataRef>;

constexpr CFIndex kNoError = 0;

Data makeData(CFAllocatorRef allocator, const cf::TextBuffer& bytes) {
    static constexpr UInt8 kNothing = 0;
    const auto* const start =
        bytes.empty() ? &kNothing : reinterpret_cast<const UInt8*>(bytes.data());
    return cf::adopt(CFDataCreate(allocator, start, static_cast<CFIndex>(bytes.size())));
}

Data loadFile(CFURLRef url, CFIndex& error) {
    cf::url::HostPath path;
    cf::FileState state = cf::FileState::Missing;
    auto data = cf::url::getHostPath(url, path) ? cf::readFile(path.text, state) : nullptr;
    if (!data)
        error = state == cf::FileState::Missing ? kCFURLResourceNotFoundError
                                                : kCFURLResourceAccessViolationError;
    return data;
}

bool endsWith64(std::string_view mediaType) {
    constexpr std::string_view kMark = ";base64";
    if (mediaType.size() < kMark.size())
        return false;
    mediaType.remove_prefix(mediaType.size() - kMark.size());
    for (size_t i = 0; i < kMark.size(); ++i) {
        const char c = mediaType[i];
        if ((c >= 'A' && c <= 'Z' ? char(c + ('a' - 'A')) : c) != kMark[i])
            return false;
    }
    return true;
}

// "data:", a media type that may be missing, a comma, and the bytes with their escapes. A fragment
// is no part of them, while a question mark is a letter like others.
Data loadText(CFAllocatorRef allocator, CFURLRef url, CFIndex& error) {
    const std::string_view text = url->text();
    const auto start = static_cast<size_t>(url->parts.scheme.end()) + 1;
    const auto end = url->parts.fragment.isPresent()
                         ? static_cast<size_t>(url->parts.fragment.start) - 1
                         : text.size();
    const size_t comma = text.find(',', start);
    error = kCFURLImproperArgumentsError;
    if (comma >= end)
        return nullptr;
    cf::TextBuffer bytes;
    if (!cf::url::appendUnescaped(text.substr(comma + 1, end - comma - 1), bytes))
        return nullptr;
    if (endsWith64(text.substr(start, comma - start))) {
        cf::TextBuffer decoded;
        if (!cf::decodeBase64(view(bytes), decoded))
            return nullptr;
        bytes.swap(decoded);
    }
    if (bytes.failed())
        return nullptr;
    error = kNoError;
    return makeData(allocator, bytes);
}

bool isDataScheme(CFURLRef url) {
    const auto scheme = cf::adopt(CFURLCopyScheme(url));
    return scheme && CFStringCompare(scheme.get(), CFSTR("data"), kCFCompareCaseInsensitive) ==
                         kCFCompareEqualTo;
}

Data load(CFAllocatorRef allocator, CFURLRef url, CFIndex& error) {
    error = kNoError;
    if (cf::url::isFile(url))
        return loadFile(url, error);
    if (isDataScheme(url))
        return loadText(allocator, url, error);
    CF_LOG_ERROR("there is no loader for the URL %.*s", int{url->length}, url->bytes);
    error = kCFURLUnknownSchemeError;
    return nullptr;
}

// ---- Properties.

cf::Ref<CFTypeRef> propertyOf(CFURLRef url, CFDataRef data, CFStringRef key) {
    if (CFEqual(key, kCFURLFileExists))
        return cf::retain<CFTypeRef>(kCFBooleanTrue);
    if (CFEqual(key, kCFURLFileLength)) {
        const int64_t length = CFDataGetLength(data);
        return cf::adopt<CFTypeRef>(CFNumberCreate(nullptr, kCFNumberSInt64Type, &length));
    }
    CFTypeRef date = nullptr;
    if (CFEqual(key, kCFURLFileLastModificationTime) && cf::url::isFile(url))
        CFURLCopyResourcePropertyForKey(url, kCFURLContentModificationDateKey, &date, nullptr);
    return cf::adopt(date);
}

cf::Ref<CFDictionaryRef> makeProperties(CFAllocatorRef allocator, CFURLRef url, CFDataRef data,
                                        CFArrayRef desired) {
    const auto result = cf::adopt(CFDictionaryCreateMutable(
        allocator, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    if (!result)
        return nullptr;
    const auto add = [&](CFStringRef key) {
        if (const auto value = key ? propertyOf(url, data, key) : nullptr)
            CFDictionarySetValue(result.get(), key, value.get());
    };
    if (!desired)
        for (CFStringRef key : {kCFURLFileExists, kCFURLFileLength, kCFURLFileLastModificationTime})
            add(key);
    for (CFIndex i = 0, count = desired ? CFArrayGetCount(desired) : 0; i < count; ++i)
        add(static_cast<CFStringRef>(CFArrayGetValueAtIndex(desired, i)));
    return cf::adopt(CFDictionaryCreateCopy(allocator, result.get()));
}

} // namespace

Boolean CFURLCreateDataAndPropertiesFromResource(CFAllocatorRef allocator, CFURLRef url,
                                                 CFDataRef* resourceData,
                                                 CFDictionaryRef* properties,
                                                 CFArrayRef desiredProperties, SInt32* errorCode) {
    if (resourceData)
        *resourceData = nullptr;
    if (properties)
        *properties = nullptr;
    CFIndex error = kCFURLImproperArgumentsError;
    auto data = cf::url::isURL(url) ? load(allocator, url, error) : nullptr;
    if (!data && error == kNoError)
        error = kCFURLUnknownError; // There is no memory for it.
    if (errorCode)
        *errorCode = static_cast<SInt32>(error);
    if (!data)
        return false;
    if (properties)
        *properties = makeProperties(allocator, url, data.get(), desiredProperties).release();
    if (resourceData)
        *resourceData = data.release();
    return true;
}
