// TraceNames.h: numbers for the names that traces of drawing refer to.
#pragma once

#include <CoreFoundation/CFString.h>

#include <cstdint>

namespace cg {

// The positive number of `name`, the same from then on in this process; any thread may ask. Names
// are kept for ever, and therefore no more than 4096 of them: later ones share the last number,
// 4097, as do all when memory runs out.
std::int32_t traceID(CFStringRef name);

} // namespace cg
