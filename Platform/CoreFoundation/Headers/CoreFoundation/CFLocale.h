/* CFLocale.h: languages, regions and their conventions, as ICU's data has them.
 *
 * A locale is immutable and named by a language, a script, a region and variants: "de_AT",
 * "zh_Hant_TW". Languages in lists are BCP 47 tags: "de-AT". */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFDictionary.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFLocale* CFLocaleRef;

typedef CFStringRef CFLocaleIdentifier;
typedef CFStringRef CFLocaleKey;

CF_EXPORT CFTypeID CFLocaleGetTypeID(void);

/** The locale of no particular language and region, its identifier ""; lent. */
CF_EXPORT CFLocaleRef CFLocaleGetSystem(void);
/** What the environment asks for: the first of LC_ALL, LC_MESSAGES and LANG that is set; "en_US"
 *  when none is or it is "C" or "POSIX". The caller owns it. */
CF_EXPORT CFLocaleRef CFLocaleCopyCurrent(void);
/** The locale of that name, brought into its canonical form. Names that are not known are taken as
 *  they are. NULL for NULL, for names too long, and when memory runs out. */
CF_EXPORT CFLocaleRef CFLocaleCreate(CFAllocatorRef allocator, CFLocaleIdentifier identifier);
/** The same locale, retained. */
CF_EXPORT CFLocaleRef CFLocaleCreateCopy(CFAllocatorRef allocator, CFLocaleRef locale);

/** The canonical identifier; lent. */
CF_EXPORT CFLocaleIdentifier CFLocaleGetIdentifier(CFLocaleRef locale);
/** The value for one of the keys below, or NULL when the locale has none; lent. */
CF_EXPORT CFTypeRef CFLocaleGetValue(CFLocaleRef locale, CFLocaleKey key);

/** The user's languages, best first: those of LANGUAGE, then that of the current locale. Never
 *  empty. NULL only when memory runs out. */
CF_EXPORT CFArrayRef CFLocaleCopyPreferredLanguages(void);
/** All that ICU has data for, or that ISO lists. */
CF_EXPORT CFArrayRef CFLocaleCopyAvailableLocaleIdentifiers(void);
CF_EXPORT CFArrayRef CFLocaleCopyISOLanguageCodes(void);
CF_EXPORT CFArrayRef CFLocaleCopyISOCountryCodes(void);
CF_EXPORT CFArrayRef CFLocaleCopyISOCurrencyCodes(void);

/** "de-AT" of "de_AT.UTF-8", "en" of "English"; names that are not known come back as they are. */
CF_EXPORT CFLocaleIdentifier CFLocaleCreateCanonicalLanguageIdentifierFromString(
    CFAllocatorRef allocator, CFStringRef identifier);
/** "de_AT" of "de-at". */
CF_EXPORT CFLocaleIdentifier
CFLocaleCreateCanonicalLocaleIdentifierFromString(CFAllocatorRef allocator, CFStringRef identifier);

/* Keys: strings, but for the metric system, which is a CFBoolean. */
CF_EXPORT const CFLocaleKey kCFLocaleIdentifier;
CF_EXPORT const CFLocaleKey kCFLocaleLanguageCode;
CF_EXPORT const CFLocaleKey kCFLocaleCountryCode;
CF_EXPORT const CFLocaleKey kCFLocaleScriptCode;
CF_EXPORT const CFLocaleKey kCFLocaleVariantCode;
CF_EXPORT const CFLocaleKey kCFLocaleUsesMetricSystem;
CF_EXPORT const CFLocaleKey kCFLocaleMeasurementSystem; /**< "Metric", "U.S." or "U.K.". */
CF_EXPORT const CFLocaleKey kCFLocaleDecimalSeparator;
CF_EXPORT const CFLocaleKey kCFLocaleGroupingSeparator;
CF_EXPORT const CFLocaleKey kCFLocaleCurrencySymbol;
CF_EXPORT const CFLocaleKey kCFLocaleCurrencyCode;
CF_EXPORT const CFLocaleKey kCFLocaleQuotationBeginDelimiterKey;
CF_EXPORT const CFLocaleKey kCFLocaleQuotationEndDelimiterKey;

CF_EXTERN_C_END
