// CFPropertyList.cpp: reading and writing lists in whichever format, copying and checking them.

#include "CFPropertyList.h"

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFNumber.h>

#include "CFRuntimeInternal.h"
#include "ErrorInternal.h"
#include "PropertyListInternal.h"
#include "StringBytes.h"

#include <algorithm>

namespace {

using cf::plist::Maker;
using cf::plist::Problem;
using cf::plist::Value;

void report(const Problem& problem, CFErrorRef* error) {
    const bool hasReason = problem.code() != 0;
    cf::storeError(error, kCFErrorDomainCocoa,
                   hasReason ? problem.code() : CFIndex{kCFPropertyListReadCorruptError},
                   hasReason ? problem.text() : "no memory");
}

// ---- Reading

std::string_view bytesOf(CFDataRef data) {
    return {reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
            static_cast<size_t>(CFDataGetLength(data))};
}

// The encoding that the first bytes of a text tell: by a mark, or by the zeroes beside the '<' that
// XML begins with.
CFStringEncoding encodingOf(std::string_view bytes) {
    using namespace std::string_view_literals;
    if (bytes.starts_with("\xFE\xFF"sv) || bytes.starts_with("\xFF\xFE"sv))
        return kCFStringEncodingUTF16;
    if (bytes.starts_with("\0<"sv))
        return kCFStringEncodingUTF16BE;
    if (bytes.starts_with("<\0"sv))
        return kCFStringEncodingUTF16LE;
    return kCFStringEncodingUTF8;
}

// The encoding that an XML declaration names, where it is another one than UTF-8.
CFStringEncoding declaredEncodingOf(std::string_view text) {
    constexpr auto npos = std::string_view::npos;
    if (!text.starts_with("<?xml"))
        return kCFStringEncodingUTF8;
    text = text.substr(0, text.find("?>"));
    const size_t name = text.find("encoding");
    const size_t opening = name == npos ? npos : text.find_first_of("\"'", name);
    const size_t closing = opening == npos ? npos : text.find(text[opening], opening + 1);
    if (closing == npos)
        return kCFStringEncodingUTF8;
    const auto declared = cf::makeString(nullptr, text.substr(opening + 1, closing - opening - 1));
    const CFStringEncoding encoding = declared
                                          ? CFStringConvertIANACharSetNameToEncoding(declared.get())
                                          : kCFStringEncodingInvalidId;
    // UTF-16 without a sign of it in the bytes is a slip of the writer's.
    const bool isPlain = encoding == kCFStringEncodingASCII || encoding == kCFStringEncodingUTF16;
    return isPlain ? kCFStringEncodingUTF8 : encoding;
}

bool isXML(std::string_view text) {
    const size_t start = text.find_first_not_of(" \t\r\n");
    text = text.substr(std::min(start, text.size()));
    return text.starts_with("<?") || text.starts_with("<!") || text.starts_with("<plist");
}

// The same text in UTF-8 without a mark, for parsers that take nothing else.
bool appendAsUTF8(std::string_view bytes, CFStringEncoding encoding, cf::TextBuffer& utf8) {
    const auto string =
        cf::adopt(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                          static_cast<CFIndex>(bytes.size()), encoding, true));
    return string && cf::appendUTF8(string.get(), utf8);
}

Value readCharacters(std::string_view bytes, const Maker& maker, CFPropertyListFormat& format,
                     Problem& problem) {
    cf::TextBuffer converted;
    if (bytes.starts_with("\xEF\xBB\xBF"))
        bytes.remove_prefix(3);
    CFStringEncoding encoding = encodingOf(bytes);
    if (encoding == kCFStringEncodingUTF8)
        encoding = declaredEncodingOf(bytes);
    if (encoding != kCFStringEncodingUTF8) {
        if (!appendAsUTF8(bytes, encoding, converted)) {
            problem.set(kCFPropertyListReadCorruptError, "the text is not of its encoding");
            return nullptr;
        }
        bytes = view(converted);
    }
    if (isXML(bytes)) {
        format = kCFPropertyListXMLFormat_v1_0;
        return cf::plist::readXML(bytes, maker, problem);
    }
    const auto text = cf::makeString(nullptr, bytes);
    if (!text) {
        problem.set(kCFPropertyListReadCorruptError, "the text is not UTF-8");
        return nullptr;
    }
    format = kCFPropertyListOpenStepFormat;
    return cf::plist::readText(text.get(), maker, problem);
}

