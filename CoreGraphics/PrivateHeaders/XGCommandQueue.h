/* XGCommandQueue: drawing that is recorded for a compositor with a graphics processor.
 *
 * A queue takes simple commands, in order, for a canvas of its size in pixels, y up. What it
 * refuses is drawn into pixels instead. It can be written into a flat buffer, for another component
 * of the same process. A queue belongs to one thread at a time; CFRetain and CFRelease count its
 * users.
 *
 * Four runtime options govern it, registered with the first queue: NIMBRA_GPU_DRAWING (whether
 * there are queues at all), NIMBRA_GPU_FONTS, NIMBRA_GPU_CIRCLE, all on at first, and
 * NIMBRA_GPU_DRAWING_DEBUG, off at first, which shows in other colours what was recorded. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreGraphics/CGColor.h>
#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGGeometry.h>
#include <CoreGraphics/CGImage.h>
#include <CoreGraphics/CGPath.h>

CG_BEGIN_DECLS

typedef struct XGCommandQueue* XGCommandQueueRef;

CG_ENUM(uint32_t, XGCommandKind){
    kXGCommandFillRects = 0, kXGCommandDrawSprites = 1, kXGCommandDrawImage = 2,
    kXGCommandFillPath = 3,  kXGCommandStrokePath = 4,  kXGCommandFillCircle = 5,
};

/** One command, in a block that came from malloc or calloc; its items follow behind it. A queue
 * that takes the block frees it, and releases the colour, the image and the path. */
typedef struct XGCommand {
    XGCommandKind kind;
    CGRect bounds;      /**< What it may mark. */
    uint8_t isPartial;  /**< Set by the queue: the bounds are not just the canvas. */
    uint8_t isPooled;   /**< Set by the queue: the block is a part of a larger one of its own. */
    uint8_t lendsColor; /**< Set by the queue: the colour is an earlier command's. */
    CGBlendMode blendMode;
    uint32_t reserved28;
    CGColorRef color; /**< Or NULL. */
    CGImageRef image; /**< Or NULL. */
    CGPathRef path;   /**< Or NULL; in the canvas's space. */
    union {
        uint32_t words[4];
        struct {
            CGFloat width;
            int32_t cap;  /**< CGLineCap */
            int32_t join; /**< CGLineJoin */
            CGFloat miterLimit;
        } stroke;
    } parameters;
    uint32_t itemCount;
    uint32_t reserved64;
} XGCommand;

/** An item of "draw sprites". */
typedef struct XGSprite {
    void* glyph;    /**< An FMGlyph with a sprite, counted by the texture atlas's callbacks. */
    CGPoint origin; /**< Whole pixels of the canvas. */
} XGSprite;

/** The items of "fill rects"; they are sprites where those are drawn. */
CG_INLINE CGRect* XGCommandGetRects(const XGCommand* command) {
    return (CGRect*)(command + 1);
}
CG_INLINE XGSprite* XGCommandGetSprites(const XGCommand* command) {
    return (XGSprite*)(command + 1);
}

/* ---- Queues ------------------------------------------------------------------------------ */

/** An empty queue for a canvas of `width` by `height` pixels, or NULL while NIMBRA_GPU_DRAWING is
 *  off. Bits per component and pixel are kept for whoever makes a bitmap of it; of the bitmap info
 *  bit 30 is cleared. */
CG_EXPORT XGCommandQueueRef XGCommandQueueCreate(uint32_t width, uint32_t height,
                                                 uint32_t bitsPerComponent, uint32_t bitsPerPixel,
                                                 CGColorSpaceRef space, CGBitmapInfo bitmapInfo);
CG_EXPORT CGSize XGCommandQueueGetSize(XGCommandQueueRef queue);
CG_EXPORT CFIndex XGCommandQueueGetCommandCount(XGCommandQueueRef queue);
/** The queue's own command, or NULL past the end. */
CG_EXPORT const XGCommand* XGCommandQueueGetCommandAtIndex(XGCommandQueueRef queue, CFIndex index);
CG_EXPORT uint32_t XGCommandQueueGetImageCount(XGCommandQueueRef queue);
/** The first command, if it fills the canvas with one opaque colour; else NULL. */
CG_EXPORT const XGCommand* XGCommandQueueGetBackgroundFillCommand(XGCommandQueueRef queue);
/** Whether a command has another blend mode than normal. */
CG_EXPORT bool XGCommandQueueNeedsBlend(XGCommandQueueRef queue);

