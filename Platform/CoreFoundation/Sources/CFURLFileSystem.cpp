// CFURLFileSystem.cpp: URLs of file system paths, and the paths of URLs.

#include <Host/Host.h>

#include "CFURL.h"
#include "CFURLInternal.h"
#include "StringBytes.h"

#include <algorithm>

namespace cf::url {

void appendPathEscaped(std::string_view text, Colons colons, TextBuffer& result) {
    bool isFirstSegment = true;
    for (const char letter : text) {
        isFirstSegment = isFirstSegment && letter != '/';
        const bool endsScheme =
            letter == ':' && isFirstSegment && colons == Colons::EscapeInFirstSegment;
        // A ';' would begin parameters.
        if (letter == '/' || (isPathLetter(letter) && letter != ';' && !endsScheme))
            result.append(letter);
        else
            appendEscape(static_cast<uint8_t>(letter), result);
    }
}

bool appendFilePath(CFURLRef url, TextBuffer& result) {
    if (!url->canBeDecomposed() ||
        !appendUnescaped(url->slice(splitParameters(url).path), result) || result.failed())
        return false;
    if (result.size() > 1 && result.last() == '/')
        result.removeLast();
    return !result.empty() && view(result).find('\0') == std::string_view::npos;
}

bool getHostPath(CFURLRef url, HostPath& path) {
    return isURL(url) && isFile(url) &&
           CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8*>(path.text),
                                            sizeof path.text);
}

Ref<CFURLRef> makeFileURL(CFAllocatorRef allocator, const char* path, bool isDirectory,
                          CFURLRef baseURL) {
    return adopt(CFURLCreateFromFileSystemRepresentationRelativeToBase(
        allocator, reinterpret_cast<const UInt8*>(path), static_cast<CFIndex>(std::strlen(path)),
        isDirectory, baseURL));
}

} // namespace cf::url

namespace {

// A path given in one of the styles, turned into the POSIX one.
struct GivenPath {
    cf::TextBuffer host; // Of a Windows share.
    cf::TextBuffer path;
    bool isAbsolute = false;
};

void exchange(char* begin, char* end, char a, char b) {
    std::for_each(begin, end, [=](char& letter) {
        if (letter == a)
            letter = b;
        else if (letter == b)
            letter = a;
    });
}

// "volume:folder:file"; leading colons make it relative and go up.
void takeHFS(std::string_view given, GivenPath& result) {
    result.isAbsolute = !given.starts_with(':');
    cf::TextBuffer letters;
    letters.append(given);
    if (letters.failed())
        return;
    exchange(letters.data(), letters.data() + letters.size(), ':', '/');
    std::string_view rest = view(letters);
    if (result.isAbsolute)
        result.path.append('/');
    else
        rest.remove_prefix(1);
    // Each further separator without a name before it stands for the folder above.
    for (bool atStart = true; !rest.empty(); atStart = true) {
        const size_t slash = rest.find('/');
        const std::string_view name = rest.substr(0, slash);
        if (name.empty() && atStart)
            result.path.append(std::string_view(".."));
        result.path.append(name);
        if (slash == std::string_view::npos)
            break;
        result.path.append('/');
        rest.remove_prefix(slash + 1);
    }
}

// "C:\folder\file", "\\host\share\file" or a relative path.
void takeWindows(std::string_view given, GivenPath& result) {
    cf::TextBuffer letters;
    letters.append(given);
    std::replace(letters.data(), letters.data() + letters.size(), '\\', '/');
    std::string_view rest = view(letters);
    if (rest.starts_with("//")) {
        const size_t slash = std::min(rest.find('/', 2), rest.size());
        result.host.append(rest.substr(2, slash - 2));
        rest.remove_prefix(slash);
        result.isAbsolute = true;
    }
    const bool hasDrive = rest.size() >= 2 && rest[1] == ':';
    if (hasDrive)
        result.path.append('/');
    result.isAbsolute = result.isAbsolute || hasDrive || rest.starts_with('/');
    result.path.append(rest);
}

bool take(std::string_view given, CFURLPathStyle style, GivenPath& result) {
    switch (style) {
    case kCFURLPOSIXPathStyle:
        result.isAbsolute = given.starts_with('/');
        result.path.append(given);
        break;
    case kCFURLHFSPathStyle:
        takeHFS(given, result);
        break;
    case kCFURLWindowsPathStyle:
        takeWindows(given, result);
        break;
    default:
        return false;
    }
    return !result.path.failed() && !result.host.failed();
}

cf::Ref<CFURLRef> makeWorkingDirectory() {
    cf::url::HostPath path;
    if (!HostPathGetWorkingDirectory(path.text, sizeof path.text))
        return nullptr;
    return cf::url::makeFileURL(nullptr, path.text, true);
}

enum class Base { Given, WorkingDirectory };

CFURLRef createFromPath(CFAllocatorRef allocator, std::string_view given, CFURLPathStyle style,
                        bool isDirectory, Base base, CFURLRef baseURL) {
    GivenPath taken;
    if (given.empty() || given.find('\0') != std::string_view::npos || !take(given, style, taken))
        return nullptr;
    cf::TextBuffer text;
    if (taken.isAbsolute) {
        text.append(std::string_view("file://"));
        cf::url::appendPathEscaped(view(taken.host), cf::url::Colons::EscapeInFirstSegment, text);
    }
    cf::url::appendPathEscaped(
        view(taken.path),
        taken.isAbsolute ? cf::url::Colons::Keep : cf::url::Colons::EscapeInFirstSegment, text);
    if (isDirectory && !view(text).ends_with('/'))
        text.append('/');
    if (text.failed())
        return nullptr;
    if (taken.isAbsolute)
        return cf::url::create(allocator, view(text), nullptr);
    const auto working = base == Base::WorkingDirectory ? makeWorkingDirectory() : nullptr;
    return cf::url::create(allocator, view(text), working ? working.get() : baseURL);
}

CFURLRef createFromString(CFAllocatorRef allocator, CFStringRef path, CFURLPathStyle style,
                          bool isDirectory, Base base, CFURLRef baseURL) {
    cf::TextBuffer bytes;
    if (!path || !cf::appendUTF8(path, bytes))
        return nullptr;
    return createFromPath(allocator, view(bytes), style, isDirectory, base, baseURL);
}

CFURLRef createFromBytes(CFAllocatorRef allocator, const UInt8* buffer, CFIndex length,
                         bool isDirectory, Base base, CFURLRef baseURL) {
    if (!buffer || length <= 0)
        return nullptr;
    const std::string_view bytes(reinterpret_cast<const char*>(buffer),
                                 static_cast<size_t>(length));
    return createFromPath(allocator, bytes, kCFURLPOSIXPathStyle, isDirectory, base, baseURL);
}

// The POSIX path written in HFS style.
void writeHFS(cf::TextBuffer& path) {
    cf::TextBuffer result;
    std::string_view rest = view(path);
    if (rest.starts_with('/'))
        rest.remove_prefix(1);
    else
        result.append(':');
    const size_t start = result.size();
    result.append(rest);
    if (!result.failed())
        exchange(result.data() + start, result.data() + result.size(), '/', ':');
    path = std::move(result);
}

// The POSIX path, with the host of a share, written in Windows style.
void writeWindows(CFURLRef url, cf::TextBuffer& path) {
    const std::string_view host = url->slice(url->parts.host);
    cf::TextBuffer result;
    std::string_view rest = view(path);
    if (!host.empty() && host != "localhost") {
        result.append(std::string_view("//"));
        result.append(host);
    } else if (rest.size() >= 3 && rest[0] == '/' && rest[2] == ':') {
        rest.remove_prefix(1);
    }
    result.append(rest);
    std::replace(result.data(), result.data() + result.size(), '/', '\\');
    path = std::move(result);
}

} // namespace

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef filePath,
                                       CFURLPathStyle pathStyle, Boolean isDirectory) {
    return createFromString(allocator, filePath, pathStyle, isDirectory, Base::WorkingDirectory,
                            nullptr);
}

