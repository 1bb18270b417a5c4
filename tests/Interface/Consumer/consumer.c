/* consumer.c: a drawing by a program that was built against the installed library. */

#include <CoreGraphics/CoreGraphics.h>

#include <stdio.h>

int main(void) {
    enum { kSide = 4 };
    uint32_t pixels[kSide * kSide] = {0};
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGContextRef context =
        CGBitmapContextCreate(pixels, kSide, kSide, 8, kSide * sizeof(uint32_t), space,
                              kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little);
    CGColorSpaceRelease(space);
    if (!context)
        return 1;
    CGContextSetRGBFillColor(context, 1, 0, 0, 1);
    CGContextFillRect(context, CGRectMake(0, 0, 2, kSide));
    CGContextRelease(context);
    printf("%08x %08x\n", (unsigned)pixels[0], (unsigned)pixels[kSide - 1]);
    return pixels[0] == 0xFFFF0000u && pixels[kSide - 1] == 0 ? 0 : 1;
}
