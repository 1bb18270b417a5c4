// CFStringFormatSpec.cpp: taking formats apart.

#include "CFStringFormatSpec.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace cf {

namespace {

// Positions beyond this are mistakes, and would only cost memory.
constexpr int kMaximumPosition = 1024;

// Reads one conversion from behind its "%".
class SpecReader {
public:
    SpecReader(const Text& format, CFIndex begin, int nextArgument)
        : format_(format), at_(begin + 1), next_(nextArgument) {
        spec_.begin = begin;
    }

    // False for what is not a conversion.
    bool read() {
        spec_.argument = readPosition();
        readFlags();
        readWidth();
        readPrecision();
        readLength();
        if (at_ >= format_.length() || !readConversion())
            return false;
        spec_.end = at_;
        if (spec_.conversion != '%' && spec_.argument == FormatSpec::kNone)
            spec_.argument = next_++;
        return !failed_;
    }

    const FormatSpec& spec() const { return spec_; }
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
            return FormatSpec::kNone;
        int64_t value = 0;
        for (; peek() >= '0' && peek() <= '9'; ++at_)
            value = std::min<int64_t>(value * 10 + (peek() - '0'), std::numeric_limits<int>::max());
        return static_cast<int>(value);
    }

    // "2$" as index 1, or kNone, which reads nothing.
    int readPosition() {
        const CFIndex start = at_;
        const int position = readNumber();
        if (position != FormatSpec::kNone && take('$')) {
            failed_ |= position < 1 || position > kMaximumPosition;
            return position - 1;
        }
        at_ = start;
        return FormatSpec::kNone;
    }

    void readFlags() {
        constexpr std::string_view kFlags = "-+ #0'";
        for (; at_ < format_.length(); ++at_) {
            const size_t flag = format_[at_] < 0x80 ? kFlags.find(static_cast<char>(format_[at_]))
                                                    : std::string_view::npos;
            if (flag == std::string_view::npos)
                return;
            spec_.flags = static_cast<uint8_t>(spec_.flags | 1u << flag);
        }
    }

    int readStar() {
        const int position = readPosition();
        return position == FormatSpec::kNone ? next_++ : position;
    }

    void readWidth() {
        if (take('*'))
            spec_.widthArgument = readStar();
        else
            spec_.width = readNumber();
    }

    void readPrecision() {
        if (!take('.'))
            return;
        if (take('*'))
            spec_.precisionArgument = readStar();
        else
            spec_.precision = std::max(readNumber(), 0);
    }

    void readLength() {
        using enum LengthModifier;
        if (take('h'))
            spec_.length = take('h') ? Char : Short;
        else if (take('l'))
            spec_.length = take('l') ? LongLong : Long;
        else if (take('q'))
            spec_.length = LongLong;
        else if (take('j'))
            spec_.length = IntMax;
        else if (take('z'))
            spec_.length = Size;
        else if (take('t'))
            spec_.length = Difference;
        else if (take('L'))
            spec_.length = LongDouble;
    }

    bool readConversion() {
        const UniChar unit = format_[at_++];
        constexpr std::string_view kKnown = "%@diouxXDOUeEfFgGaAcCsSp";
        if (unit >= 0x80 || kKnown.find(static_cast<char>(unit)) == std::string_view::npos)
            return false;
        spec_.conversion = static_cast<char>(unit);
        // The capital integers are the long ones.
        constexpr std::string_view kLong = "DOU";
        if (kLong.find(spec_.conversion) != std::string_view::npos) {
            spec_.conversion = static_cast<char>(spec_.conversion - 'A' + 'a');
            spec_.length = LengthModifier::Long;
        }
        return true;
    }

    const Text& format_;
    CFIndex at_;
    int next_;
    bool failed_ = false;
    FormatSpec spec_;
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

ArgumentType typeOf(const FormatSpec& spec) {
    switch (spec.conversion) {
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
        return integerType(spec.length);
    default:
        return spec.length == LengthModifier::LongDouble ? ArgumentType::LongDouble
                                                         : ArgumentType::Double;
    }
}

} // namespace

bool ParsedFormat::addSpec(const FormatSpec& spec) {
    if (specCount_ == specs_.capacity() && !specs_.reserve(specCount_ * 2, specCount_))
        return false;
    specs_.data()[specCount_++] = spec;
    return setType(spec.widthArgument, ArgumentType::Int) &&
           setType(spec.precisionArgument, ArgumentType::Int) &&
           setType(spec.argument, typeOf(spec));
}

bool ParsedFormat::setType(int argument, ArgumentType type) {
    if (argument == FormatSpec::kNone || type == ArgumentType::None)
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
        SpecReader reader(format, i, nextArgument);
        if (format[i] != '%' || !reader.read()) {
            ++i;
            continue;
        }
        nextArgument = reader.nextArgument();
        if (!addSpec(reader.spec()))
            return false;
        i = reader.spec().end;
    }
    return true;
}

} // namespace cf
