// Picture.h: the pixels of a file's image, decoded when they are first needed.
#pragma once

#include <CoreFoundation/CFRuntime.h>
#include <Host/Host.h>

#include "FileBytes.h"
#include "ImageReader.h"

namespace imageio {

enum class KeepPixels { No, Yes };

// What the images of a source share. The pixels are decoded by the first of their providers that is
// locked, kept while any provider is there, and freed by a purge while none of them is locked.
//
// Its mutex guards pixels and counts, and is held while decoding, so that threads that come
// meanwhile wait for the one picture. The mutex of a picture's provider is taken before it, that of
// the file's provider after it.
struct Picture {
    CFRuntimeBase base;

    const ImageReader* reader = nullptr;
    Provider file;
    ImageHeader header;

    host::Mutex mutex;
    std::uint8_t* pixels = nullptr;
    std::size_t lockCount = 0, providerCount = 0;
    bool cannotBeDecoded = false;

    ~Picture();

    const void* lock();
    void unlock();
    void purge();
    // A provider of the pixels came or went.
    void attach();
    void detach();

private:
    void decode();
    void freePixels();
};

using PictureRef = cf::Ref<Picture*>;

PictureRef makePicture(const ImageReader& reader, const Provider& file, const ImageHeader& header);

// A provider of the picture's pixels; without keeping them they are freed when it is unlocked.
Provider makePixelProvider(Picture* picture, KeepPixels keep);

} // namespace imageio
