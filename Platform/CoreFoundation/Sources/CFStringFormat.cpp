// CFStringFormat.cpp: strings made of a format and its arguments.

#include <CoreFoundation/CFRef.h>

#include "CFStringFormatDirective.h"

#include <locale.h>

#include <algorithm>
#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <cwchar>
#include <limits>

namespace cf {

namespace {

union Argument {
    long long integer;
    double real;
    long double longReal;
    const void* pointer;
};

// A C function's own argument list, which cannot be handed on by reference where it is an array.
struct ArgumentList {
    va_list list;
};

Argument readArgument(ArgumentList& arguments, ArgumentType type) {
    Argument value{};
    switch (type) {
    case ArgumentType::None: // A gap between positions: most likely an int.
    case ArgumentType::Int:
        value.integer = va_arg(arguments.list, int);
        break;
    case ArgumentType::Long:
        value.integer = va_arg(arguments.list, long);
        break;
    case ArgumentType::LongLong:
        value.integer = va_arg(arguments.list, long long);
        break;
    case ArgumentType::Double:
        value.real = va_arg(arguments.list, double);
        break;
    case ArgumentType::LongDouble:
        value.longReal = va_arg(arguments.list, long double);
        break;
    case ArgumentType::Pointer:
        value.pointer = va_arg(arguments.list, const void*);
        break;
    }
    return value;
}

// Numbers look the same wherever the program runs: the thread prints in the C locale meanwhile.
class NeutralNumbers {
public:
    NeutralNumbers() : previous_(uselocale(neutral())) {}
    ~NeutralNumbers() { uselocale(previous_); }
    NeutralNumbers(const NeutralNumbers&) = delete;
    NeutralNumbers& operator=(const NeutralNumbers&) = delete;

private:
    static locale_t neutral() {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }

    locale_t previous_;
};

class Formatter {
public:
    Formatter(CFTypeRef options, const ParsedFormat& parsed, const Argument* arguments,
              TextBuilder& result)
        : options_(options), parsed_(parsed), arguments_(arguments), result_(result) {}

    void run(const Text& format) {
        CFIndex copied = 0;
        for (size_t i = 0; i < parsed_.directiveCount(); ++i) {
            FormatDirective directive = parsed_.directive(i);
            result_.append(format.part(copied, directive.begin - copied));
            resolveStars(directive);
            convert(directive);
            copied = directive.end;
        }
        result_.append(format.part(copied, format.length() - copied));
    }

private:
    // A negative width given by an argument means left-aligned, a negative precision none.
    void resolveStars(FormatDirective& directive) const {
        if (directive.widthArgument != FormatDirective::kNone) {
            const auto width = static_cast<int>(arguments_[directive.widthArgument].integer);
            directive.width =
                width < 0 ? -std::max(width, -std::numeric_limits<int>::max()) : width;
            if (width < 0)
                directive.flags |= FormatDirective::kLeft;
        }
        if (directive.precisionArgument != FormatDirective::kNone)
            directive.precision =
                std::max(static_cast<int>(arguments_[directive.precisionArgument].integer),
                         FormatDirective::kNone);
    }

    void convert(const FormatDirective& directive) {
        if (directive.conversion == '%') {
            result_.append('%');
            return;
        }
        const Argument& argument = arguments_[directive.argument];
        switch (directive.conversion) {
        case '@':
            return appendObject(directive, argument.pointer);
        case 'p':
            return appendPointer(directive, argument.pointer);
        case 'c':
        case 'C':
            return appendCharacter(directive, argument.integer);
        case 's':
            return directive.length == LengthModifier::Long
                       ? appendUnits(directive, static_cast<const wchar_t*>(argument.pointer))
                       : appendBytes(directive, static_cast<const char*>(argument.pointer));
        case 'S':
            return appendUnits(directive, static_cast<const UniChar*>(argument.pointer));
        default:
            return appendNumber(directive, argument);
        }
    }

    void appendPadded(const FormatDirective& directive, const Text& text) {
        const CFIndex missing = std::max(directive.width - text.length(), CFIndex{0});
        const bool isLeft = (directive.flags & FormatDirective::kLeft) != 0;
        if (!isLeft)
            result_.appendRepeated(' ', missing);
        result_.append(text);
        if (isLeft)
            result_.appendRepeated(' ', missing);
    }

    void appendASCII(const FormatDirective& directive, const char* bytes) {
        TextBuilder text;
        text.appendASCII(bytes, std::strlen(bytes));
        appendPadded(directive, text.text());
    }

