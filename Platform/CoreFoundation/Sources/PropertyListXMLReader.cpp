// PropertyListXMLReader.cpp: lists in XML, pulled node by node from libxml2's text reader.

#include <CoreFoundation/CFNumber.h>
#include <Host/Host.h>

#include "Base64.h"
#include "PropertyListInternal.h"
#include "StringBytes.h"

#include <libxml/xmlreader.h>

#include <charconv>
#include <climits>
#include <limits>
#include <memory>

namespace cf::plist {

namespace {

constexpr std::string_view kSpace = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

// The place behind the `mark` that ends a construct of the prolog.
size_t behind(std::string_view text, std::string_view mark, size_t from) {
    const size_t found = text.find(mark, from);
    return found == std::string_view::npos ? text.size() : found + mark.size();
}

// Whether the document declares anything of its own. No property list does, and what is not
// declared can neither be expanded nor fetched.
bool hasDeclarations(std::string_view text) {
    size_t at = 0;
    while ((at = text.find_first_not_of(kSpace, at)) != std::string_view::npos) {
        const std::string_view rest = text.substr(at);
        if (rest.starts_with("<!--")) {
            at = behind(text, "-->", at + 4);
        } else if (rest.starts_with("<?")) {
            at = behind(text, "?>", at + 2);
        } else if (rest.starts_with("<!DOCTYPE")) {
            const size_t end = rest.find_first_of("[>\"'");
            if (end == std::string_view::npos)
                return false;
            // Quoted identifiers may hold any letter.
            size_t mark = end;
            while (mark < rest.size() && (rest[mark] == '"' || rest[mark] == '\'')) {
                mark = behind(rest, rest.substr(mark, 1), mark + 1);
                mark = std::min(rest.find_first_of("[>\"'", mark), rest.size());
            }
            if (mark < rest.size() && rest[mark] == '[')
                return true;
            at += mark + 1;
        } else {
            return rest.starts_with("<!");
        }
    }
    return false;
}

void ignoreMessage(void*, const char*, ...) {}

// Sends the errors of libxml2 that belong to no parser, as those for want of memory, to the scope's
// owner instead of stderr. The handlers are the calling thread's own.
class ErrorScope {
public:
    ErrorScope(xmlStructuredErrorFunc function, void* context)
        : structured_(xmlStructuredError), structuredContext_(xmlStructuredErrorContext),
          generic_(xmlGenericError), genericContext_(xmlGenericErrorContext) {
        xmlSetStructuredErrorFunc(context, function);
        xmlSetGenericErrorFunc(nullptr, ignoreMessage);
    }
    ~ErrorScope() {
        xmlSetGenericErrorFunc(genericContext_, generic_);
        xmlSetStructuredErrorFunc(structuredContext_, structured_);
        xmlResetLastError();
    }
    ErrorScope(const ErrorScope&) = delete;
    ErrorScope& operator=(const ErrorScope&) = delete;

private:
    xmlStructuredErrorFunc structured_;
    void* structuredContext_;
    xmlGenericErrorFunc generic_;
    void* genericContext_;
};

class XMLReader {
public:
    XMLReader(const Maker& maker, Problem& problem) : maker_(maker), problem_(problem) {}

    Value read(std::string_view text) {
        // The text is UTF-8 by now, whatever it still says of itself.
        constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_IGNORE_ENC;
        if (hasDeclarations(text))
            return fail("declarations are not allowed");
        if (text.size() > INT_MAX)
            return fail("a document of more than 2 GiB");
        const ErrorScope errors(takeError, this);
        reader_.reset(xmlReaderForMemory(text.data(), static_cast<int>(text.size()), nullptr,
                                         "UTF-8", kOptions));
        if (!reader_)
            return fail("no memory for a parser");
        xmlTextReaderSetStructuredErrorHandler(reader_.get(), takeError, this);
        if (!advance() || !isElement("plist"))
            return fail("the root is no plist element");
        if (xmlTextReaderIsEmptyElement(reader_.get()) || !advance())
            return fail("the list is empty");
        Value value = readValue(0);
        if (!value || !advance())
            return fail("the list does not end");
        if (xmlTextReaderNodeType(reader_.get()) != XML_READER_TYPE_END_ELEMENT)
            return fail("more than one value");
        while (advance()) {
        }
        return hasFailed_ ? nullptr : value;
    }

private:
    struct FreeReader {
        void operator()(xmlTextReader* reader) const { xmlFreeTextReader(reader); }
    };

