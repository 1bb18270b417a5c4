// Scanner.h: reads numbers, names and separators out of attribute text, whatever the locale.
#pragma once

#include <optional>
#include <string_view>

namespace svg {

// The text without the white space around it.
std::string_view trimmed(std::string_view text);
// Whether both are the same letters, capital or small (ASCII).
bool equalsIgnoringCase(std::string_view a, std::string_view b);

// Walks through a text that it does not own. A member that finds what it looks for moves past it;
// one that does not leaves the scanner where it was.
class Scanner {
public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }
    std::string_view rest() const { return rest_; }
    // The next character, or 0 at the end.
    char peek() const { return rest_.empty() ? '\0' : rest_.front(); }
    void advance() { rest_.remove_prefix(rest_.empty() ? 0 : 1); }

    void skipSpace();
    // White space with at most one comma in it, as between the numbers of a list.
    void skipSeparator();

    bool accept(char character);
    // The longest run of letters, digits, '-' and '_'; may be empty.
    std::string_view name();
    // What comes before `end`, which is passed too; nothing when `end` never comes.
    std::optional<std::string_view> until(char end);

    // A number as SVG and CSS write it: the 'e' of "2em" belongs to the unit, ".5.5" is two
    // numbers.
    std::optional<double> number();
    // A number behind a separator, as the second and later ones of a list.
    std::optional<double> nextNumber();
    // A flag of an arc: one digit, which needs nothing between it and what follows.
    std::optional<bool> flag();

private:
    std::string_view rest_;
};

} // namespace svg
