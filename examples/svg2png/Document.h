// Document.h: an SVG file's element tree.
#pragma once

#include "Element.h"
#include "StyleSheet.h"

#include <libxml/tree.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace svg {

class Document {
public:
    // Reads and parses a file. On failure the result is empty and `error` says why in one line.
    static std::optional<Document> load(const std::string& fileName, std::string& error);
    // The same for text at hand.
    static std::optional<Document> parse(std::string_view text, std::string& error);

    Element root() const { return Element(xmlDocGetRootElement(tree_.get())); }
    Element find(const std::string& id) const;
    const StyleSheet& styleSheet() const { return styleSheet_; }
    // What links to other files are relative to; empty for text at hand.
    const std::string& fileName() const { return fileName_; }

private:
    struct FreeTree {
        void operator()(xmlDoc* tree) const { xmlFreeDoc(tree); }
    };

    explicit Document(xmlDoc* tree) : tree_(tree) {}
    void index(Element element);

    std::unique_ptr<xmlDoc, FreeTree> tree_;
    std::unordered_map<std::string, Element> elementsById_;
    StyleSheet styleSheet_;
    std::string fileName_;
};

} // namespace svg