    template <typename ErrorPointer>
    static void reportError(void* context, ErrorPointer error) {
        auto& self = *static_cast<XMLReader*>(context);
        if (!error || error->level < XML_ERR_ERROR)
            return;
        self.hasFailed_ = true;
        const std::string_view message = trimmed(error->message ? error->message : "");
        self.problem_.set(kCFPropertyListReadCorruptError, "line %d: %.*s", error->line,
                          static_cast<int>(std::min<size_t>(message.size(), 120)), message.data());
    }
    // Newer versions of libxml2 pass a pointer to const.
    static constexpr auto takeError = [](void* context, auto* error) {
        reportError(context, error);
    };

    Value fail(const char* what) {
        hasFailed_ = true;
        const int line = reader_ ? xmlTextReaderGetParserLineNumber(reader_.get()) : 0;
        problem_.set(kCFPropertyListReadCorruptError, "line %d: %s", line, what);
        return nullptr;
    }

    // Goes to the next element, end or text that is more than white space. False at the end and for
    // what does not belong into a list.
    bool advance() {
        while (!hasFailed_ && xmlTextReaderRead(reader_.get()) == 1) {
            switch (xmlTextReaderNodeType(reader_.get())) {
            case XML_READER_TYPE_ELEMENT:
            case XML_READER_TYPE_END_ELEMENT:
                return true;
            case XML_READER_TYPE_TEXT:
            case XML_READER_TYPE_CDATA:
                if (trimmed(content()).empty())
                    break;
                fail("text outside of a value");
                return false;
            case XML_READER_TYPE_ENTITY_REFERENCE:
                fail("an entity that is not known");
                return false;
            default:
                break;
            }
        }
        return false;
    }

    std::string_view name() const {
        const xmlChar* const name = xmlTextReaderConstName(reader_.get());
        return name ? reinterpret_cast<const char*>(name) : "";
    }
    std::string_view content() const {
        const xmlChar* const text = xmlTextReaderConstValue(reader_.get());
        return text ? reinterpret_cast<const char*>(text) : "";
    }
    bool isElement(std::string_view expected) const {
        return xmlTextReaderNodeType(reader_.get()) == XML_READER_TYPE_ELEMENT &&
               name() == expected;
    }
    bool isEnd() const {
        return xmlTextReaderNodeType(reader_.get()) == XML_READER_TYPE_END_ELEMENT;
    }

    // The text of the current element up to its end.
    bool readContent(TextBuffer& text) {
        if (xmlTextReaderIsEmptyElement(reader_.get()))
            return true;
        while (!hasFailed_ && xmlTextReaderRead(reader_.get()) == 1) {
            switch (xmlTextReaderNodeType(reader_.get())) {
            case XML_READER_TYPE_END_ELEMENT:
                return !text.failed();
            case XML_READER_TYPE_TEXT:
            case XML_READER_TYPE_CDATA:
            case XML_READER_TYPE_WHITESPACE:
            case XML_READER_TYPE_SIGNIFICANT_WHITESPACE:
                text.append(content());
                break;
            case XML_READER_TYPE_COMMENT:
            case XML_READER_TYPE_PROCESSING_INSTRUCTION:
                break;
            default:
                fail("more than text in a value");
                return false;
            }
        }
        fail("a value that does not end");
        return false;
    }

    // The value whose element the reader is at; afterwards it is at that element's end.
    Value readValue(int depth) {
        if (xmlTextReaderNodeType(reader_.get()) != XML_READER_TYPE_ELEMENT)
            return fail("a value is missing");
        if (depth > kMaximumDepth)
            return fail("the list nests too deep");
        const std::string_view kind = name();
        if (kind == "array")
            return readArray(depth);
        if (kind == "dict")
            return readDictionary(depth);
        // The name goes away with the node.
        char leaf[16] = "";
        if (kind.size() >= sizeof leaf)
            return fail("an element that is not known");
        std::copy(kind.begin(), kind.end(), leaf);
        TextBuffer text;
        return readContent(text) ? makeLeaf(leaf, view(text)) : nullptr;
    }

