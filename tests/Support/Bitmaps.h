// Bitmaps.h: the bitmap contexts that most tests draw into.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGBitmapContext.h>
#include <CoreGraphics/CGColorSpace.h>

namespace test {

using Context = cf::Ref<CGContextRef>;

inline constexpr CGBitmapInfo kBGRA =
    CGBitmapInfo{kCGImageAlphaPremultipliedFirst} | CGBitmapInfo{kCGBitmapByteOrder32Little};
inline constexpr CGBitmapInfo kRGBA = kCGImageAlphaPremultipliedLast;

// 32 bits per pixel that the context allocates when it needs them: until then it records.
inline Context makeRecording(std::size_t width, std::size_t height, CGBitmapInfo info = kBGRA) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    return cf::adopt(CGBitmapContextCreate(nullptr, width, height, 8, 0, space.get(), info));
}

// The same with its pixels there, transparent.
inline Context makeContext(std::size_t width, std::size_t height, CGBitmapInfo info = kBGRA) {
    Context context = makeRecording(width, height, info);
    CGContextSetAllowsAcceleration(context.get(), false);
    return context;
}

} // namespace test
