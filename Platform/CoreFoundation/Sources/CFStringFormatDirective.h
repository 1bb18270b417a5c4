// CFStringFormatDirective.h: a format taken apart into its conversions and the arguments that they
// read.
#pragma once

#include "CFStringInternal.h"

namespace cf {

// What is read from the argument list. Narrower integers arrive as int.
enum class ArgumentType : uint8_t { None, Int, Long, LongLong, Double, LongDouble, Pointer };

enum class LengthModifier : uint8_t {
    None,
    Char,
    Short,
    Long,
    LongLong,
    IntMax,
    Size,
    Difference,
    LongDouble
};

// One conversion: format[begin, end). What lies between two of them is copied.
struct FormatDirective {
    enum Flag : uint8_t {
        kLeft = 1,
        kPlus = 2,
        kSpace = 4,
        kAlternate = 8,
        kZero = 16,
        kGroup = 32
    };
    static constexpr int kNone = -1;

    CFIndex begin = 0;
    CFIndex end = 0;
    uint8_t flags = 0;
    LengthModifier length = LengthModifier::None;
    char conversion = 0;
    int width = kNone;
    int precision = kNone;
    int widthArgument = kNone; // Index of the argument that gives it.
    int precisionArgument = kNone;
    int argument = kNone;
};

class ParsedFormat {
public:
    // False when memory runs out.
    [[nodiscard]] bool parse(const Text& format);

    size_t directiveCount() const { return directiveCount_; }
    const FormatDirective& directive(size_t index) const { return directives_.data()[index]; }
    size_t argumentCount() const { return argumentCount_; }
    // None for positions that no conversion names.
    ArgumentType argumentType(size_t index) const { return types_.data()[index]; }

private:
    bool addDirective(const FormatDirective& directive);
    bool setType(int argument, ArgumentType type);

    Scratch<FormatDirective, 16> directives_;
    size_t directiveCount_ = 0;
    Scratch<ArgumentType, 32> types_;
    size_t argumentCount_ = 0;
};

} // namespace cf