    // Cut to the precision, but never inside a surrogate pair.
    void appendCut(const FormatDirective& directive, const Text& text) {
        CFIndex length = text.length();
        if (directive.precision != FormatDirective::kNone && directive.precision < length) {
            length = directive.precision;
            if (length > 0 && CFStringIsSurrogateHighCharacter(text[length - 1]) &&
                CFStringIsSurrogateLowCharacter(text[length]))
                --length;
        }
        appendPadded(directive, text.part(0, length));
    }

    Ref<CFStringRef> copyDescription(CFTypeRef object) const {
        if (isString(object))
            return retain(static_cast<CFStringRef>(object));
        if (_CFRuntimeIsNative(object))
            if (const auto describe = _CFRuntimeGetClass(object)->copyFormattingDescription)
                return adopt(describe(object, options_));
        return adopt(CFCopyDescription(object));
    }

    void appendObject(const FormatDirective& directive, CFTypeRef object) {
        const auto text = object ? copyDescription(object) : nullptr;
        if (text)
            appendCut(directive, Text(text.get()));
        else
            appendASCII(directive, "(null)");
    }

    void appendPointer(const FormatDirective& directive, const void* pointer) {
        char digits[2 + sizeof(void*) * 2 + 1];
        std::snprintf(digits, sizeof digits, "0x%llx",
                      static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(pointer)));
        appendASCII(directive, digits);
    }

    // %c is a byte, %C a unit, %lc any character.
    void appendCharacter(const FormatDirective& directive, long long value) {
        TextBuilder text;
        if (directive.conversion == 'c' && directive.length == LengthModifier::Long && value >= 0 &&
            value <= 0x10FFFF)
            text.appendCodePoint(static_cast<UTF32Char>(value));
        else if (directive.conversion == 'c')
            text.append(static_cast<UniChar>(static_cast<uint8_t>(value)));
        else
            text.append(static_cast<UniChar>(value));
        appendPadded(directive, text.text());
    }

    // The bytes that may be looked at: up to the NUL, or to the precision if that comes first.
    void appendBytes(const FormatDirective& directive, const char* bytes) {
        if (!bytes)
            return appendASCII(directive, "(null)");
        const size_t count = directive.precision == FormatDirective::kNone
                                 ? std::strlen(bytes)
                                 : ::strnlen(bytes, static_cast<size_t>(directive.precision));
        const auto* const data = reinterpret_cast<const uint8_t*>(bytes);
        const size_t whole =
            directive.precision == FormatDirective::kNone ? count : wholeUTF8(data, count);
        TextBuilder text;
        if (!decode(data, whole, kCFStringEncodingUTF8, ByteOrderMark::Ignore, text)) {
            text.truncate(0);
            text.appendASCII(bytes, count); // Not UTF-8: as Latin-1, so that nothing is lost.
        }
        appendPadded(directive, text.text());
    }

    // `count` without a sequence that the precision has cut at the end.
    static size_t wholeUTF8(const uint8_t* bytes, size_t count) {
        size_t start = count;
        while (start > 0 && count - start < 4 && (bytes[start - 1] & 0xC0) == 0x80)
            --start;
        if (start == 0 || bytes[start - 1] < 0xC0)
            return count;
        const uint8_t lead = bytes[start - 1];
        const size_t needed = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
        return count - start + 1 < needed ? start - 1 : count;
    }

    template <typename Unit>
    void appendUnits(const FormatDirective& directive, const Unit* units) {
        if (!units)
            return appendASCII(directive, "(null)");
        TextBuilder text;
        for (int i = 0;
             (directive.precision == FormatDirective::kNone || i < directive.precision) && units[i];
             ++i)
            if constexpr (sizeof(Unit) == sizeof(UniChar))
                text.append(static_cast<UniChar>(units[i]));
            else
                text.appendCodePoint(static_cast<UTF32Char>(units[i]));
        appendPadded(directive, text.text());
    }

    // Integers arrive as they were promoted: cut back to what the modifier says, all at 64 bits.
    static long long cut(const FormatDirective& directive, long long value) {
        const bool isSigned = directive.conversion == 'd' || directive.conversion == 'i';
        switch (directive.length) {
        case LengthModifier::Char:
            return isSigned ? static_cast<signed char>(value) : static_cast<unsigned char>(value);
        case LengthModifier::Short:
            return isSigned ? static_cast<short>(value) : static_cast<unsigned short>(value);
        case LengthModifier::None:
            return isSigned ? value : static_cast<unsigned>(value);
        case LengthModifier::Long:
        case LengthModifier::Size:
        case LengthModifier::Difference:
            return isSigned ? value : static_cast<long long>(static_cast<unsigned long>(value));
        default:
            return value;
        }
    }

