// StyleSheet.cpp: CSS rules, and which of them an element's style is made of.

#include "StyleSheet.h"

#include "Scanner.h"

#include <algorithm>
#include <optional>

namespace svg {

namespace {

// Comments separate what stands on their two sides, hence the space.
std::string withoutComments(std::string_view text) {
    std::string result;
    for (;;) {
        const auto start = text.find("/*");
        result += text.substr(0, start);
        const auto end = start == std::string_view::npos ? start : text.find("*/", start + 2);
        if (end == std::string_view::npos)
            return result;
        result += ' ';
        text.remove_prefix(end + 2);
    }
}

// The position of `end`, jumping over strings and brackets; the text's size when it never comes.
std::size_t findOutsideBrackets(std::string_view text, char end) {
    char quote = 0;
    int depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote) {
            if (c == quote)
                quote = 0;
        } else if (c == end && depth == 0) {
            return i;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '(' || c == '{') {
            ++depth;
        } else if ((c == ')' || c == '}') && depth > 0) {
            --depth;
        }
    }
    return text.size();
}

// Cuts off the text before `end`, and `end` itself.
std::string_view takeUntil(std::string_view& text, char end) {
    const std::size_t position = findOutsideBrackets(text, end);
    const std::string_view result = text.substr(0, position);
    text.remove_prefix(std::min(text.size(), position + 1));
    return result;
}

// "property: value !important"; nothing when either side is missing.
std::optional<Declaration> parseDeclaration(std::string_view text) {
    const std::string_view property = trimmed(takeUntil(text, ':'));
    std::string_view value = trimmed(text);
    const auto mark = value.rfind('!');
    const bool isImportant = mark != std::string_view::npos &&
                             equalsIgnoringCase(trimmed(value.substr(mark + 1)), "important");
    if (isImportant)
        value = trimmed(value.substr(0, mark));
    if (property.empty() || value.empty())
        return std::nullopt;
    Declaration result = {std::string(property), std::string(value), isImportant};
    std::ranges::transform(result.property, result.property.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; });
    return result;
}

// A type or "*", then any number of classes and ids, without space between them.
std::optional<CompoundSelector> scanCompound(Scanner& scanner) {
    CompoundSelector result;
    const bool isUniversal = scanner.accept('*');
    if (!isUniversal)
        result.type = scanner.name();
    bool isEmpty = !isUniversal && result.type.empty();
    for (char c = scanner.peek(); c == '.' || c == '#'; c = scanner.peek()) {
        scanner.advance();
        const std::string_view name = scanner.name();
        if (name.empty())
            return std::nullopt;
        (c == '.' ? result.classes : result.ids).emplace_back(name);
        isEmpty = false;
    }
    return isEmpty ? std::nullopt : std::optional(std::move(result));
}

// Compounds with a combinator between each two; nothing for anything beyond those.
std::optional<Selector> parseSelector(std::string_view text) {
    Scanner scanner(trimmed(text));
    Selector selector;
    auto combinator = Selector::Combinator::Descendant;
    for (;;) {
        auto compound = scanCompound(scanner);
        if (!compound)
            return std::nullopt;
        selector.parts.push_back({combinator, std::move(*compound)});
        const auto before = scanner.rest().size();
        scanner.skipSpace();
        if (scanner.atEnd())
            return selector;
        const bool isChild = scanner.accept('>');
        if (!isChild && scanner.rest().size() == before)
            return std::nullopt; // Something of a kind that is not read here: ':', '[', '+'.
        scanner.skipSpace();
        combinator = isChild ? Selector::Combinator::Child : Selector::Combinator::Descendant;
    }
}

// Whether a name is one of the words of a class attribute.
bool hasClass(std::string_view classes, std::string_view name) {
    for (classes = trimmed(classes); !classes.empty(); classes = trimmed(classes)) {
        const auto end = std::min(classes.find_first_of(" \t\n\r\f"), classes.size());
        if (classes.substr(0, end) == name)
            return true;
        classes.remove_prefix(end);
    }
    return false;
}

} // namespace

std::vector<Declaration> parseDeclarations(std::string_view text) {
    const std::string clean = withoutComments(text);
    std::string_view rest = clean;
    std::vector<Declaration> result;
    while (!rest.empty())
        if (auto declaration = parseDeclaration(takeUntil(rest, ';')))
            result.push_back(std::move(*declaration));
    return result;
}

bool CompoundSelector::matches(Element element) const {
    if (!type.empty() && !element.is(type))
        return false;
    if (!ids.empty()) {
        const auto id = element.attribute("id");
        if (!id || std::ranges::any_of(ids, [&](const auto& wanted) { return wanted != *id; }))
            return false;
    }
    if (classes.empty())
        return true;
    const auto present = element.attribute("class");
    return present && std::ranges::all_of(
                          classes, [&](const auto& wanted) { return hasClass(*present, wanted); });
}

// Whether the first `count` compounds fit a chain that ends at `element`. Right to left, as the
// last compound is the one that the element itself must meet.
bool Selector::matchesUpTo(std::size_t count, Element element) const {
    if (count == 0)
        return true;
    const auto& [combinator, compound] = parts[count - 1];
    if (!element || !compound.matches(element))
        return false;
    if (count == 1)
        return true;
    for (Element above = element.parent(); above; above = above.parent()) {
        if (matchesUpTo(count - 1, above))
            return true;
        if (combinator == Combinator::Child)
            break;
    }
    return false;
}

std::array<std::size_t, 3> Selector::specificity() const {
    std::array<std::size_t, 3> result = {};
    for (const auto& [combinator, compound] : parts) {
        result[0] += compound.ids.size();
        result[1] += compound.classes.size();
        result[2] += compound.type.empty() ? 0 : 1;
    }
    return result;
}

void StyleSheet::add(std::string_view text) {
    const std::string clean = withoutComments(text);
    std::string_view rest = clean;
    while (!(rest = trimmed(rest)).empty()) {
        const std::size_t semicolon = findOutsideBrackets(rest, ';');
        const std::size_t brace = findOutsideBrackets(rest, '{');
        if (rest.front() == '@' && semicolon < brace) {
            rest.remove_prefix(semicolon + 1); // @import and @charset have no body.
            continue;
        }
        const bool isAtRule = rest.front() == '@';
        const std::string_view selectors = takeUntil(rest, '{');
        const std::string_view body = takeUntil(rest, '}');
        if (!isAtRule)
            addRule(selectors, body);
    }
    std::ranges::stable_sort(rules_, {}, &Rule::specificity);
}

void StyleSheet::addRule(std::string_view selectors, std::string_view body) {
    const auto declarations = parseDeclarations(body);
    std::vector<Rule> rules;
    while (!selectors.empty()) {
        auto selector = parseSelector(takeUntil(selectors, ','));
        if (!selector)
            return; // One bad selector spoils its whole list, as CSS has it.
        const auto specificity = selector->specificity();
        rules.push_back({std::move(*selector), specificity, declarations});
    }
    rules_.insert(rules_.end(), std::make_move_iterator(rules.begin()),
                  std::make_move_iterator(rules.end()));
}

std::vector<const Declaration*> StyleSheet::declarationsFor(Element element) const {
    std::vector<const Declaration*> result;
    for (const Rule& rule : rules_)
        if (rule.selector.matches(element))
            for (const Declaration& declaration : rule.declarations)
                result.push_back(&declaration);
    return result;
}

} // namespace svg