Value read(std::string_view bytes, const Maker& maker, CFPropertyListFormat& format,
           Problem& problem) {
    if (bytes.starts_with("bplist")) {
        format = kCFPropertyListBinaryFormat_v1_0;
        return cf::plist::readBinary(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(),
                                     maker, problem);
    }
    return readCharacters(bytes, maker, format, problem);
}

// All of a stream, or `limit` bytes of it.
bool readStream(CFReadStreamRef stream, size_t limit, cf::TextBuffer& bytes) {
    constexpr size_t kBlock = 16384;
    while (bytes.size() < limit) {
        const size_t size = std::min(kBlock, limit - bytes.size());
        char* const room = bytes.extend(size);
        if (!room)
            return false;
        const CFIndex count =
            CFReadStreamRead(stream, reinterpret_cast<UInt8*>(room), static_cast<CFIndex>(size));
        bytes.truncate(bytes.size() - size + static_cast<size_t>(std::max(count, CFIndex{0})));
        if (count <= 0)
            return count == 0;
    }
    return true;
}

// ---- Checking and copying

bool isValid(CFTypeRef value, bool allowsAllKinds, int depth);

struct Check {
    bool allowsAllKinds;
    int depth;
    bool passed = true;

    void add(CFTypeRef value) { passed = passed && isValid(value, allowsAllKinds, depth + 1); }
};

void checkEntry(const void* key, const void* value, void* context) {
    auto& check = *static_cast<Check*>(context);
    check.passed = check.passed && key && CFGetTypeID(key) == CFStringGetTypeID();
    check.add(value);
}

void checkElement(const void* value, void* context) {
    static_cast<Check*>(context)->add(value);
}

bool isValid(CFTypeRef value, bool allowsAllKinds, int depth) {
    if (!value || depth > cf::plist::kMaximumDepth)
        return false;
    const CFTypeID type = CFGetTypeID(value);
    Check check{allowsAllKinds, depth};
    if (type == CFArrayGetTypeID()) {
        const auto array = static_cast<CFArrayRef>(value);
        CFArrayApplyFunction(array, CFRangeMake(0, CFArrayGetCount(array)), checkElement, &check);
        return check.passed;
    }
    if (type == CFDictionaryGetTypeID()) {
        CFDictionaryApplyFunction(static_cast<CFDictionaryRef>(value), checkEntry, &check);
        return check.passed;
    }
    const bool isText = type == CFStringGetTypeID() || type == CFDataGetTypeID();
    return isText || (allowsAllKinds && (type == CFNumberGetTypeID() || type == CFDateGetTypeID() ||
                                         type == CFBooleanGetTypeID()));
}

Value copyDeeply(CFTypeRef value, const Maker& maker);

Value copyArray(CFArrayRef array, const Maker& maker) {
    cf::plist::ArrayMaker copy(maker);
    for (CFIndex i = 0, count = CFArrayGetCount(array); i < count; ++i) {
        const Value part = copyDeeply(CFArrayGetValueAtIndex(array, i), maker);
        if (!part)
            return nullptr;
        copy.add(part);
    }
    return copy.finish();
}

Value copyDictionary(CFDictionaryRef dictionary, const Maker& maker) {
    cf::GrowableArray<cf::plist::Entry> entries;
    cf::plist::DictionaryMaker copy(maker);
    if (!cf::plist::sortEntries(dictionary, entries))
        return nullptr;
    for (const auto& [key, value] : entries) {
        const Value part = copyDeeply(value, maker);
        if (!part)
            return nullptr;
        copy.add(cf::retain<CFTypeRef>(key), part);
    }
    return copy.finish();
}

Value copyDeeply(CFTypeRef value, const Maker& maker) {
    const CFTypeID type = CFGetTypeID(value);
    if (type == CFArrayGetTypeID())
        return copyArray(static_cast<CFArrayRef>(value), maker);
    if (type == CFDictionaryGetTypeID())
        return copyDictionary(static_cast<CFDictionaryRef>(value), maker);
    if (type == CFStringGetTypeID())
        return maker.string(cf::retain(static_cast<CFStringRef>(value)));
    if (type == CFDataGetTypeID()) {
        const auto data = static_cast<CFDataRef>(value);
        return maker.data(CFDataGetBytePtr(data), static_cast<size_t>(CFDataGetLength(data)));
    }
    return cf::retain(value);
}