/** Appends a command and takes its block; true also for a command with empty bounds, which is freed
 *  at once. False, and the block stays the caller's: for a queue that is closed or holds 10000
 *  commands (with a warning); for kinds whose option is off; for sprites without a texture atlas;
 *  for a colour that the canvas's space cannot express; for a translucent copy over other commands;
 *  without memory. An opaque copy becomes a normal command; a colour of another space is replaced
 * by the same one in the canvas's; a fill of the whole canvas with an opaque colour takes the place
 * of all commands before it. */
CG_EXPORT bool XGCommandQueueAddCommand(XGCommandQueueRef queue, XGCommand* command);

/* ---- Flat buffers ------------------------------------------------------------------------ */

/** Writes a queue into a buffer, whose size `size` receives; with a NULL buffer it only does the
 *  latter. Images that were not handed over yet are marked as uploaded and appended to those of
 *  XGCommandQueueGetImagesToUpload. False, with nothing handed over, without a queue or where an
 *  image has no source provider. The format is described in docs/command-queue.md. */
CG_EXPORT bool XGCommandQueueSerialize(XGCommandQueueRef queue, void* buffer, size_t* size);
/** The queue that was written into a buffer of this process, its colours in `space`; images are
 *  found among those that XGCommandQueueTrackUploadedImage was told of. NULL while
 * NIMBRA_GPU_DRAWING is off and, with an error, for bytes that are no queue. A kind of command that
 * does not exist aborts the process. */
CG_EXPORT XGCommandQueueRef XGCommandQueueCreateDeserialized(const void* buffer,
                                                             CGColorSpaceRef space);

/* ---- Drawing into pixels ----------------------------------------------------------------- */

/** Draws the queue's commands, in order, with the context's own operations: the canvas lies in the
 *  context's user space, each command has its colour and blend mode, and the rest of the graphics
 *  state holds for all. The current path is lost. */
CG_EXPORT void XGContextDrawCommandQueue(CGContextRef context, XGCommandQueueRef queue);
/** The queue drawn into a bitmap of its size, space and bitmap info; the provider's bytes are the
 *  bitmap's rows, without gaps. The queue takes no more commands. NULL, with an error, where no
 * such bitmap can be made. */
CG_EXPORT CGDataProviderRef XGCommandQueueCreateDataProvider(XGCommandQueueRef queue);

/* ---- Images on their way to the graphics processor --------------------------------------- */

/* These lists are the process's, and belong to the compositor's thread. */

/** What stands for the image in flat buffers: never 0, never another image's. 0 for NULL. */
CG_EXPORT uint32_t XGCommandQueueGetImageKey(CGImageRef image);
/** Images that buffers refer to and the compositor has to upload. The list retains them; the
 *  compositor removes what it has done. */
CG_EXPORT CFMutableArrayRef XGCommandQueueGetImagesToUpload(void);
/** Images that are no more and were uploaded: addresses alone, which the compositor removes. */
CG_EXPORT CFMutableArrayRef XGCommandQueueGetImagesToFinalize(void);
/** Notes under its key an image that was uploaded, retains it, and releases the caller's
 *  reference. */
CG_EXPORT void XGCommandQueueTrackUploadedImage(uint32_t key, CGImageRef image);
/** Forgets the image of a key. */
CG_EXPORT void XGCommandQueueFinalizeImage(uint32_t key);

/** How the compositor's atlas of glyphs counts their users. */
typedef struct XGTextureAtlasCallbacks {
    uint32_t version; /**< 0 */
    void (*retainGlyph)(void* glyph);
    void (*releaseGlyph)(void* glyph);
} XGTextureAtlasCallbacks;

/** Keeps the address of the atlas's callbacks for the process; NULL, or another version: sprites
 *  are refused. */
CG_EXPORT void XGCommandQueueSetTextureAtlasCallbacks(const XGTextureAtlasCallbacks* callbacks);

CG_END_DECLS
