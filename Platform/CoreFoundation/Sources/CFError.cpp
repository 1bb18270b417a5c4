// CFError.cpp: errors, and the texts made of them.

#include "CFError.h"

#include <CoreFoundation/CFConstantString.h>

#include "ErrorInternal.h"
#include "Record.h"
#include "StringBytes.h"

#include <cstring>

CF_CONST_STRING_DECL(kCFErrorDomainPOSIX, "NSPOSIXErrorDomain");
CF_CONST_STRING_DECL(kCFErrorDomainOSStatus, "NSOSStatusErrorDomain");
CF_CONST_STRING_DECL(kCFErrorDomainMach, "NSMachErrorDomain");
CF_CONST_STRING_DECL(kCFErrorDomainCocoa, "NSCocoaErrorDomain");

CF_CONST_STRING_DECL(kCFErrorLocalizedDescriptionKey, "NSLocalizedDescription");
CF_CONST_STRING_DECL(kCFErrorLocalizedFailureKey, "NSLocalizedFailure");
CF_CONST_STRING_DECL(kCFErrorLocalizedFailureReasonKey, "NSLocalizedFailureReason");
CF_CONST_STRING_DECL(kCFErrorLocalizedRecoverySuggestionKey, "NSLocalizedRecoverySuggestion");
CF_CONST_STRING_DECL(kCFErrorDescriptionKey, "NSDescription");
CF_CONST_STRING_DECL(kCFErrorUnderlyingErrorKey, "NSUnderlyingError");
CF_CONST_STRING_DECL(kCFErrorURLKey, "NSURL");
CF_CONST_STRING_DECL(kCFErrorFilePathKey, "NSFilePath");

struct __CFError {
    CFRuntimeBase base;
    cf::Ref<CFErrorDomain> domain;
    CFIndex code = 0;
    cf::Ref<CFDictionaryRef> userInfo;
};

namespace {

Boolean errorsAreEqual(CFTypeRef a, CFTypeRef b) {
    const auto* const one = static_cast<const __CFError*>(a);
    const auto* const other = static_cast<const __CFError*>(b);
    return one->code == other->code && CFEqual(one->domain.get(), other->domain.get()) &&
           CFEqual(one->userInfo.get(), other->userInfo.get());
}

CFHashCode hashError(CFTypeRef object) {
    const auto* const error = static_cast<const __CFError*>(object);
    return CFHash(error->domain.get()) + static_cast<CFHashCode>(error->code);
}

CFStringRef copyErrorForFormats(CFTypeRef object, CFTypeRef) {
    return CFErrorCopyDescription(static_cast<CFErrorRef>(const_cast<void*>(object)));
}

CFStringRef copyErrorForDebugging(CFTypeRef object) {
    const auto* const error = static_cast<const __CFError*>(object);
    return CFStringCreateWithFormat(nullptr, nullptr, CFSTR("Error Domain=%@ Code=%ld UserInfo=%@"),
                                    error->domain.get(), long{error->code}, error->userInfo.get());
}

constexpr CFRuntimeClass kErrorClass = {
    .className = "CFError",
    .finalize = cf::destroy<__CFError>,
    .equal = errorsAreEqual,
    .hash = hashError,
    .copyFormattingDescription = copyErrorForFormats,
    .copyDebugDescription = copyErrorForDebugging,
};

bool isError(CFErrorRef error) {
    return cf::isA(error, kErrorClass);
}

CFErrorRef createError(CFAllocatorRef allocator, CFErrorDomain domain, CFIndex code,
                       cf::Ref<CFDictionaryRef> userInfo) {
    auto ownDomain = cf::adopt(domain ? CFStringCreateCopy(allocator, domain) : nullptr);
    if (!ownDomain || !userInfo)
        return nullptr;
    auto* const error = cf::construct<__CFError>(allocator, CFErrorGetTypeID());
    if (!error)
        return nullptr;
    error->domain = std::move(ownDomain);
    error->code = code;
    error->userInfo = std::move(userInfo);
    return error;
}

cf::Ref<CFStringRef> textForKey(CFErrorRef error, CFStringRef key) {
    const CFTypeRef value = CFDictionaryGetValue(error->userInfo.get(), key);
    if (!value || CFGetTypeID(value) != CFStringGetTypeID())
        return nullptr;
    return cf::retain(static_cast<CFStringRef>(value));
}

cf::Ref<CFStringRef> describe(CFErrorRef error) {
    using String = cf::Ref<CFStringRef>;
    const auto reason = cf::adopt(CFErrorCopyFailureReason(error));
    const String failure = textForKey(error, kCFErrorLocalizedFailureKey);
    const String description = textForKey(error, kCFErrorDescriptionKey);
    const CFStringRef opening =
        failure ? failure.get() : CFSTR("The operation couldn\xE2\x80\x99t be completed.");
    if (reason)
        return cf::adopt(
            CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%@ %@"), opening, reason.get()));
    if (description)
        return cf::adopt(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%@ (%@ error %ld - %@)"),
                                                  opening, error->domain.get(), long{error->code},
                                                  description.get()));
    return cf::adopt(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%@ (%@ error %ld.)"),
                                              opening, error->domain.get(), long{error->code}));
}