bool write(CFPropertyListRef list, CFPropertyListFormat format, cf::TextBuffer& bytes,
           Problem& problem) {
    if (!isValid(list, true, 0)) {
        problem.set(kCFPropertyListWriteStreamError, "not a property list");
        return false;
    }
    if (format == kCFPropertyListXMLFormat_v1_0)
        return cf::plist::writeXML(list, bytes, problem);
    if (format == kCFPropertyListBinaryFormat_v1_0)
        return cf::plist::writeBinary(list, bytes, problem);
    problem.set(kCFPropertyListWriteStreamError, "format %ld is not written", long{format});
    return false;
}

} // namespace

CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef allocator, CFDataRef data,
                                               CFOptionFlags options, CFPropertyListFormat* format,
                                               CFErrorRef* error) {
    Problem problem;
    CFPropertyListFormat found = kCFPropertyListXMLFormat_v1_0;
    Value value;
    if (data && CFDataGetLength(data) > 0)
        value = read(bytesOf(data), Maker(allocator, options), found, problem);
    else
        problem.set(kCFPropertyListReadCorruptError, "no bytes");
    if (!value)
        report(problem, error);
    else if (format)
        *format = found;
    return value.release();
}

CFPropertyListRef CFPropertyListCreateWithStream(CFAllocatorRef allocator, CFReadStreamRef stream,
                                                 CFIndex streamLength, CFOptionFlags options,
                                                 CFPropertyListFormat* format, CFErrorRef* error) {
    cf::TextBuffer bytes;
    const size_t limit = streamLength > 0 ? static_cast<size_t>(streamLength) : SIZE_MAX;
    if (streamLength < 0 || !readStream(stream, limit, bytes)) {
        cf::storeError(error, kCFErrorDomainCocoa, kCFPropertyListReadStreamError,
                       "the stream cannot be read");
        return nullptr;
    }
    const auto data = cf::adopt(
        CFDataCreateWithBytesNoCopy(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                    static_cast<CFIndex>(bytes.size()), kCFAllocatorNull));
    return CFPropertyListCreateWithData(allocator, data.get(), options, format, error);
}

CFDataRef CFPropertyListCreateData(CFAllocatorRef allocator, CFPropertyListRef propertyList,
                                   CFPropertyListFormat format, CFOptionFlags, CFErrorRef* error) {
    Problem problem;
    cf::TextBuffer bytes;
    if (!write(propertyList, format, bytes, problem)) {
        report(problem, error);
        return nullptr;
    }
    auto data = cf::adopt(CFDataCreate(allocator, reinterpret_cast<const UInt8*>(bytes.data()),
                                       static_cast<CFIndex>(bytes.size())));
    if (!data)
        cf::storeError(error, kCFErrorDomainCocoa, kCFPropertyListWriteStreamError, "no memory");
    return data.release();
}

CFIndex CFPropertyListWrite(CFPropertyListRef propertyList, CFWriteStreamRef stream,
                            CFPropertyListFormat format, CFOptionFlags, CFErrorRef* error) {
    Problem problem;
    cf::TextBuffer bytes;
    if (!write(propertyList, format, bytes, problem)) {
        report(problem, error);
        return 0;
    }
    const auto size = static_cast<CFIndex>(bytes.size());
    CFIndex done = 0;
    while (done < size) {
        const CFIndex count = CFWriteStreamWrite(
            stream, reinterpret_cast<const UInt8*>(bytes.data()) + done, size - done);
        if (count <= 0) {
            cf::storeError(error, kCFErrorDomainCocoa, kCFPropertyListWriteStreamError,
                           "the stream takes no more bytes");
            return 0;
        }
        done += count;
    }
    return done;
}

CFPropertyListRef CFPropertyListCreateDeepCopy(CFAllocatorRef allocator,
                                               CFPropertyListRef propertyList,
                                               CFOptionFlags mutabilityOption) {
    if (!isValid(propertyList, true, 0))
        return nullptr;
    return copyDeeply(propertyList, Maker(allocator, mutabilityOption)).release();
}

Boolean CFPropertyListIsValid(CFPropertyListRef propertyList, CFPropertyListFormat format) {
    const bool isKnown = format == kCFPropertyListOpenStepFormat ||
                         format == kCFPropertyListXMLFormat_v1_0 ||
                         format == kCFPropertyListBinaryFormat_v1_0;
    return isKnown && isValid(propertyList, format != kCFPropertyListOpenStepFormat, 0);
}
