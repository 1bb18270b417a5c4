// Element.cpp: a light handle on one element of an SVG document.

#include "Element.h"

#include <cstring>
#include <memory>

namespace svg {

namespace {

constexpr char kSvgNamespace[] = "http://www.w3.org/2000/svg";
constexpr char kLinkNamespace[] = "http://www.w3.org/1999/xlink";

// libxml2 has characters of its own, which are UTF-8.
const xmlChar* xml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}
const char* plain(const xmlChar* text) {
    return reinterpret_cast<const char*>(text);
}

struct FreeText {
    void operator()(xmlChar* text) const { xmlFree(text); }
};

// Takes over a text that libxml2 has made.
std::optional<std::string> adoptText(xmlChar* text) {
    const std::unique_ptr<xmlChar, FreeText> owner(text);
    return text ? std::optional<std::string>(plain(text)) : std::nullopt;
}

// This node or the first after it that is an element: text and comments lie between.
const xmlNode* nextElement(const xmlNode* node) {
    while (node && node->type != XML_ELEMENT_NODE)
        node = node->next;
    return node;
}

} // namespace

// Documents that name no language at all are taken for SVG.
std::string_view Element::name() const {
    const xmlNs* const language = node_ ? node_->ns : nullptr;
    const bool isSvg =
        node_ &&
        (!language || (language->href && std::strcmp(plain(language->href), kSvgNamespace) == 0));
    return isSvg ? std::string_view(plain(node_->name)) : std::string_view();
}

Element Element::parent() const {
    const xmlNode* parent = node_ ? node_->parent : nullptr;
    return Element(parent && parent->type == XML_ELEMENT_NODE ? parent : nullptr);
}

Element Element::firstChild() const {
    return Element(nextElement(node_->children));
}
Element Element::nextSibling() const {
    return Element(nextElement(node_->next));
}

std::optional<std::string> Element::attribute(const char* name) const {
    return adoptText(xmlGetNoNsProp(node_, xml(name)));
}

std::optional<std::string> Element::link() const {
    auto link = attribute("href");
    return link ? link : adoptText(xmlGetNsProp(node_, xml("href"), xml(kLinkNamespace)));
}

std::optional<std::string> Element::linkedId() const {
    const auto whole = link();
    if (!whole || !whole->starts_with('#'))
        return std::nullopt;
    return whole->substr(1);
}

std::optional<bool> Element::keepsSpace() const {
    const auto space = adoptText(xmlGetNsProp(node_, xml("space"), XML_XML_NAMESPACE));
    return space ? std::optional(*space == "preserve") : std::nullopt;
}

std::string Element::text() const {
    return adoptText(xmlNodeGetContent(node_)).value_or(std::string());
}

} // namespace svg
