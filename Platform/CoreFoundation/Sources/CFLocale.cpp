// CFLocale.cpp: the locale class and what a locale knows.

#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRef.h>

#include "CFLocaleInternal.h"
#include "CFLocaleNames.h"
#include "CFRuntimeInternal.h"
#include "CFStringICU.h"
#include "CFStringInternal.h"
#include "Record.h"

#include <unicode/ucurr.h>
#include <unicode/uloc.h>
#include <unicode/ulocdata.h>
#include <unicode/unum.h>

#include <array>
#include <memory>

struct __CFLocale {
    CFRuntimeBase base;
    char name[ULOC_FULLNAME_CAPACITY]; // ICU's, which is also the identifier.
    char language[ULOC_LANG_CAPACITY];
    HostOnce valuesOnce;
    cf::Ref<CFStringRef> identifier;
    cf::Ref<CFDictionaryRef> values; // Made when the first one is asked for.
};

namespace {

CFLocaleRef as(CFTypeRef object) {
    return static_cast<CFLocaleRef>(object);
}

Boolean equalLocales(CFTypeRef a, CFTypeRef b) {
    return std::strcmp(as(a)->name, as(b)->name) == 0;
}

CFHashCode hashLocale(CFTypeRef object) {
    return CFHash(as(object)->identifier.get());
}

CFTypeRef copyLocale(CFAllocatorRef, CFTypeRef object) {
    return CFRetain(object);
}

CFStringRef copyDescription(CFTypeRef object) {
    return CFStringCreateWithFormat(nullptr, nullptr, CFSTR("<CFLocale %p>{identifier = \"%@\"}"),
                                    object, as(object)->identifier.get());
}

constexpr CFRuntimeClass kLocaleClass = {
    .className = "CFLocale",
    .copy = copyLocale,
    .finalize = cf::destroy<__CFLocale>,
    .equal = equalLocales,
    .hash = hashLocale,
    .copyDebugDescription = copyDescription,
};

CFLocaleRef createLocale(CFAllocatorRef allocator, const char* name) {
    auto* const locale = cf::construct<__CFLocale>(allocator, CFLocaleGetTypeID());
    if (!locale)
        return nullptr;
    auto owner = cf::adopt<CFLocaleRef>(locale);
    std::strncpy(locale->name, name, sizeof locale->name - 1);
    UErrorCode status = U_ZERO_ERROR;
    uloc_getLanguage(locale->name, locale->language, sizeof locale->language, &status);
    locale->identifier =
        cf::adopt(CFStringCreateWithCString(allocator, locale->name, kCFStringEncodingASCII));
    return locale->identifier ? owner.release() : nullptr;
}

bool isLocale(CFLocaleRef locale) {
    return cf::isA(locale, kLocaleClass);
}

// ---- Values

// Gathers values that are there: empty texts are left out.
class ValueTable {
public:
    explicit ValueTable(CFMutableDictionaryRef values) : values_(values) {}

    void set(CFLocaleKey key, CFTypeRef value) { CFDictionarySetValue(values_, key, value); }
    void set(CFLocaleKey key, const char16_t* text, int32_t length, UErrorCode status) {
        if (U_FAILURE(status) || length <= 0)
            return;
        const auto value = cf::adopt(
            CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar*>(text), length));
        if (value)
            set(key, value.get());
    }
    // What one of ICU's readers of names gives.
    void setPart(CFLocaleKey key, const char* name,
                 int32_t (*read)(const char*, char*, int32_t, UErrorCode*)) {
        char text[ULOC_FULLNAME_CAPACITY];
        UErrorCode status = U_ZERO_ERROR;
        const int32_t length = read(name, text, sizeof text, &status);
        const auto value =
            U_SUCCESS(status) && length > 0
                ? cf::adopt(CFStringCreateWithCString(nullptr, text, kCFStringEncodingASCII))
                : nullptr;
        if (value)
            set(key, value.get());
    }

private:
    CFMutableDictionaryRef values_;
};

