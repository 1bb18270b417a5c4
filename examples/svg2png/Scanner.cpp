// Scanner.cpp: reads numbers, names and separators out of attribute text, whatever the locale.

#include "Scanner.h"

#include <algorithm>
#include <charconv>

namespace svg {

namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

bool isNameCharacter(char c) {
    const char l = lowered(c);
    return (l >= 'a' && l <= 'z') || isDigit(c) || c == '-' || c == '_' || (c & 0x80);
}

// from_chars also reads "inf" and "nan", which are no numbers here.
bool startsNumber(std::string_view text) {
    if (text.starts_with('.'))
        text.remove_prefix(1);
    return !text.empty() && isDigit(text.front());
}

} // namespace

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](char x, char y) { return lowered(x) == lowered(y); });
}

void Scanner::skipSpace() {
    while (isSpace(peek()))
        advance();
}

void Scanner::skipSeparator() {
    skipSpace();
    if (accept(','))
        skipSpace();
}

bool Scanner::accept(char character) {
    if (rest_.empty() || rest_.front() != character)
        return false;
    advance();
    return true;
}

std::string_view Scanner::name() {
    const auto end = std::ranges::find_if_not(rest_, isNameCharacter);
    const auto result = rest_.substr(0, std::size_t(end - rest_.begin()));
    rest_.remove_prefix(result.size());
    return result;
}

std::optional<std::string_view> Scanner::until(char end) {
    const auto position = rest_.find(end);
    if (position == std::string_view::npos)
        return std::nullopt;
    const auto result = rest_.substr(0, position);
    rest_.remove_prefix(position + 1);
    return result;
}

std::optional<double> Scanner::number() {
    std::string_view text = rest_;
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    if (!startsNumber(text))
        return std::nullopt;

    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const std::string_view digits = text.substr(0, std::size_t(end - text.data()));
    // Out of range leaves the value alone: too small is 0, too large is not a number to draw with.
    if (error != std::errc() && digits.find("e-") == std::string_view::npos &&
        digits.find("E-") == std::string_view::npos)
        return std::nullopt;
    rest_ = text.substr(digits.size());
    return negative ? -value : value;
}

std::optional<double> Scanner::nextNumber() {
    const std::string_view before = rest_;
    skipSeparator();
    const auto result = number();
    if (!result)
        rest_ = before;
    return result;
}

std::optional<bool> Scanner::flag() {
    const std::string_view before = rest_;
    skipSeparator();
    if (accept('0'))
        return false;
    if (accept('1'))
        return true;
    rest_ = before;
    return std::nullopt;
}

} // namespace svg
