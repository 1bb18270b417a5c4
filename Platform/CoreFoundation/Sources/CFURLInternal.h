// CFURLInternal.h: what a URL object holds, for the files that take it apart and put it together.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreFoundation/CFURL.h>

#include "CFURLSyntax.h"

#include <climits>

struct __CFURL {
    CFRuntimeBase base;
    cf::Ref<CFStringRef> string;
    cf::Ref<CFURLRef> baseURL;
    CFStringEncoding encoding = kCFStringEncodingUTF8; // Behind the escapes.
    cf::url::Parts parts;
    const char* bytes = nullptr; // The string's ASCII letters, right behind this record.
    int32_t length = 0;

    std::string_view text() const { return {bytes, static_cast<size_t>(length)}; }
    std::string_view slice(cf::url::Span span) const { return cf::url::slice(text(), span); }
    bool canBeDecomposed() const { return !parts.isOpaque(text()); }
};

namespace cf::url {

bool isURL(CFURLRef url);

// A URL of `text`, relative to `baseURL` where that is given; NULL when it is not legal.
CFURLRef create(CFAllocatorRef allocator, std::string_view text, CFURLRef baseURL,
                CFStringEncoding encoding = kCFStringEncodingUTF8);

// The URL whose scheme and net location count for `url`: itself or a base.
CFURLRef findOwnerOfLocation(CFURLRef url);

// Whether the URL, with its bases, is of the scheme "file".
bool isFile(CFURLRef url);

// The path and what follows its ';'.
struct PathParts {
    Span path;
    Span parameters;
};
PathParts splitParameters(CFURLRef url);

// The URL's own path as bytes of the file system: unescaped, without a trailing slash. False when
// it has none, or has a NUL.
bool appendFilePath(CFURLRef url, TextBuffer& result);

// A path for the host's functions.
struct HostPath {
    char text[PATH_MAX];
};
// The absolute path of a "file" URL. False for other URLs and paths that are too long.
bool getHostPath(CFURLRef url, HostPath& path);

// The URL of a path of the host's.
Ref<CFURLRef> makeFileURL(CFAllocatorRef allocator, const char* path, bool isDirectory,
                          CFURLRef baseURL = nullptr);

// Appends `text` escaped for a path. A colon that would end a scheme is escaped as well when the
// path is to be relative.
enum class Colons { Keep, EscapeInFirstSegment };
void appendPathEscaped(std::string_view text, Colons colons, TextBuffer& result);

} // namespace cf::url
