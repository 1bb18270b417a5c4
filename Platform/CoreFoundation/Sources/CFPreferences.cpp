// CFPreferences.cpp: settings by application and by domain.

#include "CFPreferences.h"

#include <CoreFoundation/CFConstantString.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFPropertyList.h>

#include "CFRuntimeInternal.h"
#include "PreferencesStore.h"
#include "StringBytes.h"

#include <array>
#include <charconv>

CF_CONST_STRING_DECL(kCFPreferencesCurrentApplication, "kCFPreferencesCurrentApplication");
CF_CONST_STRING_DECL(kCFPreferencesAnyApplication, "kCFPreferencesAnyApplication");
CF_CONST_STRING_DECL(kCFPreferencesCurrentUser, "kCFPreferencesCurrentUser");
CF_CONST_STRING_DECL(kCFPreferencesAnyUser, "kCFPreferencesAnyUser");
CF_CONST_STRING_DECL(kCFPreferencesCurrentHost, "kCFPreferencesCurrentHost");
CF_CONST_STRING_DECL(kCFPreferencesAnyHost, "kCFPreferencesAnyHost");

namespace {

using cf::preferences::Domain;
using cf::preferences::findDomain;
using Value = cf::Ref<CFTypeRef>;

constexpr size_t kDomainCount = 8;

// The domains that look-up by application goes through, first to last.
Domain domainInSearch(CFStringRef application, size_t index) {
    const CFStringRef user = index < 4 ? kCFPreferencesCurrentUser : kCFPreferencesAnyUser;
    const CFStringRef who = index % 4 < 2 ? application : kCFPreferencesAnyApplication;
    const CFStringRef host = index % 2 == 0 ? kCFPreferencesCurrentHost : kCFPreferencesAnyHost;
    return findDomain(who, user, host);
}

bool isOfType(CFTypeRef object, CFTypeID type) {
    return object && CFGetTypeID(object) == type;
}

bool equalsIgnoringCase(CFStringRef a, CFStringRef b) {
    return CFStringCompare(a, b, kCFCompareCaseInsensitive) == kCFCompareEqualTo;
}

// Whether `string` is one of the words for a truth, which is then stored.
bool readTruth(CFStringRef string, Boolean& value) {
    const CFStringRef yes[] = {CFSTR("true"), CFSTR("yes"), CFSTR("1")};
    const CFStringRef no[] = {CFSTR("false"), CFSTR("no"), CFSTR("0")};
    for (size_t i = 0; i < std::size(yes); ++i) {
        value = equalsIgnoringCase(string, yes[i]);
        if (value || equalsIgnoringCase(string, no[i]))
            return true;
    }
    return false;
}

bool readTruth(CFTypeRef object, Boolean& value) {
    if (isOfType(object, CFBooleanGetTypeID())) {
        value = CFBooleanGetValue(static_cast<CFBooleanRef>(object));
        return true;
    }
    if (isOfType(object, CFNumberGetTypeID())) {
        double number = 0;
        CFNumberGetValue(static_cast<CFNumberRef>(object), kCFNumberFloat64Type, &number);
        value = number != 0;
        return true;
    }
    return isOfType(object, CFStringGetTypeID()) &&
           readTruth(static_cast<CFStringRef>(object), value);
}

bool readInteger(CFTypeRef object, CFIndex& value) {
    if (isOfType(object, CFBooleanGetTypeID())) {
        value = CFBooleanGetValue(static_cast<CFBooleanRef>(object));
        return true;
    }
    if (isOfType(object, CFNumberGetTypeID()))
        return CFNumberGetValue(static_cast<CFNumberRef>(object), kCFNumberCFIndexType, &value);
    cf::TextBuffer digits;
    if (!isOfType(object, CFStringGetTypeID()) ||
        !cf::appendUTF8(static_cast<CFStringRef>(object), digits))
        return false;
    const char* const last = digits.data() + digits.size();
    const auto [end, status] = std::from_chars(digits.data(), last, value);
    return !digits.empty() && status == std::errc() && end == last;
}

// Copies what is to be set, and marks what is to be removed.
class Changes {
public:
    Changes()
        : changes_(
              cf::adopt(CFDictionaryCreateMutable(nullptr, 0, &kCFCopyStringDictionaryKeyCallBacks,
                                                  &kCFTypeDictionaryValueCallBacks))) {}

    void set(CFTypeRef key, CFTypeRef value) {
        if (!isOfType(key, CFStringGetTypeID()))
            return;
        const auto copy = cf::adopt<CFTypeRef>(
            CFPropertyListCreateDeepCopy(nullptr, value, kCFPropertyListImmutable));
        if (copy)
            CFDictionarySetValue(changes_.get(), key, copy.get());
        else
            CF_LOG_WARNING("a setting that is no property list is left out");
    }
    void remove(CFTypeRef key) {
        if (isOfType(key, CFStringGetTypeID()))
            CFDictionarySetValue(changes_.get(), key, kCFNull);
    }
    void applyTo(const Domain& domain) const {
        if (changes_ && CFDictionaryGetCount(changes_.get()) > 0)
            cf::preferences::change(domain, changes_.get());
    }

private:
    cf::Ref<CFMutableDictionaryRef> changes_;
};

} // namespace

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID) {
    if (!key || !applicationID)
        return nullptr;
    for (size_t i = 0; i < kDomainCount; ++i)
        if (auto value = cf::preferences::copyValue(domainInSearch(applicationID, i), key))
            return value.release();
    return nullptr;
}

