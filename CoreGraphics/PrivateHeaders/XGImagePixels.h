/* XGImagePixels.h: an image's pixels as plain numbers, whatever its layout.
 *
 * An image's own layout may be any that creation accepts. A row is a stream of bits, most
 * significant first; a little-endian byte order reverses the bytes of each 16-bit or 32-bit unit,
 * or of the largest smaller unit of which a pixel is made up, so that it has no effect on 8-bit
 * gray and on packed 24-bit pixels. Bits that no component needs come last, or first for "skip
 * first". */
#pragma once

#include <CoreGraphics/CGImage.h>

CG_BEGIN_DECLS

/** What pixels are wanted as: the components of `space`, then the opacity if it is wanted. */
typedef struct XGPixelRequest {
    /** NULL: the image's own colours, those of the base if it is indexed, gray of the device for
     *  masks and for opacity alone. */
    CGColorSpaceRef space;
    /** 8, 16 in host order, or 32 for floats. All of an integer's range stands for 0…1; Lab is
     *  encoded as profiles do, its floats are L* of 0…100, and a* and b* themselves. */
    uint32_t bitsPerComponent;
    bool hasAlpha;
    /** Whether colours are to be multiplied by the opacity; without `hasAlpha` they never are. */
    bool premultiplied;
} XGPixelRequest;

/** Writes rows `firstRow` to `firstRow + rowCount` to `out`, which is aligned to a component, in
 *  steps of `outBytesPerRow`, a multiple of the component's size.
 *
 *  The decode array, masking colours (held against samples before they are decoded) and a mask are
 *  applied, the latter two only where opacity is wanted. Every step rounds to the nearest value:
 *  c · a / 255 for 8 bits. Colours go between spaces as the image's rendering intent says. An image
 *  mask's samples come as gray; pixels of opacity alone are black, or that opacity as gray where
 *  opacity is not wanted.
 *
 *  False for NULL, rows that the image does not have, steps smaller than a row, and a request that
 *  cannot be met; with a line in the log when colours cannot be converted, memory runs out, or the
 *  provider has fewer bytes than the image needs: rows before that are then written. */
CG_EXPORT bool XGImageReadPixels(CGImageRef image, const XGPixelRequest* request, size_t firstRow,
                                 size_t rowCount, void* out, size_t outBytesPerRow);

/** The image with its mask or masking colours applied, or the image itself if it has neither. The
 *  masked copy has 8 bits a component, 16 where the image has more than 8, premultiplied, in the
 *  image's space if that is one of RGB and otherwise in the device's; it is made once, and lives as
 * long as the image. NULL for NULL, and with a line in the log when it cannot be made. */
CG_EXPORT CGImageRef _CGImageGetMaskedImage(CGImageRef image);

/** An opaque or premultiplied copy of the image in the device's RGB, 8 bits a component, or 16
 * where the image has more than 8; the image itself, retained, when it is an RGB image already.
 * Image masks stay what they are. The caller owns the result. NULL for NULL, and with an error in
 * the log for colours that cannot be converted (patterns) or missing bytes. */
CG_EXPORT CGImageRef XGImageCreateCopyByConvertingToRGB(CGImageRef image);

CG_END_DECLS
