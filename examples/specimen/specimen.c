/* specimen.c: what a font file looks like: its names, its letters in many sizes, and what can be
 * done with them.
 *
 *     specimen OUTPUT.png FONT-FILE [TEXT] */

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include <ImageIO/ImageIO.h>
#include <MobileCoreServices/MobileCoreServices.h>
#include <stdio.h>
#include <string.h>

enum { kWidth = 640, kHeight = 560, kMost = 64, kLeft = 20 };

static CGGlyph glyphs[kMost];
static size_t count = 0;

static void findGlyphs(CGFontRef font, const char* text) {
    UniChar characters[kMost];
    CFStringRef string = CFStringCreateWithCString(NULL, text, kCFStringEncodingUTF8);
    const CFIndex length = string ? CFStringGetLength(string) : 0;
    count = (size_t)(length < kMost ? length : kMost);
    if (string) {
        CFStringGetCharacters(string, CFRangeMake(0, (CFIndex)count), characters);
        CFRelease(string);
    }
    CGFontGetGlyphsForUnichars(font, characters, glyphs, count);
    /* The second half of a surrogate pair has no glyph of its own. */
    size_t kept = 0;
    for (size_t i = 0; i < count; ++i)
        if ((characters[i] & 0xFC00) != 0xDC00)
            glyphs[kept++] = glyphs[i];
    count = kept;
}

static void show(CGContextRef context, CGFloat size, CGFloat x, CGFloat y, CGTextDrawingMode mode) {
    CGContextSetFontSize(context, size);
    CGContextSetTextDrawingMode(context, mode);
    CGContextShowGlyphsAtPoint(context, x, y, glyphs, count);
}

/* A caption in a font of the system's, for fonts that cannot name themselves. */
static void showCaption(CGContextRef context, CGFontRef font) {
    char text[200] = "", name[100] = "(no name)";
    CFStringRef full = CGFontCopyFullName(font);
    if (full) {
        CFStringGetCString(full, name, sizeof name, kCFStringEncodingUTF8);
        CFRelease(full);
    }
    snprintf(text, sizeof text, "%s: %zu glyphs, %d units per em, from %d to %d", name,
             CGFontGetNumberOfGlyphs(font), CGFontGetUnitsPerEm(font), CGFontGetDescent(font),
             CGFontGetAscent(font));
    CGContextSelectFont(context, "DejaVu Sans", 13, kCGEncodingMacRoman);
    CGContextShowTextAtPoint(context, kLeft, kHeight - 24, text, strlen(text));
    CGContextSetFont(context, font);
}

static void showEffects(CGContextRef context, CGColorSpaceRef rgb) {
    CGContextSetRGBStrokeColor(context, 0.7f, 0.1f, 0.1f, 1);
    show(context, 44, kLeft, 190, kCGTextStroke);
    CGContextSetRGBFillColor(context, 1, 0.8f, 0.2f, 1);
    CGContextSetLineWidth(context, 2);
    show(context, 44, kLeft, 135, kCGTextFillStroke);
    CGContextSetRGBFillColor(context, 0.1f, 0.3f, 0.7f, 1);

    CGContextSaveGState(context);
    CGContextSetShadow(context, CGSizeMake(4, -4), 5);
    show(context, 44, kLeft, 80, kCGTextFill);
    CGContextRestoreGState(context);

    const CGFloat components[] = {0.9f, 0, 0.3f, 1, 0, 0.4f, 0.9f, 1};
    CGGradientRef gradient = CGGradientCreateWithColorComponents(rgb, components, NULL, 2);
    CGContextSaveGState(context);
    show(context, 44, kLeft, 25, kCGTextClip);
    CGContextDrawLinearGradient(context, gradient, CGPointMake(kLeft, 0), CGPointMake(400, 0), 3);
    CGContextRestoreGState(context);
    CGGradientRelease(gradient);

    for (int turn = 0; turn < 12; ++turn) {
        CGContextSetTextMatrix(context, CGAffineTransformMakeRotation((CGFloat)turn * 0.5236f));
        CGContextSetFontSize(context, 11);
        CGContextSetTextDrawingMode(context, kCGTextFill);
        CGContextShowGlyphsAtPoint(context, 510, 115, glyphs, count < 10 ? count : 10);
    }
}

static bool writePicture(CGContextRef context, const char* path) {
    CGImageRef image = CGBitmapContextCreateImage(context);
    CFURLRef url = CFURLCreateFromFileSystemRepresentation(NULL, (const UInt8*)path,
                                                           (CFIndex)strlen(path), false);
    CGImageDestinationRef file = CGImageDestinationCreateWithURL(url, kUTTypePNG, 1, NULL);
    CGImageDestinationAddImage(file, image, NULL);
    const bool isWritten = CGImageDestinationFinalize(file);
    if (file)
        CFRelease(file);
    if (url)
        CFRelease(url);
    CGImageRelease(image);
    return isWritten;
}

int main(int argc, char** argv) {
    CGDataProviderRef file = argc > 2 ? CGDataProviderCreateWithFilename(argv[2]) : NULL;
    CGFontRef font = CGFontCreateWithDataProvider(file);
    CGDataProviderRelease(file);
    if (!font) {
        fprintf(stderr, "usage: %s OUTPUT.png FONT-FILE [TEXT]\n", argv[0]);
        return 2;
    }
    findGlyphs(font, argc > 3 ? argv[3] : "Hamburgefonts & 0123");
    CGColorSpaceRef rgb = CGColorSpaceCreateDeviceRGB();
    CGContextRef context = CGBitmapContextCreate(
        NULL, kWidth, kHeight, 8, 0, rgb, kCGImageAlphaNoneSkipFirst | kCGBitmapByteOrder32Little);
    CGContextSetRGBFillColor(context, 1, 1, 1, 1);
    CGContextFillRect(context, CGRectMake(0, 0, kWidth, kHeight));
    CGContextSetRGBFillColor(context, 0, 0, 0, 1);
    showCaption(context, font);
    const CGFloat sizes[] = {8, 10, 12, 14, 18, 24, 32, 48};
    CGFloat y = kHeight - 34;
    for (size_t i = 0; i < sizeof sizes / sizeof *sizes; ++i) {
        y -= sizes[i] * 1.2f + 4;
        show(context, sizes[i], kLeft, y, kCGTextFill);
    }
    showEffects(context, rgb);
    const bool isWritten = writePicture(context, argv[1]);
    CGContextRelease(context);
    CGColorSpaceRelease(rgb);
    CGFontRelease(font);
    return isWritten ? 0 : 1;
}
