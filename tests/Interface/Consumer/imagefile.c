/* imagefile.c: a picture written and read back by a program that was built against the installed
 * library, which by being linked also lets the drawing library read PNG data. */

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include <ImageIO/ImageIO.h>
#include <MobileCoreServices/MobileCoreServices.h>

static CGImageRef createPicture(void) {
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGContextRef context =
        CGBitmapContextCreate(NULL, 3, 2, 8, 0, space, kCGImageAlphaPremultipliedLast);
    CGContextSetRGBFillColor(context, 0, 1, 0, 1);
    CGContextFillRect(context, CGRectMake(0, 0, 3, 2));
    CGImageRef image = CGBitmapContextCreateImage(context);
    CGContextRelease(context);
    CGColorSpaceRelease(space);
    return image;
}

int main(void) {
    CFMutableDataRef file = CFDataCreateMutable(NULL, 0);
    CGImageRef picture = createPicture();
    CGImageDestinationRef destination = CGImageDestinationCreateWithData(file, kUTTypePNG, 1, NULL);
    CGImageDestinationAddImage(destination, picture, NULL);
    if (!CGImageDestinationFinalize(destination))
        return 1;
    CFRelease(destination);
    CGImageRelease(picture);

    CGDataProviderRef provider = CGDataProviderCreateWithCFData(file);
    CGImageRef image =
        CGImageCreateWithPNGDataProvider(provider, NULL, true, kCGRenderingIntentDefault);
    const int isThere = CGImageGetWidth(image) == 3 && CGImageGetHeight(image) == 2;
    CGImageRelease(image);
    CGDataProviderRelease(provider);
    CFRelease(file);
    return isThere ? 0 : 1;
}