void addMeasures(ValueTable& values, const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    const UMeasurementSystem system = ulocdata_getMeasurementSystem(name, &status);
    if (U_FAILURE(status))
        return;
    values.set(kCFLocaleUsesMetricSystem, system == UMS_US ? kCFBooleanFalse : kCFBooleanTrue);
    values.set(kCFLocaleMeasurementSystem, system == UMS_US   ? CFSTR("U.S.")
                                           : system == UMS_UK ? CFSTR("U.K.")
                                                              : CFSTR("Metric"));
}

void addNumberSymbols(ValueTable& values, const char* name) {
    using NumberFormat = std::unique_ptr<UNumberFormat, cf::CloseBy<unum_close>>;
    UErrorCode status = U_ZERO_ERROR;
    const NumberFormat format(unum_open(UNUM_DECIMAL, nullptr, 0, name, nullptr, &status));
    if (U_FAILURE(status))
        return;
    const struct {
        CFLocaleKey key;
        UNumberFormatSymbol symbol;
    } symbols[] = {
        {kCFLocaleDecimalSeparator, UNUM_DECIMAL_SEPARATOR_SYMBOL},
        {kCFLocaleGroupingSeparator, UNUM_GROUPING_SEPARATOR_SYMBOL},
        {kCFLocaleCurrencySymbol, UNUM_CURRENCY_SYMBOL},
        {kCFLocaleCurrencyCode, UNUM_INTL_CURRENCY_SYMBOL},
    };
    for (const auto& [key, symbol] : symbols) {
        char16_t text[32];
        status = U_ZERO_ERROR;
        const int32_t length = unum_getSymbol(format.get(), symbol, text, std::size(text), &status);
        values.set(key, text, length, status);
    }
}

void addQuotationMarks(ValueTable& values, const char* name) {
    using LocaleData = std::unique_ptr<ULocaleData, cf::CloseBy<ulocdata_close>>;
    UErrorCode status = U_ZERO_ERROR;
    const LocaleData data(ulocdata_open(name, &status));
    if (U_FAILURE(status))
        return;
    const struct {
        CFLocaleKey key;
        ULocaleDataDelimiterType delimiter;
    } marks[] = {
        {kCFLocaleQuotationBeginDelimiterKey, ULOCDATA_QUOTATION_START},
        {kCFLocaleQuotationEndDelimiterKey, ULOCDATA_QUOTATION_END},
    };
    for (const auto& [key, delimiter] : marks) {
        char16_t text[8];
        status = U_ZERO_ERROR;
        const int32_t length =
            ulocdata_getDelimiter(data.get(), delimiter, text, std::size(text), &status);
        values.set(key, text, length, status);
    }
}

void makeValues(void* context) {
    auto* const locale = static_cast<__CFLocale*>(context);
    const auto table = cf::adopt(CFDictionaryCreateMutable(
        nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    ValueTable values(table.get());
    values.set(kCFLocaleIdentifier, locale->identifier.get());
    values.setPart(kCFLocaleLanguageCode, locale->name, uloc_getLanguage);
    values.setPart(kCFLocaleCountryCode, locale->name, uloc_getCountry);
    values.setPart(kCFLocaleScriptCode, locale->name, uloc_getScript);
    values.setPart(kCFLocaleVariantCode, locale->name, uloc_getVariant);
    addMeasures(values, locale->name);
    addNumberSymbols(values, locale->name);
    addQuotationMarks(values, locale->name);
    locale->values = cf::retain<CFDictionaryRef>(table.get());
}

} // namespace

CFTypeID CFLocaleGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kLocaleClass);
    return id;
}

CFLocaleRef CFLocaleGetSystem(void) {
    static const CFLocaleRef system = [] {
        const CFLocaleRef locale = createLocale(kCFAllocatorSystemDefault, "");
        _CFRuntimeSetImmortal(locale);
        return locale;
    }();
    return system;
}

