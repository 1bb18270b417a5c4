// CFURLPath.cpp: looking at and editing the last segment of a URL's path.

#include "CFURL.h"
#include "CFURLInternal.h"
#include "StringBytes.h"

namespace {

using cf::url::Span;

constexpr auto npos = std::string_view::npos;

// The path and its last segment, which a slash may follow.
struct LastSegment {
    std::string_view path;
    size_t start = 0;
    size_t end = 0;

    std::string_view name() const { return path.substr(start, end - start); }
    // The place of the '.' that begins an extension; npos without one.
    size_t findExtension() const {
        const size_t dot = name().rfind('.');
        const bool begins = dot != npos && dot > 0 && dot + 1 < name().size() && name() != "..";
        return begins ? start + dot : npos;
    }
};

LastSegment findLastSegment(CFURLRef url) {
    LastSegment result;
    result.path = url->slice(cf::url::splitParameters(url).path);
    result.end = result.path.size();
    if (result.path.ends_with('/'))
        --result.end;
    const size_t slash = result.path.substr(0, result.end).rfind('/');
    result.start = slash == npos ? 0 : slash + 1;
    return result;
}

// The URL with another path, its parameters, query and fragment left in place.
CFURLRef createWithPath(CFAllocatorRef allocator, CFURLRef url, std::string_view path) {
    const Span old = cf::url::splitParameters(url).path;
    cf::TextBuffer text;
    text.append(url->text().substr(0, static_cast<size_t>(old.start)));
    text.append(path);
    text.append(url->text().substr(static_cast<size_t>(old.end())));
    if (text.failed())
        return nullptr;
    return cf::url::create(allocator, view(text), url->baseURL.get(), url->encoding);
}

CFStringRef copyUnescaped(CFURLRef url, std::string_view escaped) {
    const auto string = cf::makeString(CFGetAllocator(url), escaped);
    return CFURLCreateStringByReplacingPercentEscapesUsingEncoding(
        CFGetAllocator(url), string.get(), CFSTR(""), url->encoding);
}

// Whether text put at the start of the path could be read as a scheme.
bool beginsRelativePath(CFURLRef url, std::string_view path) {
    return path.empty() && !url->parts.scheme.isPresent() && !url->parts.authority.isPresent();
}

} // namespace

Boolean CFURLHasDirectoryPath(CFURLRef url) {
    if (!CFURLCanBeDecomposed(url))
        return false;
    const std::string_view path = url->slice(cf::url::splitParameters(url).path);
    if (path.empty() && url->text().empty())
        return CFURLHasDirectoryPath(url->baseURL.get());
    const size_t slash = path.rfind('/');
    const std::string_view last = path.substr(slash == npos ? 0 : slash + 1);
    return !path.empty() && (last.empty() || last == "." || last == "..");
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
    if (!CFURLCanBeDecomposed(url))
        return nullptr;
    const LastSegment last = findLastSegment(url);
    return last.path == "/" ? cf::makeString(CFGetAllocator(url), "/").release()
                            : copyUnescaped(url, last.name());
}

CFStringRef CFURLCopyPathExtension(CFURLRef url) {
    if (!CFURLCanBeDecomposed(url))
        return nullptr;
    const LastSegment last = findLastSegment(url);
    const size_t dot = last.findExtension();
    return dot == npos ? nullptr
                       : copyUnescaped(url, last.path.substr(dot + 1, last.end - dot - 1));
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                               CFStringRef pathComponent, Boolean isDirectory) {
    cf::TextBuffer component;
    if (!CFURLCanBeDecomposed(url) || !pathComponent ||
        !cf::appendBytes(pathComponent, CFRangeMake(0, CFStringGetLength(pathComponent)),
                         url->encoding, component))
        return nullptr;
    const std::string_view old = url->slice(cf::url::splitParameters(url).path);
    const bool needsSlash = old.empty() ? url->parts.authority.isPresent() : !old.ends_with('/');
    std::string_view added = view(component);
    if (added.starts_with('/') && (needsSlash || old.ends_with('/')))
        added.remove_prefix(1);

    cf::TextBuffer path;
    path.append(old);
    if (needsSlash)
        path.append('/');
    cf::url::appendPathEscaped(added,
                               beginsRelativePath(url, view(path))
                                   ? cf::url::Colons::EscapeInFirstSegment
                                   : cf::url::Colons::Keep,
                               path);
    if (isDirectory && !view(path).ends_with('/'))
        path.append('/');
    return path.failed() ? nullptr : createWithPath(allocator, url, view(path));
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator, CFURLRef url) {
    if (!CFURLCanBeDecomposed(url))
        return nullptr;
    const LastSegment last = findLastSegment(url);
    if (last.path == "/" || (last.path.empty() && url->parts.authority.isPresent()))
        return cf::retain(url).release();

    cf::TextBuffer path;
    path.append(last.path.substr(0, last.start));
    if (last.name() == "..") {
        path.append(std::string_view("../../"));
    } else if (last.name() == "." || last.path.empty()) {
        path.append(std::string_view("../"));
    } else if (path.empty()) {
        path.append(std::string_view("./"));
    }
    return path.failed() ? nullptr : createWithPath(allocator, url, view(path));
}

CFURLRef CFURLCreateCopyAppendingPathExtension(CFAllocatorRef allocator, CFURLRef url,
                                               CFStringRef extension) {
    cf::TextBuffer bytes;
    if (!CFURLCanBeDecomposed(url) || !extension ||
        !cf::appendBytes(extension, CFRangeMake(0, CFStringGetLength(extension)), url->encoding,
                         bytes))
        return nullptr;
    const LastSegment last = findLastSegment(url);
    if (last.name().empty() || bytes.empty() || view(bytes).find('/') != npos)
        return nullptr;

    cf::TextBuffer path;
    path.append(last.path.substr(0, last.end));
    path.append('.');
    cf::url::appendPathEscaped(view(bytes),
                               beginsRelativePath(url, last.path.substr(0, last.start))
                                   ? cf::url::Colons::EscapeInFirstSegment
                                   : cf::url::Colons::Keep,
                               path);
    path.append(last.path.substr(last.end));
    return path.failed() ? nullptr : createWithPath(allocator, url, view(path));
}

CFURLRef CFURLCreateCopyDeletingPathExtension(CFAllocatorRef allocator, CFURLRef url) {
    if (!CFURLCanBeDecomposed(url))
        return nullptr;
    const LastSegment last = findLastSegment(url);
    const size_t dot = last.findExtension();
    if (dot == npos)
        return cf::retain(url).release();
    cf::TextBuffer path;
    path.append(last.path.substr(0, dot));
    path.append(last.path.substr(last.end));
    return path.failed() ? nullptr : createWithPath(allocator, url, view(path));
}
