/* XGImageOrientation.h: pictures that are stored turned or mirrored, and scaled copies.
 *
 * The eight orientations are those of the Exif tag "Orientation" (CIPA DC-008, 4.6.4), with its
 * values: where the first row and the first column of the stored picture belong. */
#pragma once

#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGImage.h>

CG_BEGIN_DECLS

/** What is done to the stored picture to see it upright. */
CG_ENUM(uint32_t, XGImageOrientation){
    kXGImageOrientationUp = 1,            /**< Nothing. */
    kXGImageOrientationUpMirrored = 2,    /**< Left and right change places. */
    kXGImageOrientationDown = 3,          /**< Half a turn. */
    kXGImageOrientationDownMirrored = 4,  /**< Top and bottom change places. */
    kXGImageOrientationLeftMirrored = 5,  /**< Rows become columns. */
    kXGImageOrientationRight = 6,         /**< A quarter turn clockwise. */
    kXGImageOrientationRightMirrored = 7, /**< Rows become columns, then half a turn. */
    kXGImageOrientationLeft = 8           /**< A quarter turn counterclockwise. */
};

/** The transform under which an image drawn into (0, 0, size) appears upright in the rectangle at
 *  the origin of the upright size, where y goes up. `size` is the stored picture's. The identity
 * for values that are no orientation. */
CG_EXPORT CGAffineTransform XGImageGetOrientationTransform(XGImageOrientation orientation,
                                                           CGSize size);

/** A copy of the image scaled along its stored columns and rows, and then turned upright. Reduction
 *  averages the area of each new pixel, enlargement interpolates linearly, both in colours
 *  multiplied by their opacity. The copy has 8 bits a component, or 16 where the image has more
 *  than 8, in the image's space, if that is RGB, else in the device's; a copy of a mask is a mask
 * of 8 bits. Sides are rounded to whole pixels, at least one. The caller owns the copy. NULL for
 * NULL, for scales that are not finite and positive, for values that are no orientation; and with a
 * line in the log when bytes are missing or memory runs out. */
CG_EXPORT CGImageRef XGImageCopyWithScaleAndRotation(CGImageRef image, CGFloat xScale,
                                                     CGFloat yScale,
                                                     XGImageOrientation orientation);

/** The part `clip` of such a copy, in its pixels from the upper left corner, y down; no more than
 *  this part is computed. NULL also when it is empty. */
CG_EXPORT CGImageRef XGImageCopyWithScaleRotationAndClipRect(CGImageRef image, CGFloat xScale,
                                                             CGFloat yScale,
                                                             XGImageOrientation orientation,
                                                             CGRect clip);

CG_END_DECLS
