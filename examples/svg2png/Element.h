// Element.h: a light handle on one element of an SVG document.
#pragma once

#include <libxml/tree.h>

#include <optional>
#include <string>
#include <string_view>

namespace svg {

// One element of a document, or none; lives as long as the document.
class Element {
public:
    Element() = default;
    explicit Element(const xmlNode* node) : node_(node) {}

    explicit operator bool() const { return node_ != nullptr; }
    bool operator==(const Element&) const = default;

    // The local name; empty for an element of another language (metadata, editors' notes).
    std::string_view name() const;
    bool is(std::string_view name) const { return this->name() == name; }
    Element parent() const;
    Element firstChild() const;
    Element nextSibling() const;

    // An attribute's text; one with a namespace of its own (inkscape:…) is not found.
    std::optional<std::string> attribute(const char* name) const;
    // The fragment that href, or the older xlink:href, points to in this document ("#part" gives
    // "part"); nothing for other links.
    std::optional<std::string> linkedId() const;
    // The whole link.
    std::optional<std::string> link() const;
    // Whether white space inside counts as it is written (xml:space); nothing where that is not
    // said.
    std::optional<bool> keepsSpace() const;
    // The text inside, its descendants' included.
    std::string text() const;

    const xmlNode* node() const { return node_; }

private:
    const xmlNode* node_ = nullptr;
};

} // namespace svg
