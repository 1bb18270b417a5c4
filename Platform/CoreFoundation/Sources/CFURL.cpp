// CFURL.cpp: the URL object: creation, the whole string, resolution and equality.

#include "CFURL.h"

#include "CFURLInternal.h"
#include "Record.h"
#include "StringBytes.h"

#include <algorithm>
#include <limits>

namespace {

Boolean urlsAreEqual(CFTypeRef a, CFTypeRef b) {
    const auto* const one = static_cast<CFURLRef>(a);
    const auto* const other = static_cast<CFURLRef>(b);
    return one->text() == other->text() &&
           cf::equalOrBothAbsent(one->baseURL.get(), other->baseURL.get());
}

CFHashCode hashURL(CFTypeRef object) {
    return CFHash(static_cast<CFURLRef>(object)->string.get());
}

CFTypeRef copyURL(CFAllocatorRef, CFTypeRef object) {
    return cf::retain(object).release();
}

CFStringRef copyURLForFormats(CFTypeRef object, CFTypeRef) {
    const auto* const url = static_cast<CFURLRef>(object);
    if (!url->baseURL)
        return cf::Ref(url->string).release();
    return CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%@ -- %@"), url->string.get(),
                                    url->baseURL.get());
}

CFStringRef copyURLForDebugging(CFTypeRef object) {
    const auto* const url = static_cast<CFURLRef>(object);
    return CFStringCreateWithFormat(nullptr, nullptr,
                                    CFSTR("<CFURL %p>{string = %@, encoding = %u, base = %@}"),
                                    static_cast<const void*>(url), url->string.get(),
                                    unsigned{url->encoding}, url->baseURL.get());
}

constexpr CFRuntimeClass kURLClass = {
    .className = "CFURL",
    .copy = copyURL,
    .finalize = cf::destroy<__CFURL>,
    .equal = urlsAreEqual,
    .hash = hashURL,
    .copyFormattingDescription = copyURLForFormats,
    .copyDebugDescription = copyURLForDebugging,
};

// The ASCII form of a URL given as bytes: characters beyond ASCII are escaped in `encoding`. False
// for malformed bytes.
bool appendLetters(const UInt8* bytes, CFIndex length, CFStringEncoding encoding,
                   cf::TextBuffer& letters) {
    if (length < 0 || (length > 0 && !bytes))
        return false;
    const std::string_view given(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length));
    const auto string = cf::makeString(nullptr, given, encoding);
    cf::TextBuffer units;
    if (!string)
        return false;
    for (CFIndex i = 0, count = CFStringGetLength(string.get()); i < count; ++i) {
        const UniChar unit = CFStringGetCharacterAtIndex(string.get(), i);
        if (unit < 0x80) {
            letters.append(static_cast<char>(unit));
            continue;
        }
        const bool isPair = CFStringIsSurrogateHighCharacter(unit) && i + 1 < count;
        units.truncate(0);
        if (!cf::appendBytes(string.get(), CFRangeMake(i, isPair ? 2 : 1), encoding, units))
            return false;
        for (const char byte : units)
            cf::url::appendEscape(static_cast<uint8_t>(byte), letters);
        i += isPair ? 1 : 0;
    }
    return !letters.failed();
}

// Resolves a URL's text against a base that may itself be relative.
bool appendResolved(std::string_view text, CFURLRef baseURL, cf::url::Resolution resolution,
                    cf::TextBuffer& result) {
    const auto base = cf::adopt(CFURLCopyAbsoluteURL(baseURL));
    if (!base)
        return false;
    cf::url::resolve(base.get()->text(), text, resolution, result);
    return !result.failed();
}

} // namespace

