// consumer.cpp: a path and an owning handle in C++, against the installed library.

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

int main() {
    const auto path = cf::adopt(CGPathCreateMutable());
    CGPathAddRect(path.get(), nullptr, CGRectMake(1, 2, 3, 4));
    const CGBitmapInfo info = kCGImageAlphaNoneSkipFirst | kCGBitmapByteOrder32Host;
    const bool found = CGPathContainsPoint(path.get(), nullptr, CGPointMake(2, 3), false);
    return found && info != 0 ? 0 : 1;
}
