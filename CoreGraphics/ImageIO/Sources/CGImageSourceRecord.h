// CGImageSourceRecord.h: what an image source is made of.
#pragma once

#include <CoreFoundation/CFRuntime.h>
#include <Host/Host.h>

#include "FileBytes.h"
#include "ImageFormat.h"
#include "Picture.h"

#include <ImageIO/CGImageSource.h>

namespace imageio {

enum class Arrival { Whole, Growing, Finished };

// What is known of a source's file. A copy serves its user while the source gets more bytes.
struct Inspection {
    Provider given;                      // As the caller gave it.
    Provider file;                       // The same bytes in memory; empty when there are none.
    const ImageFormat* format = nullptr; // NULL: not recognised.
    PictureRef picture;                  // Empty: no header that could be read.
    bool isGrowing = false;
};

} // namespace imageio

struct CGImageSource {
    CFRuntimeBase base;
    cf::Ref<CFStringRef> hint;

    // Guards all that follows. The mutex of the file's provider is taken after it.
    host::Mutex mutex;
    imageio::Arrival arrival = imageio::Arrival::Whole;
    bool isInspected = false;
    imageio::Inspection inspection;

    // Looks at the file the first time, and after each update.
    imageio::Inspection inspect();
};
