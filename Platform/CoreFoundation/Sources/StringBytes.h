// StringBytes.h: from strings to bytes and back, for code that works on bytes.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include "GrowableArray.h"

namespace cf {

// Appends the characters of `range` in `encoding`. False when it lacks one of them, or memory runs
// out.
inline bool appendBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                        TextBuffer& result) {
    if (range.length == 0)
        return true;
    CFIndex size = 0;
    if (CFStringGetBytes(string, range, encoding, 0, false, nullptr, 0, &size) != range.length)
        return false;
    char* const room = result.extend(static_cast<size_t>(size));
    if (!room)
        return false;
    return CFStringGetBytes(string, range, encoding, 0, false, reinterpret_cast<UInt8*>(room), size,
                            &size) == range.length;
}

// The whole string in UTF-8.
inline bool appendUTF8(CFStringRef string, TextBuffer& result) {
    return appendBytes(string, CFRangeMake(0, CFStringGetLength(string)), kCFStringEncodingUTF8,
                       result);
}

// The string of these bytes, empty when they are malformed.
inline Ref<CFStringRef> makeString(CFAllocatorRef allocator, std::string_view bytes,
                                   CFStringEncoding encoding = kCFStringEncodingUTF8) {
    static constexpr UInt8 kNothing = 0;
    const auto* const start =
        bytes.empty() ? &kNothing : reinterpret_cast<const UInt8*>(bytes.data());
    return adopt(CFStringCreateWithBytes(allocator, start, static_cast<CFIndex>(bytes.size()),
                                         encoding, false));
}

// UTF-8 ended by a NUL, for the host's functions.
class CString {
public:
    explicit CString(CFStringRef string) {
        isValid_ =
            string && appendUTF8(string, text_) && view(text_).find('\0') == std::string_view::npos;
        text_.append('\0');
        isValid_ = isValid_ && !text_.failed();
    }
    // False for NULL, for strings with a NUL or lone surrogates inside, and without memory.
    explicit operator bool() const { return isValid_; }
    const char* get() const { return isValid_ ? text_.data() : nullptr; }

private:
    TextBuffer text_;
    bool isValid_ = false;
};

} // namespace cf
