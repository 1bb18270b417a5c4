// PropertyListXMLWriter.cpp: lists in XML, indented by tabs.

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFNumber.h>

#include "PropertyListInternal.h"
#include "StringBytes.h"

#include <charconv>
#include <cmath>

namespace cf::plist {

namespace {

constexpr size_t kBytesPerLine = 57; // 76 letters of base 64.

// The two characters above the control ones that XML leaves out.
bool hasNoncharacters(std::string_view utf8) {
    return utf8.find("\xEF\xBF\xBE") != std::string_view::npos ||
           utf8.find("\xEF\xBF\xBF") != std::string_view::npos;
}

class XMLWriter {
public:
    XMLWriter(TextBuffer& result, Problem& problem) : result_(result), problem_(problem) {}

    bool write(CFPropertyListRef list) {
        put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n");
        if (!writeValue(list, 0))
            return false;
        put("</plist>\n");
        if (result_.failed())
            problem_.set(kCFPropertyListWriteStreamError, "no memory for the XML list");
        return !result_.failed();
    }

private:
    bool fail(const char* what) {
        problem_.set(kCFPropertyListWriteStreamError, "XML cannot hold %s", what);
        return false;
    }

    void put(std::string_view text) { result_.append(text); }

    void indent(int depth) {
        for (int i = 0; i < depth; ++i)
            result_.append('\t');
    }

    bool writeValue(CFTypeRef value, int depth) {
        const CFTypeID type = CFGetTypeID(value);
        if (type == CFArrayGetTypeID())
            return writeArray(static_cast<CFArrayRef>(value), depth);
        if (type == CFDictionaryGetTypeID())
            return writeDictionary(static_cast<CFDictionaryRef>(value), depth);
        indent(depth);
        if (type == CFStringGetTypeID())
            return writeString("string", static_cast<CFStringRef>(value));
        if (type == CFDataGetTypeID()) {
            writeData(static_cast<CFDataRef>(value), depth);
        } else if (type == CFBooleanGetTypeID()) {
            put(value == kCFBooleanTrue ? "<true/>\n" : "<false/>\n");
        } else if (type == CFNumberGetTypeID()) {
            writeNumber(static_cast<CFNumberRef>(value));
        } else {
            put("<date>");
            if (!appendDate(CFDateGetAbsoluteTime(static_cast<CFDateRef>(value)), result_))
                return fail("a date outside of the years 0 to 9999");
            put("</date>\n");
        }
        return true;
    }

    bool writeArray(CFArrayRef array, int depth) {
        const CFIndex count = CFArrayGetCount(array);
        indent(depth);
        put(count == 0 ? "<array/>\n" : "<array>\n");
        for (CFIndex i = 0; i < count; ++i)
            if (!writeValue(CFArrayGetValueAtIndex(array, i), depth + 1))
                return false;
        if (count > 0) {
            indent(depth);
            put("</array>\n");
        }
        return true;
    }

    bool writeDictionary(CFDictionaryRef dictionary, int depth) {
        GrowableArray<Entry> entries;
        if (!sortEntries(dictionary, entries))
            return result_.fail();
        indent(depth);
        put(entries.empty() ? "<dict/>\n" : "<dict>\n");
        for (const auto& [key, value] : entries) {
            indent(depth + 1);
            if (!writeString("key", key) || !writeValue(value, depth + 1))
                return false;
        }
        if (!entries.empty()) {
            indent(depth);
            put("</dict>\n");
        }
        return true;
    }

    bool writeString(std::string_view element, CFStringRef string) {
        TextBuffer text;
        if (!appendUTF8(string, text))
            return fail("text with lone surrogates");
        if (hasNoncharacters(view(text)))
            return fail("the characters U+FFFE and U+FFFF");
        put("<");
        put(element);
        put(">");
        for (const char letter : text)
            if (!writeLetter(letter))
                return fail("control characters");
        put("</");
        put(element);
        put(">\n");
        return true;
    }

    // Readers turn a plain carriage return into a line feed.
    bool writeLetter(char letter) {
        switch (letter) {
        case '<':
            put("&lt;");
            return true;
        case '>':
            put("&gt;");
            return true;
        case '&':
            put("&amp;");
            return true;
        case '\r':
            put("&#13;");
            return true;
        default:
            result_.append(letter);
            return static_cast<uint8_t>(letter) >= 0x20 || letter == '\t' || letter == '\n';
        }
    }

    // The shortest digits that read back as the same number.
    template <typename Number>
    void writeDigits(Number value) {
        char text[32];
        const auto end = std::to_chars(text, text + sizeof text, value).ptr;
        result_.append(text, static_cast<size_t>(end - text));
    }

    void writeNumber(CFNumberRef number) {
        if (!CFNumberIsFloatType(number)) {
            int64_t value = 0;
            CFNumberGetValue(number, kCFNumberSInt64Type, &value);
            put("<integer>");
            writeDigits(value);
            put("</integer>\n");
            return;
        }
        double value = 0;
        CFNumberGetValue(number, kCFNumberFloat64Type, &value);
        put("<real>");
        if (std::isnan(value))
            put("nan");
        else if (std::isinf(value))
            put(value > 0 ? "+infinity" : "-infinity");
        else
            writeDigits(value);
        put("</real>\n");
    }

    void writeData(CFDataRef data, int depth) {
        const UInt8* const bytes = CFDataGetBytePtr(data);
        const auto count = static_cast<size_t>(CFDataGetLength(data));
        put("<data>\n");
        for (size_t i = 0; i < count; i += kBytesPerLine) {
            indent(depth);
            writeBase64(bytes + i, std::min(kBytesPerLine, count - i));
            put("\n");
        }
        indent(depth);
        put("</data>\n");
    }

    void writeBase64(const UInt8* bytes, size_t count) {
        constexpr char kLetters[] =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        for (size_t i = 0; i < count; i += 3) {
            uint32_t bits = 0;
            for (size_t j = 0; j < 3; ++j)
                bits = bits << 8 | (i + j < count ? bytes[i + j] : 0u);
            for (size_t j = 0; j < 4; ++j)
                result_.append(i + j <= count ? kLetters[bits >> (18 - 6 * j) & 63] : '=');
        }
    }

    TextBuffer& result_;
    Problem& problem_;
};

} // namespace

bool writeXML(CFPropertyListRef list, TextBuffer& result, Problem& problem) {
    return XMLWriter(result, problem).write(list);
}

} // namespace cf::plist