    void appendNumber(const FormatDirective& directive, const Argument& argument) {
        switch (directive.conversion) {
        case 'd':
        case 'i':
        case 'o':
        case 'u':
        case 'x':
        case 'X':
            return print(directive, "ll", cut(directive, argument.integer));
        default:
            return directive.length == LengthModifier::LongDouble
                       ? print(directive, "L", argument.longReal)
                       : print(directive, "", argument.real);
        }
    }

    // Has the C library print one number, by a format of its own making.
    template <typename Number>
    void print(const FormatDirective& directive, const char* length, Number number) {
        char format[16] = "%";
        char* end = format + 1;
        constexpr char kFlags[] = {'-', '+', ' ', '#', '0', '\''};
        for (size_t i = 0; i < sizeof kFlags; ++i)
            if (directive.flags & 1u << i)
                *end++ = kFlags[i];
        std::snprintf(end, sizeof format - static_cast<size_t>(end - format), "*.*%s%c", length,
                      directive.conversion);

        const NeutralNumbers neutral;
        const int width = std::max(directive.width, 0);
        Scratch<char> digits;
        const int count = std::snprintf(digits.data(), digits.capacity(), format, width,
                                        directive.precision, number);
        if (count < 0)
            return;
        if (static_cast<size_t>(count) >= digits.capacity()) {
            if (!digits.reserve(static_cast<size_t>(count) + 1))
                return result_.fail();
            std::snprintf(digits.data(), digits.capacity(), format, width, directive.precision,
                          number);
        }
        result_.appendASCII(digits.data(), static_cast<size_t>(count));
    }

    CFTypeRef options_;
    const ParsedFormat& parsed_;
    const Argument* arguments_;
    TextBuilder& result_;
};

// False when memory runs out.
bool appendFormatted(TextBuilder& result, CFTypeRef options, const Text& format,
                     ArgumentList& arguments) {
    ParsedFormat parsed;
    Scratch<Argument, 16> values;
    if (!parsed.parse(format) || !values.reserve(parsed.argumentCount()))
        return false;
    for (size_t i = 0; i < parsed.argumentCount(); ++i)
        values.data()[i] = readArgument(arguments, parsed.argumentType(i));
    Formatter(options, parsed, values.data(), result).run(format);
    return !result.failed();
}

} // namespace

} // namespace cf

CFStringRef CFStringCreateWithFormat(CFAllocatorRef allocator, CFDictionaryRef formatOptions,
                                     CFStringRef format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const CFStringRef string =
        CFStringCreateWithFormatAndArguments(allocator, formatOptions, format, arguments);
    va_end(arguments);
    return string;
}

CFStringRef CFStringCreateWithFormatAndArguments(CFAllocatorRef allocator,
                                                 CFDictionaryRef formatOptions, CFStringRef format,
                                                 va_list arguments) {
    if (!cf::isString(format))
        return nullptr;
    cf::TextBuilder result;
    cf::ArgumentList own;
    va_copy(own.list, arguments);
    const bool isDone = cf::appendFormatted(result, formatOptions, cf::Text(format), own);
    va_end(own.list);
    return isDone ? cf::createString(allocator, result) : nullptr;
}

void CFStringAppendFormat(CFMutableStringRef string, CFDictionaryRef formatOptions,
                          CFStringRef format, ...) {
    va_list arguments;
    va_start(arguments, format);
    CFStringAppendFormatAndArguments(string, formatOptions, format, arguments);
    va_end(arguments);
}

void CFStringAppendFormatAndArguments(CFMutableStringRef string, CFDictionaryRef formatOptions,
                                      CFStringRef format, va_list arguments) {
    if (!cf::isString(format) || !CF_STRING_IS_MUTABLE(string))
        return;
    cf::TextBuilder result;
    cf::ArgumentList own;
    va_copy(own.list, arguments);
    const bool isDone = cf::appendFormatted(result, formatOptions, cf::Text(format), own);
    va_end(own.list);
    if (isDone)
        cf::replace(string, CFRangeMake(string->length, 0), result.text());
}
