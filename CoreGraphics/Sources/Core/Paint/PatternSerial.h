// PatternSerial.h: patterns by number, so that caches recognise them without keeping them alive.
#pragma once

#include <CoreGraphics/CGPattern.h>

#include <cstdint>

namespace cg {

// A number that no other pattern of this process has or had; 0 for NULL.
std::uint64_t serialOf(CGPatternRef pattern);

} // namespace cg
