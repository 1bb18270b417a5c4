// CFStringNumbers.cpp: the numbers that strings begin with.

#include "CFStringInternal.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace {

CFIndex skipSpace(const cf::Text& text) {
    CFIndex i = 0;
    while (i < text.length() && u_isUWhiteSpace(text[i]))
        ++i;
    return i;
}

bool isDigitAt(const cf::Text& text, CFIndex index) {
    return index < text.length() && text[index] >= '0' && text[index] <= '9';
}

bool isSignAt(const cf::Text& text, CFIndex index) {
    return index < text.length() && (text[index] == '-' || text[index] == '+');
}

CFIndex skipDigits(const cf::Text& text, CFIndex index) {
    while (isDigitAt(text, index))
        ++index;
    return index;
}

// Where the number that begins at `start` ends; `start` itself when there is none.
CFIndex endOfNumber(const cf::Text& text, CFIndex start) {
    const CFIndex whole = start + (isSignAt(text, start) ? 1 : 0);
    CFIndex end = skipDigits(text, whole);
    const bool hasPoint = end < text.length() && text[end] == '.';
    const CFIndex fractionEnd = hasPoint ? skipDigits(text, end + 1) : end;
    if (end == whole && fractionEnd <= end + 1)
        return start;
    end = fractionEnd;
    if (end < text.length() && (text[end] == 'e' || text[end] == 'E')) {
        const CFIndex exponent = end + 1 + (isSignAt(text, end + 1) ? 1 : 0);
        if (isDigitAt(text, exponent))
            end = skipDigits(text, exponent);
    }
    return end;
}

// The power of ten of a number's first digit that is not 0, to tell too small from too large.
int64_t orderOfMagnitude(std::string_view number) {
    const size_t mark = std::min(number.find_first_of("eE"), number.size());
    const size_t point = std::min(number.find('.'), mark);
    const size_t first = std::min(number.find_first_of("123456789"), mark);
    int64_t exponent = 0;
    if (mark < number.size()) {
        const char* const digits = &number[mark + 1] + (number[mark + 1] == '+' ? 1 : 0);
        const auto end = number.data() + number.size();
        if (std::from_chars(digits, end, exponent).ec == std::errc::result_out_of_range)
            exponent = *digits == '-' ? INT32_MIN : INT32_MAX;
        exponent = std::clamp(exponent, int64_t{INT32_MIN}, int64_t{INT32_MAX});
    }
    return exponent + static_cast<int64_t>(point) - static_cast<int64_t>(first) -
           (first < point ? 1 : 0);
}

} // namespace

SInt32 CFStringGetIntValue(CFStringRef string) {
    if (!cf::isString(string))
        return 0;
    const cf::Text text(string);
    CFIndex i = skipSpace(text);
    const bool isNegative = isSignAt(text, i) && text[i] == '-';
    i += isSignAt(text, i) ? 1 : 0;
    int64_t value = 0;
    constexpr int64_t kBeyond = int64_t{std::numeric_limits<int32_t>::max()} + 1;
    for (; isDigitAt(text, i); ++i)
        value = std::min(value * 10 + (text[i] - '0'), kBeyond);
    return static_cast<SInt32>(isNegative ? -value : std::min(value, kBeyond - 1));
}

double CFStringGetDoubleValue(CFStringRef string) {
    if (!cf::isString(string))
        return 0;
    const cf::Text text(string);
    CFIndex start = skipSpace(text);
    const CFIndex end = endOfNumber(text, start);
    if (start < end && text[start] == '+')
        ++start;
    cf::Scratch<char> digits;
    if (start == end || !digits.reserve(static_cast<size_t>(end - start)))
        return 0;
    for (CFIndex i = start; i < end; ++i)
        digits.data()[i - start] = static_cast<char>(text[i]);
    double value = 0;
    const std::string_view number(digits.data(), static_cast<size_t>(end - start));
    const auto result = std::from_chars(number.begin(), number.end(), value);
    if (result.ec == std::errc::result_out_of_range)
        value = std::copysign(orderOfMagnitude(number) < 0 ? 0 : HUGE_VAL,
                              number.front() == '-' ? -1.0 : 1.0);
    return value;
}
