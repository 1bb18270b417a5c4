// CFBundleLocalization.cpp: choosing among a bundle's languages, and tables of strings.

#include <CoreFoundation/CFLocale.h>

#include "BundleInternal.h"
#include "CFBundle.h"
#include "FileData.h"
#include "StringBytes.h"

#include <algorithm>
#include <mutex>

namespace {

using cf::bundle::isBundle;

// Letters compared without case, and '_' as '-': "pt_BR" and "pt-br" name one language.
char folded(char letter) {
    if (letter == '_')
        return '-';
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool isSameLanguage(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return folded(x) == folded(y); });
}

CFStringRef stringAt(CFArrayRef array, CFIndex index) {
    const void* const value = CFArrayGetValueAtIndex(array, index);
    const bool isText = value && CFGetTypeID(value) == CFStringGetTypeID();
    return isText ? static_cast<CFStringRef>(value) : nullptr;
}

void appendOnce(CFMutableArrayRef array, CFStringRef value) {
    if (!CFArrayContainsValue(array, CFRangeMake(0, CFArrayGetCount(array)), value))
        CFArrayAppendValue(array, value);
}

void appendMatches(CFArrayRef available, std::string_view wanted, CFMutableArrayRef result) {
    for (CFIndex i = 0, count = CFArrayGetCount(available); i < count; ++i) {
        const CFStringRef language = stringAt(available, i);
        const cf::CString name(language);
        if (name && isSameLanguage(name.get(), wanted))
            appendOnce(result, language);
    }
}

// The languages that serve one preference: "zh-Hant-TW", then "zh-Hant", then "zh".
void appendServing(CFArrayRef available, CFStringRef preferred, CFMutableArrayRef result) {
    const cf::CString text(preferred);
    std::string_view wanted = text ? text.get() : "";
    while (!wanted.empty()) {
        appendMatches(available, wanted, result);
        const size_t mark = wanted.find_last_of("-_");
        wanted = wanted.substr(0, mark == std::string_view::npos ? 0 : mark);
    }
}

cf::Ref<CFArrayRef> copyServing(CFArrayRef available, CFArrayRef preferred) {
    const auto result = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    for (CFIndex i = 0, count = CFArrayGetCount(preferred); i < count; ++i)
        appendServing(available, stringAt(preferred, i), result.get());
    return cf::retain<CFArrayRef>(result.get());
}

// ---- Tables of strings

cf::Ref<CFDictionaryRef> readTable(CFBundleRef bundle, CFStringRef name, CFArrayRef languages) {
    const auto url =
        cf::bundle::findResource(bundle->folder, {name, CFSTR("strings"), nullptr}, languages);
    cf::url::HostPath path;
    cf::FileState state;
    return url && cf::url::getHostPath(url.get(), path) ? cf::readDictionary(path.text, state)
                                                        : nullptr;
}

cf::Ref<CFDictionaryRef> makeEmpty() {
    return cf::adopt(CFDictionaryCreate(nullptr, nullptr, nullptr, 0,
                                        &kCFTypeDictionaryKeyCallBacks,
                                        &kCFTypeDictionaryValueCallBacks));
}