CFLocaleRef CFLocaleCopyCurrent(void) {
    char name[ULOC_FULLNAME_CAPACITY];
    cf::readCurrentLocale(name);
    return createLocale(nullptr, name);
}

CFLocaleRef CFLocaleCreate(CFAllocatorRef allocator, CFLocaleIdentifier identifier) {
    char name[ULOC_FULLNAME_CAPACITY];
    return cf::isString(identifier) && cf::canonicalizeLocale(identifier, name)
               ? createLocale(allocator, name)
               : nullptr;
}

CFLocaleRef CFLocaleCreateCopy(CFAllocatorRef, CFLocaleRef locale) {
    return isLocale(locale) ? as(CFRetain(locale)) : nullptr;
}

CFLocaleIdentifier CFLocaleGetIdentifier(CFLocaleRef locale) {
    return isLocale(locale) ? locale->identifier.get() : nullptr;
}

CFTypeRef CFLocaleGetValue(CFLocaleRef locale, CFLocaleKey key) {
    if (!isLocale(locale) || !cf::isString(key))
        return nullptr;
    auto* const record = const_cast<__CFLocale*>(locale);
    HostOnceRun(&record->valuesOnce, makeValues, record);
    return CFDictionaryGetValue(record->values.get(), key);
}

namespace cf {

const char* localeIdentifier(CFLocaleRef locale) {
    if (isLocale(locale))
        return locale->name;
    // The environment is read once here: its strings may move while threads compare.
    static const auto current = [] {
        std::array<char, ULOC_FULLNAME_CAPACITY> name;
        readCurrentLocale(name.data());
        return name;
    }();
    return current.data();
}

const char* localeLanguage(CFLocaleRef locale) {
    if (isLocale(locale))
        return locale->language;
    static const auto current = [] {
        std::array<char, ULOC_LANG_CAPACITY> language = {};
        UErrorCode status = U_ZERO_ERROR;
        uloc_getLanguage(localeIdentifier(nullptr), language.data(), ULOC_LANG_CAPACITY, &status);
        return language;
    }();
    return current.data();
}

} // namespace cf

CF_CONST_STRING_DECL(kCFLocaleIdentifier, "kCFLocaleIdentifierKey");
CF_CONST_STRING_DECL(kCFLocaleLanguageCode, "kCFLocaleLanguageCodeKey");
CF_CONST_STRING_DECL(kCFLocaleCountryCode, "kCFLocaleCountryCodeKey");
CF_CONST_STRING_DECL(kCFLocaleScriptCode, "kCFLocaleScriptCodeKey");
CF_CONST_STRING_DECL(kCFLocaleVariantCode, "kCFLocaleVariantCodeKey");
CF_CONST_STRING_DECL(kCFLocaleUsesMetricSystem, "kCFLocaleUsesMetricSystemKey");
CF_CONST_STRING_DECL(kCFLocaleMeasurementSystem, "kCFLocaleMeasurementSystemKey");
CF_CONST_STRING_DECL(kCFLocaleDecimalSeparator, "kCFLocaleDecimalSeparatorKey");
CF_CONST_STRING_DECL(kCFLocaleGroupingSeparator, "kCFLocaleGroupingSeparatorKey");
CF_CONST_STRING_DECL(kCFLocaleCurrencySymbol, "kCFLocaleCurrencySymbolKey");
CF_CONST_STRING_DECL(kCFLocaleCurrencyCode, "kCFLocaleCurrencyCodeKey");
CF_CONST_STRING_DECL(kCFLocaleQuotationBeginDelimiterKey, "kCFLocaleQuotationBeginDelimiterKey");
CF_CONST_STRING_DECL(kCFLocaleQuotationEndDelimiterKey, "kCFLocaleQuotationEndDelimiterKey");
