// Base64.h: bytes written with 64 letters (RFC 4648).
#pragma once

#include "GrowableArray.h"

#include <string_view>

namespace cf {

// Appends the bytes that `text` stands for; white space in it does not count, and the padding at
// its end may be missing. False for other text, and when memory runs out.
bool decodeBase64(std::string_view text, TextBuffer& result);

} // namespace cf
