// CFStringCompare.cpp: the order of strings.

#include "CFLocaleInternal.h"
#include "CFStringFold.h"
#include "CFStringICU.h"

#include <unicode/uchar.h>
#include <unicode/ucol.h>

#include <algorithm>

namespace {

using cf::Text;

CFComparisonResult resultOf(int64_t difference) {
    return difference < 0   ? kCFCompareLessThan
           : difference > 0 ? kCFCompareGreaterThan
                            : kCFCompareEqualTo;
}

CFComparisonResult compareUnits(const Text& a, const Text& b) {
    const CFIndex common = std::min(a.length(), b.length());
    for (CFIndex i = 0; i < common; ++i)
        if (a[i] != b[i])
            return resultOf(a[i] - b[i]);
    return resultOf(a.length() - b.length());
}

// A run of decimal digits of any script, all in the basic plane as keyboards give them.
Text digitsAt(const Text& text, CFIndex start) {
    CFIndex end = start;
    while (end < text.length() && u_charDigitValue(text[end]) >= 0)
        ++end;
    return text.part(start, end - start);
}

Text withoutLeadingZeros(const Text& digits) {
    CFIndex i = 0;
    while (i < digits.length() && u_charDigitValue(digits[i]) == 0)
        ++i;
    return digits.part(i, digits.length() - i);
}

// Of any length: more digits are more, as many are compared from the left.
CFComparisonResult compareValues(const Text& a, const Text& b) {
    const Text first = withoutLeadingZeros(a);
    const Text second = withoutLeadingZeros(b);
    if (first.length() != second.length())
        return resultOf(first.length() - second.length());
    for (CFIndex i = 0; i < first.length(); ++i)
        if (const int difference = u_charDigitValue(first[i]) - u_charDigitValue(second[i]))
            return resultOf(difference);
    return kCFCompareEqualTo;
}

CFComparisonResult compareNumerically(const Text& a, const Text& b) {
    CFIndex i = 0;
    CFIndex j = 0;
    while (i < a.length() && j < b.length()) {
        const Text first = digitsAt(a, i);
        const Text second = digitsAt(b, j);
        if (first.length() > 0 && second.length() > 0) {
            if (const auto result = compareValues(first, second))
                return result;
            i += first.length();
            j += second.length();
        } else if (a[i] != b[j]) {
            return resultOf(a[i] - b[j]);
        } else {
            ++i;
            ++j;
        }
    }
    return resultOf((a.length() - i) - (b.length() - j));
}

using Collator = std::unique_ptr<UCollator, cf::CloseBy<ucol_close>>;

Collator openCollator(CFLocaleRef locale, CFStringCompareFlags options) {
    UErrorCode status = U_ZERO_ERROR;
    Collator collator(ucol_open(cf::localeIdentifier(locale), &status));
    if (!collator || U_FAILURE(status))
        return nullptr;
    const bool ignoresCase = (options & kCFCompareCaseInsensitive) != 0;
    const bool ignoresMarks = (options & kCFCompareDiacriticInsensitive) != 0;
    ucol_setStrength(collator.get(), ignoresMarks  ? UCOL_PRIMARY
                                     : ignoresCase ? UCOL_SECONDARY
                                                   : UCOL_TERTIARY);
    const auto set = [&](UColAttribute attribute, bool isOn) {
        ucol_setAttribute(collator.get(), attribute, isOn ? UCOL_ON : UCOL_OFF, &status);
    };
    set(UCOL_CASE_LEVEL, ignoresMarks && !ignoresCase);
    set(UCOL_NUMERIC_COLLATION, (options & kCFCompareNumerically) != 0);
    set(UCOL_NORMALIZATION_MODE, true);
    return collator;
}

// Without memory for the collation the order of the units has to do.
CFComparisonResult compareLocalized(const Text& a, const Text& b, CFStringCompareFlags options,
                                    CFLocaleRef locale) {
    const auto collator = openCollator(locale, options);
    const cf::WideText first(a);
    const cf::WideText second(b);
    if (!collator || !first || !second || a.length() > INT32_MAX || b.length() > INT32_MAX)
        return compareUnits(a, b);
    return resultOf(ucol_strcoll(collator.get(), first.utf16(), static_cast<int32_t>(a.length()),
                                 second.utf16(), static_cast<int32_t>(b.length())));
}

CFComparisonResult compareFolded(const Text& a, const Text& b, CFStringCompareFlags options,
                                 CFLocaleRef locale) {
    const auto compare = options & kCFCompareNumerically ? compareNumerically : compareUnits;
    const CFStringCompareFlags folding = options & cf::kFoldingFlags;
    if (!folding)
        return compare(a, b);
    const char* const language = cf::foldingLanguage(locale, options);
    const cf::FoldedText first(a, folding, language);
    const cf::FoldedText second(b, folding, language);
    return first.failed() || second.failed() ? compareUnits(a, b)
                                             : compare(first.text(), second.text());
}

} // namespace

CFComparisonResult CFStringCompare(CFStringRef a, CFStringRef b, CFStringCompareFlags options) {
    return CFStringCompareWithOptions(a, b, CFRangeMake(0, CFStringGetLength(a)), options);
}

CFComparisonResult CFStringCompareWithOptions(CFStringRef a, CFStringRef b, CFRange range,
                                              CFStringCompareFlags options) {
    return CFStringCompareWithOptionsAndLocale(a, b, range, options, nullptr);
}

CFComparisonResult CFStringCompareWithOptionsAndLocale(CFStringRef a, CFStringRef b, CFRange range,
                                                       CFStringCompareFlags options,
                                                       CFLocaleRef locale) {
    const bool isFirst = cf::isString(a);
    const bool isSecond = cf::isString(b);
    if (!isFirst || !isSecond)
        return resultOf(int{isFirst} - int{isSecond});
    if (!CF_RANGE_IS_WITHIN(range, a->length))
        return kCFCompareLessThan;
    const Text first = Text(a).part(range.location, range.length);
    const Text second(b);
    if (cf::equal(first, second))
        return kCFCompareEqualTo;
    const auto result = options & kCFCompareLocalized
                            ? compareLocalized(first, second, options, locale)
                            : compareFolded(first, second, options, locale);
    return result == kCFCompareEqualTo && (options & kCFCompareForcedOrdering)
               ? compareUnits(first, second)
               : result;
}

Boolean CFStringHasPrefix(CFStringRef string, CFStringRef prefix) {
    if (!cf::isString(string) || !cf::isString(prefix) || prefix->length > string->length)
        return false;
    return cf::equal(Text(string).part(0, prefix->length), Text(prefix));
}

Boolean CFStringHasSuffix(CFStringRef string, CFStringRef suffix) {
    if (!cf::isString(string) || !cf::isString(suffix) || suffix->length > string->length)
        return false;
    return cf::equal(Text(string).part(string->length - suffix->length, suffix->length),
                     Text(suffix));
}