    Value makeLeaf(std::string_view kind, std::string_view text) {
        if (kind == "string")
            return maker_.string(makeString(maker_.allocator(), text));
        if (kind == "integer")
            return makeInteger(trimmed(text));
        if (kind == "real")
            return makeReal(trimmed(text));
        if (kind == "date")
            return makeDate(trimmed(text));
        if (kind == "data")
            return makeData(text);
        if (kind == "true" || kind == "false")
            return retain<CFTypeRef>(kind == "true" ? kCFBooleanTrue : kCFBooleanFalse);
        return fail("an element that is not known");
    }

    Value makeInteger(std::string_view text) {
        const bool isNegative = text.starts_with('-');
        if (isNegative || text.starts_with('+'))
            text.remove_prefix(1);
        const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
        if (isHexadecimal)
            text.remove_prefix(2);
        uint64_t magnitude = 0;
        const char* const last = text.data() + text.size();
        const auto [end, status] =
            std::from_chars(text.data(), last, magnitude, isHexadecimal ? 16 : 10);
        if (status != std::errc() || end != last)
            return fail("an integer that is not well-formed");
        constexpr auto kLargest = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
        if (magnitude > kLargest + (isNegative ? 1 : 0))
            return maker_.real(static_cast<double>(magnitude) * (isNegative ? -1 : 1));
        return maker_.integer(static_cast<int64_t>(isNegative ? 0 - magnitude : magnitude));
    }

    Value makeReal(std::string_view text) {
        const bool hasPlus = text.starts_with('+');
        const std::string_view digits = text.substr(hasPlus ? 1 : 0);
        const char* const last = digits.data() + digits.size();
        double value = 0;
        const auto [end, status] = std::from_chars(digits.data(), last, value);
        if (status != std::errc() || end != last || (hasPlus && digits.starts_with('-')))
            return fail("a real that is not well-formed");
        return maker_.real(value);
    }

    Value makeDate(std::string_view text) {
        CFAbsoluteTime time = 0;
        return parseDate(text, time) ? maker_.date(time) : fail("a date that is not well-formed");
    }

    Value makeData(std::string_view text) {
        TextBuffer bytes;
        if (!decodeBase64(text, bytes))
            return fail("data that are not base 64");
        return maker_.data(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }

    Value readArray(int depth) {
        ArrayMaker array(maker_);
        const bool isEmpty = xmlTextReaderIsEmptyElement(reader_.get()) != 0;
        while (!isEmpty) {
            if (!advance())
                return fail("an array that does not end");
            if (isEnd())
                break;
            const Value value = readValue(depth + 1);
            if (!value)
                return nullptr;
            array.add(value);
        }
        return array.finish();
    }

    Value readDictionary(int depth) {
        DictionaryMaker dictionary(maker_);
        const bool isEmpty = xmlTextReaderIsEmptyElement(reader_.get()) != 0;
        while (!isEmpty) {
            if (!advance())
                return fail("a dictionary that does not end");
            if (isEnd())
                break;
            TextBuffer text;
            if (!isElement("key") || !readContent(text))
                return fail("a key is missing");
            const Value key = retain<CFTypeRef>(makeString(maker_.allocator(), view(text)).get());
            const Value value = key && advance() ? readValue(depth + 1) : nullptr;
            if (!value)
                return fail("a key without a value");
            dictionary.add(key, value);
        }
        return dictionary.finish();
    }

    const Maker& maker_;
    Problem& problem_;
    std::unique_ptr<xmlTextReader, FreeReader> reader_;
    bool hasFailed_ = false;
};

} // namespace

Value readXML(std::string_view utf8, const Maker& maker, Problem& problem) {
    static HostOnce once = HOST_ONCE_INIT;
    HostOnceRun(
        &once, [](void*) { xmlInitParser(); }, nullptr);
    return XMLReader(maker, problem).read(utf8);
}

} // namespace cf::plist
