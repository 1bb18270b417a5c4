// PublishedNamesInCxx.cpp: the published names and values, seen by a C++ compiler.

#include "PublishedNames.c"

#include <concepts>

// Enumerations are types of their own that still count as their numbers.
static_assert(!std::same_as<CGLineCap, CGLineJoin>);
static_assert(std::same_as<decltype(kCGImageAlphaLast | kCGBitmapByteOrder32Big), CGBitmapInfo>);