namespace cf::url {

bool isURL(CFURLRef url) {
    return isA(url, kURLClass);
}

CFURLRef create(CFAllocatorRef allocator, std::string_view text, CFURLRef baseURL,
                CFStringEncoding encoding) {
    if (text.size() >= std::numeric_limits<int32_t>::max())
        return nullptr;
    const Parts parts = split(text);
    if (!isLegal(text, parts)) {
        CF_LOG_WARNING("not a legal URL: \"%.*s\"", static_cast<int>(text.size()), text.data());
        return nullptr;
    }
    auto string = makeString(allocator, text, kCFStringEncodingASCII);
    if (!string)
        return nullptr;
    auto* const url = construct<__CFURL>(allocator, CFURLGetTypeID(), text.size());
    if (!url)
        return nullptr;
    char* const bytes = reinterpret_cast<char*>(url + 1);
    std::copy(text.begin(), text.end(), bytes);
    url->string = std::move(string);
    url->baseURL = retain(isURL(baseURL) ? baseURL : nullptr);
    url->encoding = encoding;
    url->parts = parts;
    url->bytes = bytes;
    url->length = static_cast<int32_t>(text.size());
    return url;
}

} // namespace cf::url

CFTypeID CFURLGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kURLClass);
    return id;
}

CFURLRef CFURLCreateWithString(CFAllocatorRef allocator, CFStringRef string, CFURLRef baseURL) {
    cf::TextBuffer text;
    if (!string || !cf::appendUTF8(string, text))
        return nullptr;
    return cf::url::create(allocator, view(text), baseURL);
}

CFURLRef CFURLCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length,
                              CFStringEncoding encoding, CFURLRef baseURL) {
    cf::TextBuffer text;
    if (!appendLetters(bytes, length, encoding, text))
        return nullptr;
    return cf::url::create(allocator, view(text), baseURL, encoding);
}

CFURLRef CFURLCreateAbsoluteURLWithBytes(CFAllocatorRef allocator, const UInt8* bytes,
                                         CFIndex length, CFStringEncoding encoding,
                                         CFURLRef baseURL, Boolean useCompatibilityMode) {
    cf::TextBuffer text;
    if (!appendLetters(bytes, length, encoding, text))
        return nullptr;
    const auto given = cf::adopt(cf::url::create(allocator, view(text), nullptr, encoding));
    if (!given || !cf::url::isURL(baseURL))
        return cf::Ref(given).release();
    cf::TextBuffer resolved;
    const auto resolution =
        useCompatibilityMode ? cf::url::Resolution::Lenient : cf::url::Resolution::Strict;
    if (!appendResolved(view(text), baseURL, resolution, resolved))
        return nullptr;
    return cf::url::create(allocator, view(resolved), nullptr, encoding);
}

CFDataRef CFURLCreateData(CFAllocatorRef allocator, CFURLRef url, CFStringEncoding encoding,
                          Boolean) {
    cf::TextBuffer bytes;
    if (!cf::url::isURL(url) ||
        !cf::appendBytes(url->string.get(), CFRangeMake(0, url->length), encoding, bytes))
        return nullptr;
    return CFDataCreate(allocator, reinterpret_cast<const UInt8*>(bytes.data()),
                        static_cast<CFIndex>(bytes.size()));
}

CFURLRef CFURLCopyAbsoluteURL(CFURLRef relativeURL) {
    if (!cf::url::isURL(relativeURL))
        return nullptr;
    if (!relativeURL->baseURL)
        return cf::retain(relativeURL).release();
    cf::TextBuffer resolved;
    if (!appendResolved(relativeURL->text(), relativeURL->baseURL.get(),
                        cf::url::Resolution::Strict, resolved))
        return nullptr;
    return cf::url::create(CFGetAllocator(relativeURL), view(resolved), nullptr,
                           relativeURL->encoding);
}

CFStringRef CFURLGetString(CFURLRef url) {
    return cf::url::isURL(url) ? url->string.get() : nullptr;
}

CFURLRef CFURLGetBaseURL(CFURLRef url) {
    return cf::url::isURL(url) ? url->baseURL.get() : nullptr;
}

Boolean CFURLCanBeDecomposed(CFURLRef url) {
    return cf::url::isURL(url) && url->canBeDecomposed();
}

CFIndex CFURLGetBytes(CFURLRef url, UInt8* buffer, CFIndex bufferLength) {
    if (!cf::url::isURL(url))
        return -1;
    if (!buffer)
        return url->length;
    if (bufferLength < url->length)
        return -1;
    std::copy_n(url->bytes, url->length, buffer);
    return url->length;
}
