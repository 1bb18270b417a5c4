// ConfigReader.cpp: font configurations in XML, pulled node by node from libxml2's text reader.
//
// A document is small and flat, so that each kind of element has a function that reads it with its
// children. What is not known is passed over with a warning, for newer configurations to work; what
// is malformed ends the reading.

#include "Config/FMConfigRecord.h"
#include "Config/FontOverrides.h"
#include "Config/Substitutes.h"
#include "Core/Object/Diagnostics.h"

#include <libxml/xmlreader.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <memory>

namespace fm {

namespace {

std::string_view viewOf(const xmlChar* text) {
    return text ? reinterpret_cast<const char*>(text) : "";
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kSpace = " \t\r\n";
    const size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

cf::Ref<CFStringRef> makeString(std::string_view text) {
    return cf::adopt(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                             static_cast<CFIndex>(text.size()),
                                             kCFStringEncodingUTF8, false));
}

struct FreeText {
    void operator()(xmlChar* text) const { xmlFree(text); }
};
using Text = std::unique_ptr<xmlChar, FreeText>;

class ConfigReader {
public:
    ConfigReader(FMConfig& config, CFURLRef base, const char* name)
        : config_(config), base_(base), name_(name) {}

    // False after an error in the log.
    bool read(std::string_view document) {
        if (document.size() > INT_MAX)
            return fail("is too long");
        reader_.reset(xmlReaderForMemory(document.data(), static_cast<int>(document.size()),
                                         nullptr, nullptr, XML_PARSE_NONET));
        if (!reader_)
            return fail("finds no memory for a parser");
        xmlTextReaderSetStructuredErrorHandler(reader_.get(), takeError, this);
        if (!advance() || !isElement("fontConfig"))
            return fail("has no fontConfig element");
        forEachChild([&](std::string_view kind) { readSection(kind); });
        while (advance()) {
        }
        return !hasFailed_;
    }

private:
    struct FreeReader {
        void operator()(xmlTextReader* reader) const { xmlFreeTextReader(reader); }
    };

    template <typename ErrorPointer>
    static void reportError(void* context, ErrorPointer error) {
        if (error && error->level >= XML_ERR_ERROR)
            static_cast<ConfigReader*>(context)->fail(
                trimmed(error->message ? error->message : "is malformed"));
    }
    // Newer versions of libxml2 pass a pointer to const.
    static constexpr auto takeError = [](void* context, auto* error) {
        reportError(context, error);
    };

    int line() const { return reader_ ? xmlTextReaderGetParserLineNumber(reader_.get()) : 0; }
    // The first failure is the one that tells something.
    bool fail(std::string_view what) {
        if (!hasFailed_)
            CG_LOG_AS(kHostLogError, "FMConfigCreateDefault", "%s, line %d: %.*s", name_, line(),
                      static_cast<int>(std::min<size_t>(what.size(), 200)), what.data());
        hasFailed_ = true;
        return false;
    }
    void warn(const char* what, std::string_view detail) const {
        CG_LOG_AS(kHostLogWarning, "FMConfigCreateDefault", "%s, line %d: %s \"%.*s\"", name_,
                  line(), what, static_cast<int>(std::min<size_t>(detail.size(), 200)),
                  detail.data());
    }

    int nodeType() const { return xmlTextReaderNodeType(reader_.get()); }
    std::string_view name() const { return viewOf(xmlTextReaderConstName(reader_.get())); }
    std::string_view content() const { return viewOf(xmlTextReaderConstValue(reader_.get())); }
    bool isElement(std::string_view expected) const {
        return nodeType() == XML_READER_TYPE_ELEMENT && name() == expected;
    }

    // Goes to the next node that means something. False at the end, and for what no configuration
    // has: without declarations there is nothing to expand or to fetch.
    bool advance() {
        while (!hasFailed_ && xmlTextReaderRead(reader_.get()) == 1) {
            switch (nodeType()) {
            case XML_READER_TYPE_DOCUMENT_TYPE:
            case XML_READER_TYPE_ENTITY_REFERENCE:
                return fail("declarations and entities are not allowed");
            case XML_READER_TYPE_ELEMENT:
            case XML_READER_TYPE_END_ELEMENT:
            case XML_READER_TYPE_TEXT:
            case XML_READER_TYPE_CDATA:
                return true;
            default:
                break;
            }
        }
        return false;
    }

    // Calls `visit(name)` for each element in the current one, and goes to its end. The visitor
    // leaves the reader at the end of the element that it was given.
    template <typename Visit>
    void forEachChild(Visit visit) {
        if (xmlTextReaderIsEmptyElement(reader_.get()))
            return;
        while (advance()) {
            if (nodeType() == XML_READER_TYPE_END_ELEMENT)
                return;
            if (nodeType() == XML_READER_TYPE_ELEMENT)
                visit(name());
            else
                warn("text where none belongs:", trimmed(content()));
        }
    }

