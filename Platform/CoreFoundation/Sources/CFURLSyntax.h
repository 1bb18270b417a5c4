// CFURLSyntax.h: the generic syntax of RFC 3986 on plain ASCII text.
#pragma once

#include "GrowableArray.h"

#include <cstdint>
#include <string_view>

namespace cf::url {

// A part of a URL's text. An empty part may be present ("a?") or not ("a").
struct Span {
    int32_t start = 0;
    int32_t length = -1;

    bool isPresent() const { return length >= 0; }
    int32_t end() const { return isPresent() ? start + length : start; }
};

// Where the components of a reference lie. A missing one has the place where it would begin. The
// path is always present; the parts of the authority are when it is.
struct Parts {
    Span scheme;
    Span authority;
    Span user;
    Span password;
    Span host; // With the brackets of a numerical one.
    Span port;
    Span path;
    Span query;
    Span fragment;

    // Whether there is a scheme and no slash behind it: the path is then not hierarchical.
    bool isOpaque(std::string_view text) const {
        return scheme.isPresent() && !authority.isPresent() &&
               (path.length == 0 || text[static_cast<size_t>(path.start)] != '/');
    }
};

inline std::string_view slice(std::string_view text, Span span) {
    return span.isPresent()
               ? text.substr(static_cast<size_t>(span.start), static_cast<size_t>(span.length))
               : std::string_view();
}

// Takes any text of less than 2^31 letters apart.
Parts split(std::string_view text);

// Whether `text` follows the grammar. Ports may be any text of legal letters.
bool isLegal(std::string_view text, const Parts& parts);

enum class Resolution {
    Strict,
    Lenient, // A reference that repeats the base's scheme is relative to it.
};

// Appends `reference` resolved against `base`, by section 5.2.
void resolve(std::string_view base, std::string_view reference, Resolution resolution,
             TextBuffer& result);

// The value of a hexadecimal digit, or -1.
int hexadecimalDigit(char letter);

// Whether the letter stands for itself anywhere in a URL: the unreserved ones.
bool isUnreserved(char letter);
// Whether the letter may stand in a path segment as it is.
bool isPathLetter(char letter);

// Appends "%XX".
void appendEscape(uint8_t byte, TextBuffer& result);
// Appends the bytes that `text` stands for. False for malformed escapes.
bool appendUnescaped(std::string_view text, TextBuffer& result);

} // namespace cf::url
