// PostScriptText.cpp: appending to a PostScript program.

#include "PostScript/PostScriptText.h"

#include <charconv>
#include <memory>
#include <new>

namespace fm {

PostScriptText& PostScriptText::operator<<(std::string_view characters) {
    if (!isComplete())
        return *this;
    const std::int64_t length = this->length() + static_cast<std::int64_t>(characters.size());
    CFDataAppendBytes(data_.get(), reinterpret_cast<const UInt8*>(characters.data()),
                      static_cast<CFIndex>(characters.size()));
    isComplete_ = this->length() == length;
    return *this;
}

PostScriptText& PostScriptText::operator<<(CFStringRef string) {
    if (!string)
        return *this << "(null)";
    const CFIndex room =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
    const std::unique_ptr<char[]> characters(
        new (std::nothrow) char[static_cast<std::size_t>(room)]);
    if (!characters || !CFStringGetCString(string, characters.get(), room, kCFStringEncodingUTF8)) {
        isComplete_ = false;
        return *this;
    }
    return *this << std::string_view(characters.get());
}

PostScriptText& PostScriptText::operator<<(std::int64_t integer) {
    char digits[24];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), integer).ptr;
    return *this << std::string_view(digits, static_cast<std::size_t>(end - digits));
}

PostScriptText& PostScriptText::operator<<(Digits number) {
    char digits[64];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number.value,
                                   std::chars_format::general, number.digits)
                         .ptr;
    return *this << std::string_view(digits, static_cast<std::size_t>(end - digits));
}

PostScriptText& PostScriptText::operator<<(const PostScriptText& text) {
    isComplete_ = isComplete_ && text.isComplete();
    return *this << text.view();
}

std::string_view PostScriptText::view() const {
    if (!data_)
        return {};
    return {reinterpret_cast<const char*>(CFDataGetBytePtr(data_.get())),
            static_cast<std::size_t>(length())};
}

CFDataRef PostScriptText::create() && {
    return isComplete() ? data_.release() : nullptr;
}

} // namespace fm
