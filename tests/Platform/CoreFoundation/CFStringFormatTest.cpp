// CFStringFormatTest.cpp: formats, held against the C library's for what both know.

#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRuntime.h>

#include "StringTexts.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using test::String;
using test::text;

template <typename... Arguments>
std::string formatted(const char* format, Arguments... arguments) {
    const String pattern =
        cf::adopt(CFStringCreateWithCString(nullptr, format, kCFStringEncodingUTF8));
    const String made =
        cf::adopt(CFStringCreateWithFormat(nullptr, nullptr, pattern.get(), arguments...));
    return test::utf8(made.get());
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
template <typename... Arguments>
std::string printed(const char* format, Arguments... arguments) {
    char buffer[2048];
    std::snprintf(buffer, sizeof buffer, format, arguments...);
    return buffer;
}
#pragma GCC diagnostic pop

template <typename Number>
void expectAsPrinted(const char* modifier, const char* conversions,
                     std::initializer_list<Number> numbers) {
    const char* const decorations[] = {"",    "-",   "+",  " ",    "#",     "0",      "5",   "-12",
                                       "012", "+.3", ".0", "-8.2", "#12.4", "+012.5", " 30", ".20"};
    for (const char* decoration : decorations)
        for (const char* c = conversions; *c; ++c)
            for (const Number number : numbers) {
                const std::string format = std::string("[%") + decoration + modifier + *c + "]";
                EXPECT_EQ(formatted(format.c_str(), number), printed(format.c_str(), number))
                    << format;
            }
}

TEST(CFStringFormat, PrintsIntegersLikeTheCLibrary) {
    expectAsPrinted<int>("", "diouxX", {0, 1, -1, 12345, INT_MAX, INT_MIN});
    expectAsPrinted<int>("hh", "diouxX", {0, 127, 255, -1, 4660});
    expectAsPrinted<int>("h", "diouxX", {0, 32767, 65535, -1, 74565});
    expectAsPrinted<long>("l", "diouxX", {0, -1, LONG_MAX, LONG_MIN});
    expectAsPrinted<long long>("ll", "diouxX", {0, -1, LLONG_MAX, LLONG_MIN});
    expectAsPrinted<intmax_t>("j", "diouxX", {0, -1, INTMAX_MAX});
    expectAsPrinted<size_t>("z", "ouxX", {0, SIZE_MAX});
    expectAsPrinted<ptrdiff_t>("t", "di", {0, PTRDIFF_MIN, PTRDIFF_MAX});
    EXPECT_EQ(formatted("%qd %D %U %O", -1LL, -2L, 3UL, 8UL), "-1 -2 3 10");
}

TEST(CFStringFormat, PrintsRealsLikeTheCLibrary) {
    expectAsPrinted<double>(
        "", "eEfFgGaA",
        {0.0, -0.0, 1.5, -2.25, 1e-7, 123456789.125, 1e100, DBL_MIN, DBL_MAX, HUGE_VAL, -HUGE_VAL});
    expectAsPrinted<long double>("L", "eEfFgGaA", {0.0L, 1.5L, -1e30L, LDBL_EPSILON});
    EXPECT_EQ(formatted("%f", std::nan("")), "nan");
}

TEST(CFStringFormat, PrintsNumbersTheSameInEveryLocale) {
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    bool hasComma = false;
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE", "nl_NL.UTF-8"})
        hasComma = hasComma || std::setlocale(LC_NUMERIC, name) != nullptr;
    const std::string made = formatted("%.2f", 1234.5);
    std::setlocale(LC_NUMERIC, before.c_str());
    EXPECT_EQ(made, "1234.50");
    if (!hasComma)
        GTEST_SKIP() << "no locale with a decimal comma is installed: only the default was seen";
}

TEST(CFStringFormat, PrintsTextAndObjects) {
    const UniChar units[] = {0x65E5, 0x672C, 0};
    const String name = test::string(u"\u00E9\U0001F600z");
    const int three = 3;
    const auto number = cf::adopt(CFNumberCreate(nullptr, kCFNumberIntType, &three));
    EXPECT_EQ(formatted("[%@]", name.get()), "[\u00E9\U0001F600z]");
    EXPECT_EQ(formatted("[%@]", nullptr), "[(null)]");
    EXPECT_EQ(formatted("%@ and %@", CFSTR("a"), CFSTR("b")), "a and b");
    EXPECT_EQ(formatted("[%6@|%-6@]", CFSTR("abc"), CFSTR("abc")), "[   abc|abc   ]");
    EXPECT_EQ(formatted("[%.2@]", CFSTR("abc")), "[ab]");
    EXPECT_EQ(formatted("[%.2@]", name.get()), "[\u00E9]") << "not half of the pair";
    EXPECT_EQ(formatted("[%@]", number.get()), "[3]");
    EXPECT_EQ(formatted("[%S|%.1S]", units, units), "[\u65E5\u672C|\u65E5]");
    EXPECT_EQ(formatted("[%ls|%.1ls]", L"wide", L"\U0001F600x"), "[wide|\U0001F600]");
    EXPECT_EQ(formatted("[%s|%5s|%-5s|]", "a", "b", "c"), "[a|    b|c    |]");
    EXPECT_EQ(formatted("[%s]", "gr\u00FC\u00DFe"), "[gr\u00FC\u00DFe]");
    EXPECT_EQ(formatted("[%s]", "\xE9t\xE9"), "[\u00E9t\u00E9]") << "not UTF-8: as Latin-1";
    EXPECT_EQ(formatted("[%s|%S|%ls]", nullptr, nullptr, nullptr), "[(null)|(null)|(null)]");
    EXPECT_EQ(formatted("[%c%C%lc]", 'a', 0x65E5, wint_t{0x1F600}), "[a\u65E5\U0001F600]");
    EXPECT_EQ(formatted("[%p|%p]", reinterpret_cast<void*>(uintptr_t{0xAB}), nullptr),
              "[0xab|0x0]");
    EXPECT_EQ(formatted("100%%"), "100%");
}

TEST(CFStringFormat, ReadsNoFurtherThanThePrecision) {
    // No NUL anywhere: a byte more would be outside.
    const std::vector<char> bytes = {'a', 'b', '\xC3', '\xA9'};
    EXPECT_EQ(formatted("[%.*s]", 4, bytes.data()), "[ab\u00E9]");
    EXPECT_EQ(formatted("[%.3s]", bytes.data()), "[ab]") << "half a character is left out";
    EXPECT_EQ(formatted("[%.0s]", bytes.data()), "[]");
    const std::vector<UniChar> units = {'x', 'y'};
    EXPECT_EQ(formatted("[%.2S]", units.data()), "[xy]");
}

TEST(CFStringFormat, TakesArgumentsByPosition) {
    EXPECT_EQ(formatted("%2$@ %1$@", CFSTR("a"), CFSTR("b")), "b a");
    EXPECT_EQ(formatted("%1$d %1$d %2$s", 7, "x"), "7 7 x");
    EXPECT_EQ(formatted("%3$.2f %1$d %2$ld", 1, 2L, 0.5), "0.50 1 2");
    EXPECT_EQ(formatted("[%2$*1$d]", 4, 7), "[   7]");
    EXPECT_EQ(formatted("[%*d|%-*d|%*d]", 4, 7, 4, 7, -4, 7), "[   7|7   |7   ]");
    EXPECT_EQ(formatted("[%.*f|%.*f]", 1, 0.25, -1, 0.25), "[0.2|0.250000]");
}

TEST(CFStringFormat, CopiesWhatIsNoConversion) {
    const struct {
        const char* format;
        const char* expected;
    } cases[] = {
        {"", ""},         {"%", "%"},
        {"50%", "50%"},   {"%y", "%y"},
        {"%-5", "%-5"},   {"%n", "%n"},
        {"%0$d", "%0$d"}, {"%99999$d", "%99999$d"},
        {"%ll", "%ll"},   {"% \xC3\xA9", "% \xC3\xA9"},
        {"%.", "%."},
    };
    for (const auto& [format, expected] : cases)
        EXPECT_EQ(formatted(format, 1, 2), expected) << format;
    EXPECT_EQ(formatted("%y %d", 5), "%y 5") << "what is not known takes no argument";
}

TEST(CFStringFormat, HandlesLongFormatsAndResults) {
    std::string format;
    std::string expected;
    for (int i = 0; i < 500; ++i) {
        format += "%1$d,%%\u65E5";
        expected += "42,%\u65E5";
    }
    EXPECT_EQ(formatted(format.c_str(), 42), expected);
    EXPECT_EQ(formatted("%1000d", 1), std::string(999, ' ') + "1");
    EXPECT_EQ(formatted("%.1000f", 0.5), printed("%.1000f", 0.5));
    EXPECT_EQ(formatted("%-1000s|", "x"), "x" + std::string(999, ' ') + "|");
}

CFStringRef describeForFormat(CFTypeRef, CFTypeRef options) {
    return CFStringCreateWithFormat(nullptr, nullptr, CFSTR("formatted%s"),
                                    options ? " with options" : "");
}

CFStringRef describeForDebugging(CFTypeRef) {
    return CFStringRef(CFRetain(CFSTR("debug")));
}

TEST(CFStringFormat, PrefersTheFormattingDescription) {
    static constexpr CFRuntimeClass kBoth = {.className = "Both",
                                             .copyFormattingDescription = describeForFormat,
                                             .copyDebugDescription = describeForDebugging};
    static constexpr CFRuntimeClass kDebugOnly = {.className = "DebugOnly",
                                                  .copyDebugDescription = describeForDebugging};
    const auto both = cf::adopt(_CFRuntimeCreateUntypedInstance(nullptr, &kBoth, 0));
    const auto debugOnly = cf::adopt(_CFRuntimeCreateUntypedInstance(nullptr, &kDebugOnly, 0));
    EXPECT_EQ(formatted("%@, %@", both.get(), debugOnly.get()), "formatted, debug");
    const auto options =
        cf::adopt(CFDictionaryCreate(nullptr, nullptr, nullptr, 0, nullptr, nullptr));
    const String made =
        cf::adopt(CFStringCreateWithFormat(nullptr, options.get(), CFSTR("%@"), both.get()));
    EXPECT_EQ(text(made.get()), u"formatted with options");
}

} // namespace