    void skipUnknown(std::string_view kind) {
        warn("an unknown element is passed over:", kind);
        skip();
    }
    void skip() {
        int depth = 0;
        do {
            if (nodeType() == XML_READER_TYPE_END_ELEMENT)
                --depth;
            else if (nodeType() == XML_READER_TYPE_ELEMENT &&
                     !xmlTextReaderIsEmptyElement(reader_.get()))
                ++depth;
        } while (depth > 0 && advance());
    }

    // An attribute of the current element; empty when it has none of that name.
    Text attribute(const char* key) const {
        return Text(
            xmlTextReaderGetAttribute(reader_.get(), reinterpret_cast<const xmlChar*>(key)));
    }
    cf::Ref<CFStringRef> stringAttribute(const char* key) const {
        const Text text = attribute(key);
        return text ? makeString(trimmed(viewOf(text.get()))) : nullptr;
    }
    // The family key that the attribute "family" stands for; NULL after a warning.
    cf::Ref<CFStringRef> familyAttribute() const {
        const Text text = attribute("family");
        const auto name = makeString(trimmed(viewOf(text.get())));
        auto key = name ? familyKey(name.get()) : nullptr;
        if (!key)
            warn("no family is named by", viewOf(text.get()));
        return key;
    }

    // The text of the current element, which has no other contents; NULL for none.
    cf::Ref<CFStringRef> readText() {
        cf::Ref<CFStringRef> string;
        if (xmlTextReaderIsEmptyElement(reader_.get()))
            return nullptr;
        while (advance() && nodeType() != XML_READER_TYPE_END_ELEMENT) {
            if (nodeType() == XML_READER_TYPE_ELEMENT)
                skipUnknown(name());
            else if (!string)
                string = makeString(trimmed(content()));
        }
        return string;
    }

    void readSection(std::string_view kind) {
        if (kind == "database")
            readDatabase();
        else if (kind == "assets")
            forEachChild([&](std::string_view child) {
                child == "font" ? readAsset() : skipUnknown(child);
            });
        else if (kind == "substitutions")
            forEachChild([&](std::string_view child) {
                child == "substitution" ? readSubstitution() : skipUnknown(child);
            });
        else if (kind == "overrides")
            forEachChild([&](std::string_view child) {
                child == "override" ? readOverride() : skipUnknown(child);
            });
        else
            skipUnknown(kind);
    }

    void readDatabase() {
        const Text text = attribute("mode");
        const std::string_view value = trimmed(viewOf(text.get()));
        int32_t mode = 0;
        const char* const last = value.data() + value.size();
        const auto [end, status] = std::from_chars(value.data(), last, mode);
        if (status == std::errc() && end == last)
            config_.type = mode;
        else
            warn("no database mode is", value);
        skip();
    }

    void readAsset() {
        const auto path = stringAttribute("path");
        const auto url =
            cf::adopt(path && CFStringGetLength(path.get()) > 0
                          ? CFURLCreateWithFileSystemPathRelativeToBase(
                                nullptr, path.get(), kCFURLPOSIXPathStyle, false, base_)
                          : nullptr);
        const auto absolute = cf::adopt(url ? CFURLCopyAbsoluteURL(url.get()) : nullptr);
        if (absolute)
            CFArrayAppendValue(config_.assets.get(), absolute.get());
        else
            warn("a font has no path", "");
        skip();
    }

    void readSubstitution() {
        Substitutes substitutes(familyAttribute());
        const auto generic = stringAttribute("generic");
        const auto language = stringAttribute("language");
        forEachChild([&](std::string_view child) {
            if (child != "family")
                skipUnknown(child);
            else if (const auto family = readText())
                substitutes.add(family.get());
        });
        substitutes.addHostDefault(generic.get(), language.get());
        if (const auto families = substitutes.finish())
            CFDictionarySetValue(config_.substitutions.get(), substitutes.key(), families.get());
    }

    void readOverride() {
        const auto family = familyAttribute();
        forEachChild([&](std::string_view child) {
            if (child != "metrics")
                return skipUnknown(child);
            const MetricsOverride metrics = readMetrics();
            if (family && !metrics.isEmpty())
                addOverride(config_.overrides.get(), family.get(), metrics);
        });
    }

    MetricsOverride readMetrics() {
        MetricsOverride metrics;
        while (xmlTextReaderMoveToNextAttribute(reader_.get()) == 1) {
            using Outcome = MetricsOverride::Outcome;
            const Outcome outcome = metrics.set(name(), trimmed(content()));
            if (outcome == Outcome::UnknownName)
                warn("no measure is called", name());
            else if (outcome == Outcome::BadValue)
                warn("a measure cannot be", content());
        }
        xmlTextReaderMoveToElement(reader_.get());
        skip();
        return metrics;
    }

    FMConfig& config_;
    CFURLRef base_;
    const char* name_;
    std::unique_ptr<xmlTextReader, FreeReader> reader_;
    bool hasFailed_ = false;
};

} // namespace

cf::Ref<FMConfigRef> readConfig(std::string_view document, CFURLRef base, const char* name) {
    auto config = makeConfig();
    if (!config)
        return nullptr;
    ConfigReader reader(*config.get(), base, name);
    return reader.read(document) ? config : nullptr;
}

} // namespace fm