// The reentrant form of the C library's text, whichever of its two signatures it has.
[[maybe_unused]] const char* textOf(int status, const char* buffer) {
    return status == 0 ? buffer : nullptr;
}
[[maybe_unused]] const char* textOf(const char* text, const char*) {
    return text;
}

} // namespace

CFTypeID CFErrorGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kErrorClass);
    return id;
}

CFErrorRef CFErrorCreate(CFAllocatorRef allocator, CFErrorDomain domain, CFIndex code,
                         CFDictionaryRef userInfo) {
    if (!userInfo)
        return CFErrorCreateWithUserInfoKeysAndValues(allocator, domain, code, nullptr, nullptr, 0);
    return createError(allocator, domain, code,
                       cf::adopt(CFDictionaryCreateCopy(allocator, userInfo)));
}

CFErrorRef CFErrorCreateWithUserInfoKeysAndValues(CFAllocatorRef allocator, CFErrorDomain domain,
                                                  CFIndex code, const void* const* userInfoKeys,
                                                  const void* const* userInfoValues,
                                                  CFIndex numUserInfoValues) {
    const bool hasArrays = userInfoKeys && userInfoValues;
    if (numUserInfoValues < 0 || (numUserInfoValues > 0 && !hasArrays)) {
        CF_LOG_WARNING("%ld values of a user info are not given", long{numUserInfoValues});
        return nullptr;
    }
    auto userInfo = cf::adopt(CFDictionaryCreate(
        allocator, const_cast<const void**>(userInfoKeys), const_cast<const void**>(userInfoValues),
        numUserInfoValues, &kCFCopyStringDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    return createError(allocator, domain, code, std::move(userInfo));
}

CFErrorDomain CFErrorGetDomain(CFErrorRef error) {
    return isError(error) ? error->domain.get() : nullptr;
}

CFIndex CFErrorGetCode(CFErrorRef error) {
    return isError(error) ? error->code : 0;
}

CFDictionaryRef CFErrorCopyUserInfo(CFErrorRef error) {
    return isError(error) ? cf::Ref(error->userInfo).release() : nullptr;
}

CFStringRef CFErrorCopyDescription(CFErrorRef error) {
    if (!isError(error))
        return nullptr;
    auto own = textForKey(error, kCFErrorLocalizedDescriptionKey);
    return own ? own.release() : describe(error).release();
}

CFStringRef CFErrorCopyFailureReason(CFErrorRef error) {
    if (!isError(error))
        return nullptr;
    if (auto own = textForKey(error, kCFErrorLocalizedFailureReasonKey))
        return own.release();
    if (!CFEqual(error->domain.get(), kCFErrorDomainPOSIX) || error->code < 0 ||
        error->code > INT32_MAX)
        return nullptr;
    char buffer[256] = {};
    const auto found = strerror_r(static_cast<int>(error->code), buffer, sizeof buffer);
    const char* const text = textOf(found, buffer);
    return text ? cf::makeString(nullptr, text).release() : nullptr;
}

CFStringRef CFErrorCopyRecoverySuggestion(CFErrorRef error) {
    return isError(error) ? textForKey(error, kCFErrorLocalizedRecoverySuggestionKey).release()
                          : nullptr;
}

namespace cf {

void storeError(CFErrorRef* result, CFErrorDomain domain, CFIndex code, const char* description) {
    if (!result)
        return;
    const auto text = makeString(nullptr, description);
    const void* const key = kCFErrorDescriptionKey;
    const void* const value = text.get();
    *result =
        CFErrorCreateWithUserInfoKeysAndValues(nullptr, domain, code, &key, &value, text ? 1 : 0);
}

} // namespace cf