// A table is read once; a missing one is remembered as empty.
cf::Ref<CFDictionaryRef> findTable(CFBundleRef bundle, CFStringRef name) {
    const auto languages = cf::bundle::searchOrderOf(bundle);
    const std::lock_guard hold(bundle->mutex);
    if (!bundle->tables)
        bundle->tables = cf::adopt(CFDictionaryCreateMutable(
            nullptr, 0, &kCFCopyStringDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    if (const void* const known = CFDictionaryGetValue(bundle->tables.get(), name))
        return cf::retain(static_cast<CFDictionaryRef>(known));
    auto table = readTable(bundle, name, languages.get());
    if (!table)
        table = makeEmpty();
    if (table)
        CFDictionarySetValue(bundle->tables.get(), name, table.get());
    return table;
}

bool isEmpty(CFStringRef string) {
    return !string || CFStringGetLength(string) == 0;
}

} // namespace

namespace cf::bundle {

Ref<CFArrayRef> copyLanguages(const Folder& folder, CFDictionaryRef info) {
    const auto result = adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    const auto names = listFolder(folder.resources().get());
    for (CFIndex i = 0, count = CFArrayGetCount(names.get()); i < count; ++i) {
        const CFStringRef name = stringAt(names.get(), i);
        if (!CFStringHasSuffix(name, CFSTR(".lproj")))
            continue;
        const auto language = adopt(CFStringCreateWithSubstring(
            nullptr, name, CFRangeMake(0, CFStringGetLength(name) - 6)));
        appendOnce(result.get(), language.get());
    }
    const void* const listed = CFDictionaryGetValue(info, kCFBundleLocalizationsKey);
    if (listed && CFGetTypeID(listed) == CFArrayGetTypeID()) {
        const auto array = static_cast<CFArrayRef>(listed);
        for (CFIndex i = 0, count = CFArrayGetCount(array); i < count; ++i)
            if (const CFStringRef language = stringAt(array, i))
                appendOnce(result.get(), language);
    }
    return retain<CFArrayRef>(result.get());
}

Ref<CFArrayRef> copySearchOrder(const Folder& folder, CFDictionaryRef info) {
    const auto available = copyLanguages(folder, info);
    const auto preferred = adopt(CFLocaleCopyPreferredLanguages());
    const auto serving = copyServing(available.get(), preferred.get());
    const auto order = adopt(CFArrayCreateMutableCopy(nullptr, 0, serving.get()));
    if (const CFStringRef region = textIn(info, kCFBundleDevelopmentRegionKey))
        appendServing(available.get(), region, order.get());
    // What does not depend on the language, though it lies among what does.
    appendMatches(available.get(), "Base", order.get());
    return retain<CFArrayRef>(order.get());
}

Ref<CFArrayRef> searchOrderOf(CFBundleRef bundle) {
    const std::lock_guard hold(bundle->mutex);
    if (!bundle->searchOrder)
        bundle->searchOrder = copySearchOrder(bundle->folder, bundle->info.get());
    return bundle->searchOrder;
}

} // namespace cf::bundle

CFArrayRef CFBundleCopyBundleLocalizations(CFBundleRef bundle) {
    if (!isBundle(bundle))
        return nullptr;
    auto languages = cf::bundle::copyLanguages(bundle->folder, bundle->info.get());
    return CFArrayGetCount(languages.get()) > 0 ? languages.release() : nullptr;
}

CFArrayRef CFBundleCopyPreferredLocalizationsFromArray(CFArrayRef locArray) {
    return CFBundleCopyLocalizationsForPreferences(locArray, nullptr);
}

CFArrayRef CFBundleCopyLocalizationsForPreferences(CFArrayRef locArray, CFArrayRef prefArray) {
    if (!locArray)
        return nullptr;
    const auto users = cf::adopt(prefArray ? nullptr : CFLocaleCopyPreferredLanguages());
    auto result = copyServing(locArray, prefArray ? prefArray : users.get());
    if (CFArrayGetCount(result.get()) > 0 || CFArrayGetCount(locArray) == 0)
        return result.release();
    const void* first = CFArrayGetValueAtIndex(locArray, 0);
    return CFArrayCreate(nullptr, &first, 1, &kCFTypeArrayCallBacks);
}

CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key, CFStringRef value,
                                        CFStringRef tableName) {
    const CFStringRef name = isEmpty(tableName) ? CFSTR("Localizable") : tableName;
    const auto table = isBundle(bundle) && key ? findTable(bundle, name) : nullptr;
    const CFStringRef text = cf::bundle::textIn(table.get(), key);
    const CFStringRef fallback = isEmpty(value) ? key : value;
    return cf::retain(text ? text : fallback).release();
}

CFDictionaryRef CFBundleGetLocalInfoDictionary(CFBundleRef bundle) {
    if (!isBundle(bundle))
        return nullptr;
    const auto table = findTable(bundle, CFSTR("InfoPlist"));
    const std::lock_guard hold(bundle->mutex);
    if (!bundle->localInfo && CFDictionaryGetCount(table.get()) > 0)
        bundle->localInfo = table;
    return bundle->localInfo.get();
}