CFURLRef CFURLCreateWithFileSystemPathRelativeToBase(CFAllocatorRef allocator, CFStringRef filePath,
                                                     CFURLPathStyle pathStyle, Boolean isDirectory,
                                                     CFURLRef baseURL) {
    return createFromString(allocator, filePath, pathStyle, isDirectory, Base::Given, baseURL);
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* buffer,
                                                 CFIndex length, Boolean isDirectory) {
    return createFromBytes(allocator, buffer, length, isDirectory, Base::WorkingDirectory, nullptr);
}

CFURLRef CFURLCreateFromFileSystemRepresentationRelativeToBase(CFAllocatorRef allocator,
                                                               const UInt8* buffer, CFIndex length,
                                                               Boolean isDirectory,
                                                               CFURLRef baseURL) {
    return createFromBytes(allocator, buffer, length, isDirectory, Base::Given, baseURL);
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer,
                                         CFIndex maxBufLen) {
    if (!cf::url::isURL(url) || !buffer || maxBufLen <= 0)
        return false;
    const auto whole = resolveAgainstBase ? cf::adopt(CFURLCopyAbsoluteURL(url)) : cf::retain(url);
    cf::TextBuffer path;
    if (!whole || !cf::url::appendFilePath(whole.get(), path))
        return false;
    if (path.size() >= static_cast<size_t>(maxBufLen))
        return false;
    std::copy(path.begin(), path.end(), buffer);
    buffer[path.size()] = 0;
    return true;
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle pathStyle) {
    cf::TextBuffer path;
    if (!cf::url::isURL(url) || !cf::url::appendFilePath(url, path))
        return nullptr;
    if (pathStyle == kCFURLHFSPathStyle)
        writeHFS(path);
    else if (pathStyle == kCFURLWindowsPathStyle)
        writeWindows(url, path);
    else if (pathStyle != kCFURLPOSIXPathStyle)
        return nullptr;
    if (path.failed())
        return nullptr;
    return cf::makeString(CFGetAllocator(url), view(path), url->encoding).release();
}
