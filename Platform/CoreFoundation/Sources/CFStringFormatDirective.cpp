// CFStringFormatDirective.cpp: taking formats apart.

#include "CFStringFormatDirective.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace cf {

namespace {

// Positions beyond this are mistakes, and would only cost memory.
constexpr int kMaximumPosition = 1024;

// Reads one conversion from behind its "%".
class DirectiveReader {
public:
    DirectiveReader(const Text& format, CFIndex begin, int nextArgument)
        : format_(format), at_(begin + 1), next_(nextArgument) {
        directive_.begin = begin;
    }

    // False for what is not a conversion.
    bool read() {
        directive_.argument = readPosition();
        readFlags();
        readWidth();
        readPrecision();
        readLength();
        if (at_ >= format_.length() || !readConversion())
            return false;
        directive_.end = at_;
        if (directive_.conversion != '%' && directive_.argument == FormatDirective::kNone)
            directive_.argument = next_++;
        return !failed_;
    }

    const FormatDirective& directive() const { return directive_; }
    int nextArgument() const { return next_; }

private:
    UniChar peek() const { return at_ < format_.length() ? format_[at_] : UniChar{0}; }
    bool take(char wanted) {
        if (peek() != static_cast<UniChar>(wanted))
            return false;
        ++at_;
        return true;
    }

    // A number, or kNone without digits; it stops growing at what an int holds.
    int readNumber() {
        if (peek() < '0' || peek() > '9')
            return FormatDirective::kNone;
        int64_t value = 0;
        for (; peek() >= '0' && peek() <= '9'; ++at_)
            value = std::min<int64_t>(value * 10 + (peek() - '0'), std::numeric_limits<int>::max());
        return static_cast<int>(value);
    }

    // "2$" as index 1, or kNone, which reads nothing.
    int readPosition() {
        const CFIndex start = at_;
        const int position = readNumber();
        if (position != FormatDirective::kNone && take('$')) {
            failed_ |= position < 1 || position > kMaximumPosition;
            return position - 1;
        }
        at_ = start;
        return FormatDirective::kNone;
    }

    void readFlags() {
        constexpr std::string_view kFlags = "-+ #0'";
        for (; at_ < format_.length(); ++at_) {
            const size_t flag = format_[at_] < 0x80 ? kFlags.find(static_cast<char>(format_[at_]))
                                                    : std::string_view::npos;
            if (flag == std::string_view::npos)
                return;
            directive_.flags = static_cast<uint8_t>(directive_.flags | 1u << flag);
        }
    }

    int readStar() {
        const int position = readPosition();
        return position == FormatDirective::kNone ? next_++ : position;
    }

    void readWidth() {
        if (take('*'))
            directive_.widthArgument = readStar();
        else
            directive_.width = readNumber();
    }

    void readPrecision() {
        if (!take('.'))
            return;
        if (take('*'))
            directive_.precisionArgument = readStar();
        else
            directive_.precision = std::max(readNumber(), 0);
    }

    void readLength() {
        using enum LengthModifier;
        if (take('h'))
            directive_.length = take('h') ? Char : Short;
        else if (take('l'))
            directive_.length = take('l') ? LongLong : Long;
        else if (take('q'))
            directive_.length = LongLong;
        else if (take('j'))
            directive_.length = IntMax;
        else if (take('z'))
            directive_.length = Size;
        else if (take('t'))
            directive_.length = Difference;
        else if (take('L'))
            directive_.length = LongDouble;
    }

    bool readConversion() {
        const UniChar unit = format_[at_++];
        constexpr std::string_view kKnown = "%@diouxXDOUeEfFgGaAcCsSp";
        if (unit >= 0x80 || kKnown.find(static_cast<char>(unit)) == std::string_view::npos)
            return false;
        directive_.conversion = static_cast<char>(unit);
        // The capital integers are the long ones.
        constexpr std::string_view kLong = "DOU";
        if (kLong.find(directive_.conversion) != std::string_view::npos) {
            directive_.conversion = static_cast<char>(directive_.conversion - 'A' + 'a');
            directive_.length = LengthModifier::Long;
        }
        return true;
    }

    const Text& format_;
    CFIndex at_;
    int next_;
    bool failed_ = false;
    FormatDirective directive_;
};

ArgumentType integerType(LengthModifier length) {
    switch (length) {
    case LengthModifier::Long:
        return ArgumentType::Long;
    case LengthModifier::LongLong:
    case LengthModifier::LongDouble:
    case LengthModifier::IntMax:
        return ArgumentType::LongLong;
    case LengthModifier::Size:
    case LengthModifier::Difference:
        return sizeof(size_t) == sizeof(long) ? ArgumentType::Long : ArgumentType::Int;
    default:
        return ArgumentType::Int;
    }
}

static_assert(sizeof(intmax_t) == sizeof(long long) && sizeof(size_t) == sizeof(ptrdiff_t));

ArgumentType typeOf(const FormatDirective& directive) {
    switch (directive.conversion) {
    case '%':
        return ArgumentType::None;
    case '@':
    case 's':
    case 'S':
    case 'p':
        return ArgumentType::Pointer;
    case 'c':
    case 'C':
        return ArgumentType::Int;
    case 'd':
    case 'i':
    case 'o':
    case 'u':
    case 'x':
    case 'X':
        return integerType(directive.length);
    default:
        return directive.length == LengthModifier::LongDouble ? ArgumentType::LongDouble
                                                              : ArgumentType::Double;
    }
}

} // namespace

bool ParsedFormat::addDirective(const FormatDirective& directive) {
    if (directiveCount_ == directives_.capacity() &&
        !directives_.reserve(directiveCount_ * 2, directiveCount_))
        return false;
    directives_.data()[directiveCount_++] = directive;
    return setType(directive.widthArgument, ArgumentType::Int) &&
           setType(directive.precisionArgument, ArgumentType::Int) &&
           setType(directive.argument, typeOf(directive));
}

bool ParsedFormat::setType(int argument, ArgumentType type) {
    if (argument == FormatDirective::kNone || type == ArgumentType::None)
        return true;
    const auto index = static_cast<size_t>(argument);
    if (index >= types_.capacity() &&
        !types_.reserve(std::max(index + 1, types_.capacity() * 2), argumentCount_))
        return false;
    while (argumentCount_ <= index)
        types_.data()[argumentCount_++] = ArgumentType::None;
    types_.data()[index] = type;
    return true;
}

bool ParsedFormat::parse(const Text& format) {
    int nextArgument = 0;
    for (CFIndex i = 0; i < format.length();) {
        DirectiveReader reader(format, i, nextArgument);
        if (format[i] != '%' || !reader.read()) {
            ++i;
            continue;
        }
        nextArgument = reader.nextArgument();
        if (!addDirective(reader.directive()))
            return false;
        i = reader.directive().end;
    }
    return true;
}

} // namespace cf
