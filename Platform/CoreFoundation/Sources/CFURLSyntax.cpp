// CFURLSyntax.cpp: splitting, checking and resolving references.

#include "CFURLSyntax.h"

namespace cf::url {

namespace {

constexpr std::string_view kMarks = "-._~";
constexpr std::string_view kSubDelimiters = "!$&'()*+,;=";

bool isAlphabetic(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
}

bool isDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

char lowercase(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (lowercase(a[i]) != lowercase(b[i]))
            return false;
    return true;
}

bool isScheme(std::string_view text) {
    if (text.empty() || !isAlphabetic(text.front()))
        return false;
    for (const char letter : text)
        if (!isAlphabetic(letter) && !isDigit(letter) && letter != '+' && letter != '-' &&
            letter != '.')
            return false;
    return true;
}

Span spanOf(size_t start, size_t end) {
    return {static_cast<int32_t>(start), static_cast<int32_t>(end - start)};
}

Span missingAt(size_t place) {
    return {static_cast<int32_t>(place), -1};
}

size_t findFirst(std::string_view text, std::string_view letters, size_t from, size_t end) {
    const size_t found = text.substr(0, end).find_first_of(letters, from);
    return found == std::string_view::npos ? end : found;
}

// Where a port's colon stands: behind the bracket of a numerical host, or the last one; the colons
// of a password lie before the host.
size_t findPort(std::string_view text, size_t host, size_t end) {
    const std::string_view rest = text.substr(host, end - host);
    const size_t bracket = rest.rfind(']');
    const size_t colon = rest.rfind(':');
    if (colon == std::string_view::npos || (bracket != std::string_view::npos && colon < bracket))
        return end;
    return host + colon;
}

void splitAuthority(std::string_view text, size_t start, size_t end, Parts& parts) {
    parts.authority = spanOf(start, end);
    const size_t at = text.substr(0, end).rfind('@');
    const bool hasUser = at != std::string_view::npos && at >= start;
    const size_t host = hasUser ? at + 1 : start;
    parts.user = missingAt(start);
    parts.password = missingAt(start);
    if (hasUser) {
        const size_t colon = findFirst(text, ":", start, at);
        parts.user = spanOf(start, colon);
        parts.password = colon < at ? spanOf(colon + 1, at) : missingAt(at);
    }
    const size_t port = findPort(text, host, end);
    parts.host = spanOf(host, port);
    parts.port = port < end ? spanOf(port + 1, end) : missingAt(end);
}

bool hasOnly(std::string_view text, std::string_view marks) {
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            if (i + 2 >= text.size() || hexadecimalDigit(text[i + 1]) < 0 ||
                hexadecimalDigit(text[i + 2]) < 0)
                return false;
            i += 2;
        } else if (!isUnreserved(text[i]) && marks.find(text[i]) == std::string_view::npos) {
            return false;
        }
    }
    return true;
}

bool isLegalHost(std::string_view host) {
    const bool isNumerical = host.size() >= 2 && host.front() == '[' && host.back() == ']';
    return isNumerical ? hasOnly(host.substr(1, host.size() - 2), "!$&'()*+,;=:")
                       : hasOnly(host, kSubDelimiters);
}

// Removes the last segment and the slash before it.
void dropSegment(TextBuffer& path, size_t start) {
    while (path.size() > start) {
        const char letter = path.last();
        path.removeLast();
        if (letter == '/')
            break;
    }
}

// Section 5.2.4, one segment at a time. `path` is not yet in `result`.
void appendWithoutDots(std::string_view path, TextBuffer& result) {
    const size_t start = result.size();
    while (!path.empty()) {
        if (path.starts_with("../")) {
            path.remove_prefix(3);
        } else if (path.starts_with("./")) {
            path.remove_prefix(2);
        } else if (path.starts_with("/./")) {
            path.remove_prefix(2);
        } else if (path == "/.") {
            path = "/";
        } else if (path.starts_with("/../")) {
            path.remove_prefix(3);
            dropSegment(result, start);
        } else if (path == "/..") {
            path = "/";
            dropSegment(result, start);
        } else if (path == "." || path == "..") {
            break;
        } else {
            const size_t next = findFirst(path, "/", 1, path.size());
            result.append(path.substr(0, next));
            path.remove_prefix(next);
        }
    }
}

void appendMerged(std::string_view base, const Parts& parts, std::string_view path,
                  TextBuffer& merged) {
    const std::string_view folder = slice(base, parts.path);
    if (parts.authority.isPresent() && folder.empty())
        merged.append('/');
    const size_t slash = folder.rfind('/');
    if (slash != std::string_view::npos)
        merged.append(folder.substr(0, slash + 1));
    merged.append(path);
}

// What the new reference is put together from.
struct Target {
    std::string_view scheme;
    std::string_view authority;
    bool hasAuthority = false;
    std::string_view path;
    std::string_view query;
    bool hasQuery = false;
};

// A path that would read as an authority or a scheme where it now stands is given a dot segment.
std::string_view guardFor(const Target& target) {
    if (!target.hasAuthority && target.path.starts_with("//"))
        return "/.";
    const std::string_view segment = target.path.substr(0, target.path.find('/'));
    const bool readsAsScheme = target.scheme.empty() && !target.hasAuthority &&
                               segment.find(':') != std::string_view::npos;
    return readsAsScheme ? "./" : "";
}

