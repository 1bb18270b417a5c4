/* contact-sheet.c: the pictures of many files, small, on one sheet.
 *
 *     contact-sheet OUTPUT INPUT…
 *
 * Writes a JPEG file if OUTPUT ends in ".jpg", else a PNG file. Reads PNG, JPEG and JPEG 2000
 * files; says which of its inputs it cannot read. */

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include <ImageIO/ImageIO.h>
#include <MobileCoreServices/MobileCoreServices.h>
#include <math.h>
#include <stdio.h>
#include <string.h>

enum { kCell = 150, kMost = 112, kFrame = 5, kMargin = 20 };

static CFURLRef createURL(const char* path) {
    return CFURLCreateFromFileSystemRepresentation(NULL, (const UInt8*)path, (CFIndex)strlen(path),
                                                   false);
}

/* The picture, turned upright as its camera noted, its longer side at most kMost. */
static CGImageRef createThumbnail(const char* path) {
    int most = kMost;
    CFNumberRef size = CFNumberCreate(NULL, kCFNumberIntType, &most);
    const void* keys[] = {kCGImageSourceCreateThumbnailFromImageAlways,
                          kCGImageSourceCreateThumbnailWithTransform,
                          kCGImageSourceThumbnailMaxPixelSize};
    const void* values[] = {kCFBooleanTrue, kCFBooleanTrue, size};
    CFDictionaryRef options = CFDictionaryCreate(
        NULL, keys, values, 3, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    CFURLRef url = createURL(path);
    CGImageSourceRef source = CGImageSourceCreateWithURL(url, NULL);
    CGImageRef image = CGImageSourceCreateThumbnailAtIndex(source, 0, options);
    if (source)
        CFRelease(source);
    if (url)
        CFRelease(url);
    CFRelease(options);
    CFRelease(size);
    return image;
}

/* A print with a white frame and its shadow, in the middle of the cell. */
static void drawPrint(CGContextRef sheet, CGImageRef image, CGPoint cell) {
    const CGFloat width = (CGFloat)CGImageGetWidth(image);
    const CGFloat height = (CGFloat)CGImageGetHeight(image);
    const CGRect picture = CGRectMake(floorf(cell.x + (kCell - width) / 2),
                                      floorf(cell.y + (kCell - height) / 2), width, height);

    CGContextSaveGState(sheet);
    const CGFloat shade[] = {0, 0.35f};
    CGColorSpaceRef gray = CGColorSpaceCreateDeviceGray();
    CGColorRef shadow = CGColorCreate(gray, shade);
    CGContextSetShadowWithColor(sheet, CGSizeMake(0, -3), 8, shadow);
    CGContextSetGrayFillColor(sheet, 1, 1);
    CGContextFillRect(sheet, CGRectInset(picture, -kFrame, -kFrame));
    CGColorRelease(shadow);
    CGColorSpaceRelease(gray);
    CGContextRestoreGState(sheet);

    CGContextDrawImage(sheet, picture, image);
}

static CGContextRef createSheet(int columns, int rows) {
    CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    CGContextRef sheet = CGBitmapContextCreate(
        NULL, (size_t)(columns * kCell + 2 * kMargin), (size_t)(rows * kCell + 2 * kMargin), 8, 0,
        space, kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little);
    CGColorSpaceRelease(space);
    CGContextSetRGBFillColor(sheet, 0.91f, 0.90f, 0.88f, 1);
    CGContextFillRect(sheet, CGContextGetClipBoundingBox(sheet));
    return sheet;
}

static bool writeFile(CGContextRef sheet, const char* path) {
    const size_t length = strlen(path);
    const bool isJPEG = length > 4 && strcmp(path + length - 4, ".jpg") == 0;
    CFURLRef url = createURL(path);
    CGImageRef image = CGBitmapContextCreateImage(sheet);
    CGImageDestinationRef file =
        CGImageDestinationCreateWithURL(url, isJPEG ? kUTTypeJPEG : kUTTypePNG, 1, NULL);
    CGImageDestinationAddImage(file, image, NULL);
    const bool isWritten = CGImageDestinationFinalize(file);
    if (file)
        CFRelease(file);
    CGImageRelease(image);
    if (url)
        CFRelease(url);
    return isWritten;
}

int main(int argc, char** argv) {
    if (argc < 3) {
        fprintf(stderr, "usage: %s OUTPUT INPUT...\n", argv[0]);
        return 2;
    }
    const int count = argc - 2;
    const int wanted = (int)ceilf(sqrtf((float)count * 1.5f));
    const int columns = wanted < count ? wanted : count;
    const int rows = (count + columns - 1) / columns;
    CGContextRef sheet = createSheet(columns, rows);
    if (!sheet)
        return 1;
    int missing = 0;
    for (int i = 0; i < count; ++i) {
        CGImageRef image = createThumbnail(argv[i + 2]);
        /* User space has y up: the first row of cells is the topmost. */
        const CGPoint cell = {(CGFloat)(kMargin + i % columns * kCell),
                              (CGFloat)(kMargin + (rows - 1 - i / columns) * kCell)};
        if (image) {
            drawPrint(sheet, image, cell);
        } else {
            fprintf(stderr, "%s: cannot be read\n", argv[i + 2]);
            ++missing;
        }
        CGImageRelease(image);
    }
    const bool isWritten = writeFile(sheet, argv[1]);
    if (!isWritten)
        fprintf(stderr, "%s: cannot be written\n", argv[1]);
    CGContextRelease(sheet);
    return isWritten && missing < count ? 0 : 1;
}
