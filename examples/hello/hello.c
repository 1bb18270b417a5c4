/* hello.c: the smallest picture: a disc on paper, as a portable pixmap on standard output. */

#include <CoreGraphics/CoreGraphics.h>

#include <stdio.h>

int main(void) {
    CGColorSpaceRef rgb = CGColorSpaceCreateDeviceRGB();
    CGContextRef context =
        CGBitmapContextCreate(NULL, 200, 200, 8, 0, rgb, kCGImageAlphaNoneSkipLast);
    CGContextSetRGBFillColor(context, 1, 1, 1, 1);
    CGContextFillRect(context, CGRectMake(0, 0, 200, 200));
    CGContextSetRGBFillColor(context, 0.2f, 0.5f, 0.9f, 1);
    CGContextFillEllipseInRect(context, CGRectMake(30, 30, 140, 140));
    const unsigned char* pixels = CGBitmapContextGetData(context);
    printf("P6 200 200 255\n");
    for (int i = 0; pixels && i < 200 * 200; ++i)
        fwrite(pixels + 4 * i, 1, 3, stdout);
    CGContextRelease(context);
    CGColorSpaceRelease(rgb);
    return pixels ? 0 : 1;
}
