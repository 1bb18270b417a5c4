// PostScriptText.h: a growing text, as PostScript programs are written.
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace fm {

// A number in as many significant digits, without trailing zeroes: as printf's "%.<digits>g".
struct Digits {
    double value;
    int digits = 6;
};

// Appending never fails on its own; `create` does, when memory ran out meanwhile. Numbers have a
// decimal point in every locale.
class PostScriptText {
public:
    PostScriptText() : data_(cf::adopt(CFDataCreateMutable(nullptr, 0))) {}

    PostScriptText& operator<<(std::string_view characters);
    PostScriptText& operator<<(CFStringRef string); // In UTF-8; "(null)" without one.
    PostScriptText& operator<<(std::int64_t integer);
    PostScriptText& operator<<(Digits number);
    PostScriptText& operator<<(const PostScriptText& text);

    bool isComplete() const { return isComplete_ && data_; }
    std::int64_t length() const { return data_ ? CFDataGetLength(data_.get()) : 0; }
    std::string_view view() const;
    // The text as data that the caller owns, or NULL.
    [[nodiscard]] CFDataRef create() &&;

private:
    cf::Ref<CFMutableDataRef> data_;
    bool isComplete_ = true;
};

} // namespace fm
