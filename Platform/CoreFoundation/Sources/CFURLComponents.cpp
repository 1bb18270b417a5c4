// CFURLComponents.cpp: a URL's components as strings, numbers and byte ranges.

#include <CoreFoundation/CFRef.h>

#include "CFURL.h"
#include "CFURLInternal.h"
#include "StringBytes.h"

#include <charconv>

namespace cf::url {

// A relative reference without a net location takes that of its base, like its scheme.
CFURLRef findOwnerOfLocation(CFURLRef url) {
    while (url->baseURL && !url->parts.scheme.isPresent() && !url->parts.authority.isPresent())
        url = url->baseURL.get();
    return url;
}

bool isFile(CFURLRef url) {
    while (url->baseURL && !url->parts.scheme.isPresent())
        url = url->baseURL.get();
    const std::string_view scheme = url->slice(url->parts.scheme);
    return scheme.size() == 4 && (scheme[0] | 32) == 'f' && (scheme[1] | 32) == 'i' &&
           (scheme[2] | 32) == 'l' && (scheme[3] | 32) == 'e';
}

PathParts splitParameters(CFURLRef url) {
    const Span path = url->parts.path;
    const std::string_view text = url->slice(path);
    const size_t slash = text.rfind('/');
    const size_t mark = text.find(';', slash == std::string_view::npos ? 0 : slash);
    if (mark == std::string_view::npos || isFile(url))
        return {path, {path.end(), -1}};
    const auto length = static_cast<int32_t>(mark);
    return {{path.start, length}, {path.start + length + 1, path.length - length - 1}};
}

} // namespace cf::url

namespace {

using cf::url::isURL;
using cf::url::Span;

CFStringRef copySlice(CFURLRef url, Span span) {
    if (!span.isPresent())
        return nullptr;
    return CFStringCreateWithSubstring(CFGetAllocator(url), url->string.get(),
                                       CFRangeMake(span.start, span.length));
}

CFStringRef copyUnescaped(CFURLRef url, Span span) {
    const auto escaped = cf::adopt(copySlice(url, span));
    if (!escaped)
        return nullptr;
    return CFURLCreateStringByReplacingPercentEscapesUsingEncoding(
        CFGetAllocator(url), escaped.get(), CFSTR(""), url->encoding);
}

CFStringRef copyPartlyUnescaped(CFURLRef url, Span span, CFStringRef charactersToLeaveEscaped) {
    const auto escaped = cf::adopt(copySlice(url, span));
    if (!escaped)
        return nullptr;
    return CFURLCreateStringByReplacingPercentEscapesUsingEncoding(
        CFGetAllocator(url), escaped.get(), charactersToLeaveEscaped, url->encoding);
}

// A component that only URLs with a net location have, from the URL that supplies it.
struct Located {
    CFURLRef url = nullptr;
    Span span;
};

Located locate(CFURLRef url, Span cf::url::Parts::*part) {
    const CFURLRef owner = cf::url::findOwnerOfLocation(url);
    return {owner, owner->parts.*part};
}

// What follows the path (or, without one, the scheme) to the end of the string.
Span resourceSpecifier(CFURLRef url) {
    const int32_t start =
        url->canBeDecomposed() ? cf::url::splitParameters(url).path.end() : url->parts.path.start;
    return start < url->length ? Span{start, url->length - start} : Span{start, -1};
}

std::string_view withoutBrackets(std::string_view host) {
    return host.starts_with('[') && host.ends_with(']') ? host.substr(1, host.size() - 2) : host;
}

} // namespace

CFStringRef CFURLCopyScheme(CFURLRef url) {
    if (!isURL(url))
        return nullptr;
    while (url->baseURL && !url->parts.scheme.isPresent())
        url = url->baseURL.get();
    return copySlice(url, url->parts.scheme);
}

CFStringRef CFURLCopyNetLocation(CFURLRef url) {
    if (!isURL(url))
        return nullptr;
    const auto [owner, span] = locate(url, &cf::url::Parts::authority);
    return span.length > 0 ? copySlice(owner, span) : nullptr;
}

CFStringRef CFURLCopyPath(CFURLRef url) {
    if (!CFURLCanBeDecomposed(url))
        return nullptr;
    return copySlice(url, cf::url::splitParameters(url).path);
}

CFStringRef CFURLCopyStrictPath(CFURLRef url, Boolean* isAbsolute) {
    if (isAbsolute)
        *isAbsolute = false;
    if (!CFURLCanBeDecomposed(url))
        return nullptr;
    Span path = cf::url::splitParameters(url).path;
    const bool hasSlash = url->slice(path).starts_with('/');
    if (isAbsolute)
        *isAbsolute = hasSlash;
    return copySlice(url, hasSlash ? Span{path.start + 1, path.length - 1} : path);
}

CFStringRef CFURLCopyResourceSpecifier(CFURLRef url) {
    return isURL(url) ? copySlice(url, resourceSpecifier(url)) : nullptr;
}

CFStringRef CFURLCopyHostName(CFURLRef url) {
    if (!isURL(url))
        return nullptr;
    const auto [owner, span] = locate(url, &cf::url::Parts::host);
    const std::string_view bare = withoutBrackets(owner->slice(span));
    if (bare.empty())
        return nullptr;
    const auto offset = static_cast<int32_t>(bare.data() - owner->bytes);
    return copyUnescaped(owner, {offset, static_cast<int32_t>(bare.size())});
}

