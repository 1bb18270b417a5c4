// StyleSheet.h: CSS rules, and which of them an element's style is made of.
#pragma once

#include "Element.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace svg {

// "property: value", the property in small letters as written.
struct Declaration {
    std::string property;
    std::string value;
    bool isImportant = false;
};

// The declarations between the braces of a rule, or in a style attribute; what cannot be read is
// left out up to the next semicolon.
std::vector<Declaration> parseDeclarations(std::string_view text);

// "g.wide#main": conditions that one element must meet all together.
struct CompoundSelector {
    std::string type; // Empty for any.
    std::vector<std::string> ids;
    std::vector<std::string> classes;

    bool matches(Element element) const;
};

// Compounds from the left to the right, each with how it is tied to the one before it.
struct Selector {
    enum class Combinator { Descendant, Child };
    struct Part {
        Combinator combinator = Combinator::Descendant;
        CompoundSelector compound;
    };
    std::vector<Part> parts;

    bool matches(Element element) const { return matchesUpTo(parts.size(), element); }
    // Counts of ids, of classes, and of types: the greater one wins.
    std::array<std::size_t, 3> specificity() const;

private:
    bool matchesUpTo(std::size_t count, Element element) const;
};

class StyleSheet {
public:
    // Appends the rules of a sheet. Rules with selectors beyond types, classes, ids and the
    // descendant and child combinators are left out, as are at-rules.
    void add(std::string_view text);

    // The declarations for an element, the weakest first: by specificity, then by order.
    std::vector<const Declaration*> declarationsFor(Element element) const;

private:
    struct Rule {
        Selector selector;
        std::array<std::size_t, 3> specificity = {};
        std::vector<Declaration> declarations;
    };
    void addRule(std::string_view selectors, std::string_view body);

    std::vector<Rule> rules_; // Sorted by specificity; equal ones in the order of the sheets.
};

} // namespace svg