// Section 5.3.
void appendComposed(const Target& target, std::string_view reference, Span fragment,
                    TextBuffer& result) {
    if (!target.scheme.empty()) {
        result.append(target.scheme);
        result.append(':');
    }
    if (target.hasAuthority) {
        result.append(std::string_view("//"));
        result.append(target.authority);
    }
    result.append(guardFor(target));
    result.append(target.path);
    if (target.hasQuery) {
        result.append('?');
        result.append(target.query);
    }
    if (fragment.isPresent()) {
        result.append('#');
        result.append(slice(reference, fragment));
    }
}

void takeAuthority(std::string_view text, const Parts& parts, Target& target) {
    target.hasAuthority = parts.authority.isPresent();
    target.authority = slice(text, parts.authority);
}

void takeQuery(std::string_view text, const Parts& parts, Target& target) {
    target.hasQuery = parts.query.isPresent();
    target.query = slice(text, parts.query);
}

} // namespace

int hexadecimalDigit(char letter) {
    if (isDigit(letter))
        return letter - '0';
    const char lower = lowercase(letter);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

bool isUnreserved(char letter) {
    return isAlphabetic(letter) || isDigit(letter) || kMarks.find(letter) != std::string_view::npos;
}

bool isPathLetter(char letter) {
    return isUnreserved(letter) || letter == ':' || letter == '@' ||
           kSubDelimiters.find(letter) != std::string_view::npos;
}

void appendEscape(uint8_t byte, TextBuffer& result) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const char escape[] = {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    result.append(escape, sizeof escape);
}

bool appendUnescaped(std::string_view text, TextBuffer& result) {
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result.append(text[i]);
            continue;
        }
        const int high = i + 2 < text.size() ? hexadecimalDigit(text[i + 1]) : -1;
        const int low = high >= 0 ? hexadecimalDigit(text[i + 2]) : -1;
        if (low < 0)
            return false;
        result.append(static_cast<char>(high * 16 + low));
        i += 2;
    }
    return true;
}

Parts split(std::string_view text) {
    Parts parts;
    size_t at = 0;
    const size_t mark = findFirst(text, ":/?#", 0, text.size());
    if (mark < text.size() && text[mark] == ':') {
        parts.scheme = spanOf(0, mark);
        at = mark + 1;
    }
    parts.authority = parts.user = parts.password = parts.host = parts.port = missingAt(at);
    if (text.substr(at).starts_with("//")) {
        const size_t end = findFirst(text, "/?#", at + 2, text.size());
        splitAuthority(text, at + 2, end, parts);
        at = end;
    }
    const size_t pathEnd = findFirst(text, "?#", at, text.size());
    parts.path = spanOf(at, pathEnd);
    const size_t queryEnd = findFirst(text, "#", pathEnd, text.size());
    parts.query = pathEnd < queryEnd ? spanOf(pathEnd + 1, queryEnd) : missingAt(pathEnd);
    parts.fragment =
        queryEnd < text.size() ? spanOf(queryEnd + 1, text.size()) : missingAt(queryEnd);
    return parts;
}

bool isLegal(std::string_view text, const Parts& parts) {
    if (parts.scheme.isPresent() && !isScheme(slice(text, parts.scheme)))
        return false;
    constexpr std::string_view kUserLetters = "!$&'()*+,;=:";
    constexpr std::string_view kPathLetters = "!$&'()*+,;=:@/";
    constexpr std::string_view kQueryLetters = "!$&'()*+,;=:@/?";
    return hasOnly(slice(text, parts.user), kUserLetters) &&
           hasOnly(slice(text, parts.password), kUserLetters) &&
           isLegalHost(slice(text, parts.host)) && hasOnly(slice(text, parts.port), kUserLetters) &&
           hasOnly(slice(text, parts.path), kPathLetters) &&
           hasOnly(slice(text, parts.query), kQueryLetters) &&
           hasOnly(slice(text, parts.fragment), kQueryLetters);
}

void resolve(std::string_view base, std::string_view reference, Resolution resolution,
             TextBuffer& result) {
    const Parts own = split(reference);
    const Parts from = split(base);
    const std::string_view path = slice(reference, own.path);
    const bool repeatsScheme =
        resolution == Resolution::Lenient &&
        equalIgnoringCase(slice(reference, own.scheme), slice(base, from.scheme));

    Target target;
    TextBuffer merged;
    TextBuffer cleaned;
    target.scheme = slice(base, from.scheme);
    takeAuthority(base, from, target);
    takeQuery(reference, own, target);
    if (own.scheme.isPresent() && !repeatsScheme) {
        target.scheme = slice(reference, own.scheme);
        takeAuthority(reference, own, target);
        (own.isOpaque(reference) ? cleaned : merged).append(path);
    } else if (own.authority.isPresent()) {
        takeAuthority(reference, own, target);
        merged.append(path);
    } else if (path.empty()) {
        cleaned.append(slice(base, from.path));
        if (!own.query.isPresent())
            takeQuery(base, from, target);
    } else if (path.front() == '/') {
        merged.append(path);
    } else {
        appendMerged(base, from, path, merged);
    }
    appendWithoutDots(view(merged), cleaned);
    target.path = view(cleaned);
    appendComposed(target, reference, own.fragment, result);
    if (merged.failed() || cleaned.failed())
        result.fail();
}

} // namespace cf::url
