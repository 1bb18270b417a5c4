// Document.cpp: an SVG file's element tree, read with libxml2.

#include "Document.h"

#include "Scanner.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

namespace svg {

namespace {

// A document may define entities of its own but makes us read no other file.
xmlParserInputPtr refuseEntity(const char*, const char*, xmlParserCtxtPtr) {
    return nullptr;
}

// libxml2 objects are freed when their scope ends.
struct FreeParser {
    void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
};

// The first mistake that the parser met, with its line.
std::string parserError(xmlParserCtxt* parser) {
    const xmlError* error = xmlCtxtGetLastError(parser);
    if (!error || !error->message)
        return "not well-formed XML";
    return "line " + std::to_string(error->line) + ": " +
           std::string(trimmed(std::string_view(error->message)));
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// The whole file. A folder opens like a file, and fails at the first read.
std::optional<std::string> readFile(const std::string& fileName, std::string& error) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(fileName.c_str(), "rb"));
    std::string content;
    if (file) {
        char buffer[65536];
        while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, file.get()))
            content.append(buffer, count);
    }
    if (file && !std::ferror(file.get()))
        return content;
    error = std::string("cannot read: ") + std::strerror(errno);
    return std::nullopt;
}

} // namespace

std::optional<Document> Document::load(const std::string& fileName, std::string& error) {
    const auto content = readFile(fileName, error);
    auto document = content ? parse(*content, error) : std::nullopt;
    if (document)
        document->fileName_ = fileName;
    return document;
}

std::optional<Document> Document::parse(std::string_view text, std::string& error) {
    if (text.size() > INT_MAX) {
        error = "too large to read";
        return std::nullopt;
    }
    xmlSetExternalEntityLoader(refuseEntity);
    const std::unique_ptr<xmlParserCtxt, FreeParser> parser(xmlNewParserCtxt());
    xmlDoc* tree =
        parser ? xmlCtxtReadMemory(parser.get(), text.data(), int(text.size()), nullptr, nullptr,
                                   XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_NOERROR |
                                       XML_PARSE_NOWARNING)
               : nullptr;
    if (!tree) {
        error = parser ? parserError(parser.get()) : "out of memory";
        return std::nullopt;
    }
    Document document(tree);
    if (!document.root().is("svg")) {
        error = "not an SVG document: the outermost element is not <svg>";
        return std::nullopt;
    }
    document.index(document.root());
    return document;
}

Element Document::find(const std::string& id) const {
    const auto found = elementsById_.find(id);
    return found == elementsById_.end() ? Element() : found->second;
}

// The parser refuses documents nested deeper than 256 elements, which bounds the recursion here and
// wherever the tree is walked.
void Document::index(Element element) {
    if (auto id = element.attribute("id"))
        elementsById_.emplace(std::move(*id), element); // Of equal ids the first one counts.
    if (element.is("style")) {
        const std::string type = element.attribute("type").value_or("text/css");
        if (type.empty() || type == "text/css")
            styleSheet_.add(element.text());
    }
    for (Element child = element.firstChild(); child; child = child.nextSibling())
        index(child);
}

} // namespace svg