SInt32 CFURLGetPortNumber(CFURLRef url) {
    if (!isURL(url))
        return -1;
    const auto [owner, span] = locate(url, &cf::url::Parts::port);
    const std::string_view digits = owner->slice(span);
    SInt32 port = 0;
    const auto [end, problem] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    const bool isNumber =
        problem == std::errc() && end == digits.data() + digits.size() && port >= 0;
    return isNumber ? port : -1;
}

CFStringRef CFURLCopyUserName(CFURLRef url) {
    if (!isURL(url))
        return nullptr;
    const auto [owner, span] = locate(url, &cf::url::Parts::user);
    return copyUnescaped(owner, span);
}

CFStringRef CFURLCopyPassword(CFURLRef url) {
    if (!isURL(url))
        return nullptr;
    const auto [owner, span] = locate(url, &cf::url::Parts::password);
    return copyUnescaped(owner, span);
}

CFStringRef CFURLCopyParameterString(CFURLRef url, CFStringRef charactersToLeaveEscaped) {
    if (!CFURLCanBeDecomposed(url))
        return nullptr;
    return copyPartlyUnescaped(url, cf::url::splitParameters(url).parameters,
                               charactersToLeaveEscaped);
}

CFStringRef CFURLCopyQueryString(CFURLRef url, CFStringRef charactersToLeaveEscaped) {
    if (!CFURLCanBeDecomposed(url))
        return nullptr;
    return copyPartlyUnescaped(url, url->parts.query, charactersToLeaveEscaped);
}

CFStringRef CFURLCopyFragment(CFURLRef url, CFStringRef charactersToLeaveEscaped) {
    if (!isURL(url))
        return nullptr;
    return copyPartlyUnescaped(url, url->parts.fragment, charactersToLeaveEscaped);
}

// ---- Byte ranges

namespace {

Span joined(Span first, Span last) {
    if (!first.isPresent())
        return first;
    return {first.start, (last.isPresent() ? last.end() : first.end()) - first.start};
}

Span withoutMark(Span span) {
    return span.length > 0 ? Span{span.start + 1, span.length - 1} : span;
}

Span findComponent(CFURLRef url, CFURLComponentType component) {
    const cf::url::Parts& parts = url->parts;
    const bool hasPath = url->canBeDecomposed();
    const auto [path, parameters] = cf::url::splitParameters(url);
    const Span specifier = resourceSpecifier(url);
    switch (component) {
    case kCFURLComponentScheme:
        return parts.scheme;
    case kCFURLComponentNetLocation:
        return parts.authority;
    case kCFURLComponentPath:
        return hasPath && path.length > 0 ? path : Span{parts.path.start, -1};
    case kCFURLComponentResourceSpecifier:
        return hasPath ? withoutMark(specifier) : specifier;
    case kCFURLComponentUser:
        return parts.user;
    case kCFURLComponentPassword:
        return parts.password;
    case kCFURLComponentUserInfo:
        return joined(parts.user, parts.password);
    case kCFURLComponentHost:
        return parts.host;
    case kCFURLComponentPort:
        return parts.port;
    case kCFURLComponentParameterString:
        return hasPath ? parameters : Span{parts.path.end(), -1};
    case kCFURLComponentQuery:
        return hasPath ? parts.query : Span{parts.path.end(), -1};
    case kCFURLComponentFragment:
        return parts.fragment;
    }
    return {};
}

// The marks between components, none of which stands inside one next to its neighbour.
bool isMark(char letter) {
    return std::string_view(":/?#;@").find(letter) != std::string_view::npos;
}

// Marks in front of a component that belong between it and the previous one.
int32_t countMarksBefore(CFURLRef url, CFURLComponentType component, Span span) {
    switch (component) {
    case kCFURLComponentScheme:
    case kCFURLComponentPath:
        return 0;
    case kCFURLComponentNetLocation:
    case kCFURLComponentUser:
    case kCFURLComponentUserInfo:
        return url->parts.scheme.isPresent() ? 3 : 2;
    case kCFURLComponentHost:
        if (url->parts.user.isPresent())
            return 1;
        return url->parts.scheme.isPresent() ? 3 : 2;
    case kCFURLComponentResourceSpecifier:
        return url->canBeDecomposed() ? 1 : (span.start > 0 ? 1 : 0);
    default:
        return 1;
    }
}

// Marks behind a component: those up to the next one, where there is a next one. A path's own slash
// is no mark.
int32_t countMarksAfter(CFURLRef url, CFURLComponentType component, Span span) {
    const std::string_view rest = url->text().substr(static_cast<size_t>(span.end()));
    switch (component) {
    case kCFURLComponentScheme:
        return url->parts.authority.isPresent() ? 3 : 1;
    case kCFURLComponentResourceSpecifier:
        return 0;
    default:
        return !rest.empty() && rest.front() != '/' && isMark(rest.front()) ? 1 : 0;
    }
}

} // namespace

CFRange CFURLGetByteRangeForComponent(CFURLRef url, CFURLComponentType component,
                                      CFRange* rangeIncludingSeparators) {
    if (rangeIncludingSeparators)
        *rangeIncludingSeparators = CFRangeMake(kCFNotFound, 0);
    if (!isURL(url))
        return CFRangeMake(kCFNotFound, 0);
    const Span span = findComponent(url, component);
    if (!span.isPresent()) {
        if (rangeIncludingSeparators)
            *rangeIncludingSeparators = CFRangeMake(span.start, 0);
        return CFRangeMake(kCFNotFound, 0);
    }
    if (rangeIncludingSeparators) {
        const int32_t before = countMarksBefore(url, component, span);
        const int32_t after = countMarksAfter(url, component, span);
        *rangeIncludingSeparators = CFRangeMake(span.start - before, before + span.length + after);
    }
    return CFRangeMake(span.start, span.length);
}