Boolean CFPreferencesGetAppBooleanValue(CFStringRef key, CFStringRef applicationID,
                                        Boolean* keyExistsAndHasValidFormat) {
    const auto value = cf::adopt<CFTypeRef>(CFPreferencesCopyAppValue(key, applicationID));
    Boolean result = false;
    const bool isThere = value && readTruth(value.get(), result);
    if (keyExistsAndHasValidFormat)
        *keyExistsAndHasValidFormat = isThere;
    return isThere && result;
}

CFIndex CFPreferencesGetAppIntegerValue(CFStringRef key, CFStringRef applicationID,
                                        Boolean* keyExistsAndHasValidFormat) {
    const auto value = cf::adopt<CFTypeRef>(CFPreferencesCopyAppValue(key, applicationID));
    CFIndex result = 0;
    const bool isThere = value && readInteger(value.get(), result);
    if (keyExistsAndHasValidFormat)
        *keyExistsAndHasValidFormat = isThere;
    return isThere ? result : 0;
}

void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID) {
    CFPreferencesSetValue(key, value, applicationID, kCFPreferencesCurrentUser,
                          kCFPreferencesAnyHost);
}

Boolean CFPreferencesAppSynchronize(CFStringRef applicationID) {
    if (!applicationID)
        return false;
    bool succeeded = true;
    for (size_t i = 0; i < kDomainCount; ++i) {
        const Domain domain = domainInSearch(applicationID, i);
        succeeded = (!domain.isKnown() || cf::preferences::synchronize(domain)) && succeeded;
    }
    return succeeded;
}

Boolean CFPreferencesAppValueIsForced(CFStringRef, CFStringRef) {
    return false;
}

CFPropertyListRef CFPreferencesCopyValue(CFStringRef key, CFStringRef applicationID,
                                         CFStringRef userName, CFStringRef hostName) {
    if (!key)
        return nullptr;
    return cf::preferences::copyValue(findDomain(applicationID, userName, hostName), key).release();
}

CFDictionaryRef CFPreferencesCopyMultiple(CFArrayRef keysToFetch, CFStringRef applicationID,
                                          CFStringRef userName, CFStringRef hostName) {
    auto all = cf::preferences::copyValues(findDomain(applicationID, userName, hostName));
    if (!keysToFetch || !all)
        return all.release();
    auto chosen = cf::adopt(CFDictionaryCreateMutable(
        nullptr, 0, &kCFCopyStringDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    for (CFIndex i = 0, count = CFArrayGetCount(keysToFetch); i < count; ++i) {
        const void* const key = CFArrayGetValueAtIndex(keysToFetch, i);
        const void* const value =
            isOfType(key, CFStringGetTypeID()) ? CFDictionaryGetValue(all.get(), key) : nullptr;
        if (value)
            CFDictionarySetValue(chosen.get(), key, value);
    }
    return chosen.release();
}

void CFPreferencesSetValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID,
                           CFStringRef userName, CFStringRef hostName) {
    Changes changes;
    if (value)
        changes.set(key, value);
    else
        changes.remove(key);
    changes.applyTo(findDomain(applicationID, userName, hostName));
}

void CFPreferencesSetMultiple(CFDictionaryRef keysToSet, CFArrayRef keysToRemove,
                              CFStringRef applicationID, CFStringRef userName,
                              CFStringRef hostName) {
    Changes changes;
    for (CFIndex i = 0, count = CFArrayGetCount(keysToRemove); i < count; ++i)
        changes.remove(CFArrayGetValueAtIndex(keysToRemove, i));
    const auto take = [](const void* key, const void* value, void* context) {
        static_cast<Changes*>(context)->set(key, value);
    };
    CFDictionaryApplyFunction(keysToSet, take, &changes);
    changes.applyTo(findDomain(applicationID, userName, hostName));
}

Boolean CFPreferencesSynchronize(CFStringRef applicationID, CFStringRef userName,
                                 CFStringRef hostName) {
    return cf::preferences::synchronize(findDomain(applicationID, userName, hostName));
}

CFArrayRef CFPreferencesCopyKeyList(CFStringRef applicationID, CFStringRef userName,
                                    CFStringRef hostName) {
    const auto values = cf::preferences::copyValues(findDomain(applicationID, userName, hostName));
    if (!values || CFDictionaryGetCount(values.get()) == 0)
        return nullptr;
    auto keys = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    const auto collect = [](const void* key, const void*, void* context) {
        CFArrayAppendValue(static_cast<CFMutableArrayRef>(context), key);
    };
    CFDictionaryApplyFunction(values.get(), collect, keys.get());
    return keys.release();
}
