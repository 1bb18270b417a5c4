// PropertyListTextReader.cpp: lists in the old text format, and tables of strings.

#include "CFURLSyntax.h"
#include "PropertyListInternal.h"
#include "StringBytes.h"

namespace cf::plist {

namespace {

using Units = GrowableArray<UniChar>;

bool isSpace(UniChar unit) {
    return unit == ' ' || (unit >= 0x09 && unit <= 0x0D) || unit == 0x2028 || unit == 0x2029;
}

// Letters of words that need no quotes.
bool isWordLetter(UniChar unit) {
    const bool isAlphanumeric = (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') ||
                                (unit >= '0' && unit <= '9');
    return isAlphanumeric ||
           (unit < 0x80 &&
            std::string_view("_$/:.-").find(static_cast<char>(unit)) != std::string_view::npos);
}

int digitValue(UniChar unit) {
    return unit < 0x80 ? url::hexadecimalDigit(static_cast<char>(unit)) : -1;
}

class TextReader {
public:
    TextReader(CFStringRef text, const Maker& maker, Problem& problem)
        : maker_(maker), problem_(problem) {
        const CFIndex count = CFStringGetLength(text);
        if (UniChar* const room = units_.extend(static_cast<size_t>(count)))
            CFStringGetCharacters(text, CFRangeMake(0, count), room);
    }

    Value read() {
        if (units_.failed())
            return fail("no memory");
        skipSpace();
        if (atEnd())
            return fail("no value");
        const UniChar first = peek();
        if (first == '{' || first == '(' || first == '<')
            return readWhole();
        // A string may be the whole list, or begin a table.
        Value string = readString();
        skipSpace();
        if (!string || atEnd())
            return string;
        at_ = 0;
        return readTable(0, '\0');
    }

private:
    Value fail(const char* what) {
        int line = 1;
        for (size_t i = 0; i < at_ && i < units_.size(); ++i)
            line += units_[i] == '\n';
        problem_.set(kCFPropertyListReadCorruptError, "line %d: %s", line, what);
        hasFailed_ = true;
        return nullptr;
    }

    bool atEnd() const { return at_ >= units_.size(); }
    UniChar peek(size_t ahead = 0) const {
        return at_ + ahead < units_.size() ? units_[at_ + ahead] : UniChar{0};
    }
    // Takes `mark`, with the space behind it, if it comes next.
    bool take(UniChar mark) {
        if (atEnd() || peek() != mark)
            return false;
        ++at_;
        skipSpace();
        return true;
    }

    // Skips comments as well.
    void skipSpace() {
        while (!atEnd()) {
            if (isSpace(peek())) {
                ++at_;
            } else if (peek() == '/' && peek(1) == '/') {
                while (!atEnd() && peek() != '\n' && peek() != '\r')
                    ++at_;
            } else if (peek() == '/' && peek(1) == '*') {
                at_ += 2;
                while (!atEnd() && !(peek() == '*' && peek(1) == '/'))
                    ++at_;
                at_ += 2;
            } else {
                return;
            }
        }
    }

    Value readWhole() {
        Value value = readValue(0);
        skipSpace();
        return !value || atEnd() ? value : fail("more than one value");
    }

    Value readValue(int depth) {
        if (depth > kMaximumDepth)
            return fail("the list nests too deep");
        if (take('{'))
            return readTable(depth, '}');
        if (take('('))
            return readArray(depth);
        if (take('<'))
            return readData();
        return readString();
    }

    Value readArray(int depth) {
        ArrayMaker array(maker_);
        while (!take(')')) {
            const Value value = readValue(depth + 1);
            if (!value)
                return nullptr;
            array.add(value);
            skipSpace();
            if (!take(',') && peek() != ')')
                return fail("an array that does not end");
        }
        return array.finish();
    }

    // "key = value;" up to `end`, or of the text for 0. A key alone is its own value.
    Value readTable(int depth, UniChar end) {
        DictionaryMaker dictionary(maker_);
        skipSpace();
        while (end ? !take(end) : !atEnd()) {
            const Value key = readString();
            if (!key)
                return nullptr;
            skipSpace();
            const Value value = take('=') ? readValue(depth + 1) : key;
            if (!value)
                return nullptr;
            dictionary.add(key, value);
            skipSpace();
            if (!take(';') && !(end && peek() == end))
                return fail("a ';' is missing");
        }
        return dictionary.finish();
    }

    Value readData() {
        TextBuffer bytes;
        int high = -1;
        while (!take('>')) {
            const int digit = digitValue(peek());
            if (atEnd() || digit < 0)
                return fail("data that are not hexadecimal");
            if (high >= 0)
                bytes.append(static_cast<char>(high * 16 + digit));
            high = high >= 0 ? -1 : digit;
            ++at_;
            skipSpace();
        }
        if (high >= 0)
            return fail("data with half a byte");
        if (bytes.failed())
            return nullptr;
        return maker_.data(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }

    Value readString() {
        const UniChar quote = peek();
        Units text;
        if (quote != '"' && quote != '\'') {
            while (!atEnd() && isWordLetter(peek()))
                text.append(units_[at_++]);
            return text.empty() ? fail("a value is missing") : makeText(text);
        }
        ++at_;
        while (!atEnd() && peek() != quote) {
            const UniChar unit = units_[at_++];
            text.append(unit == '\\' ? readEscape() : unit);
        }
        if (atEnd())
            return fail("a string that does not end");
        ++at_;
        return hasFailed_ ? nullptr : makeText(text);
    }

    UniChar readNumber(unsigned base, int count) {
        unsigned value = 0;
        for (; count > 0; --count) {
            const int digit = digitValue(peek());
            if (digit < 0 || static_cast<unsigned>(digit) >= base)
                break;
            value = value * base + static_cast<unsigned>(digit);
            ++at_;
        }
        return static_cast<UniChar>(value);
    }

    // What a byte escape stands for: the format is older than Unicode, and its bytes are of the
    // encoding of its time.
    UniChar characterOfByte(unsigned byte) {
        const auto letter = static_cast<char>(byte);
        const auto string = makeString(nullptr, {&letter, 1}, kCFStringEncodingNextStepLatin);
        if (!string)
            fail("a byte escape that stands for no character");
        return CFStringGetCharacterAtIndex(string.get(), 0);
    }

    // The character of an escape whose backslash was taken; others stand for themselves.
    UniChar readEscape() {
        const UniChar letter = peek();
        if (letter >= '0' && letter <= '7')
            return characterOfByte(readNumber(8, 3) & 0xFFu);
        if (atEnd())
            return 0;
        ++at_;
        switch (letter) {
        case 'U':
            return readNumber(16, 4);
        case 'a':
            return '\a';
        case 'b':
            return '\b';
        case 'f':
            return '\f';
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        case 'v':
            return '\v';
        default:
            return letter;
        }
    }

    Value makeText(const Units& text) {
        static constexpr UniChar kNothing = 0;
        if (text.failed())
            return nullptr;
        return maker_.string(adopt(
            CFStringCreateWithCharacters(maker_.allocator(), text.empty() ? &kNothing : text.data(),
                                         static_cast<CFIndex>(text.size()))));
    }

    const Maker& maker_;
    Problem& problem_;
    Units units_;
    size_t at_ = 0;
    bool hasFailed_ = false;
};

} // namespace

Value readText(CFStringRef text, const Maker& maker, Problem& problem) {
    return TextReader(text, maker, problem).read();
}

} // namespace cf::plist
