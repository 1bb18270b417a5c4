// Picture.cpp: the pixels of a file's image, decoded when they are first needed.

#include "Picture.h"

#include "Core/Object/RuntimeObject.h"

#include <cstdlib>
#include <cstring>
#include <mutex>

namespace imageio {
namespace {

constexpr CFRuntimeClass kPictureClass = {
    .className = "ImageIOPicture",
    .finalize = cg::finalize<Picture>,
};

// ---- Callbacks of the providers, whose info is the picture.

Picture& pictureOf(void* info) {
    return *static_cast<Picture*>(info);
}

const void* lockPixels(void* info) {
    return pictureOf(info).lock();
}
void unlockPixels(void* info, const void*) {
    pictureOf(info).unlock();
}
void purgePixels(void* info) {
    pictureOf(info).purge();
}

void unlockAndPurgePixels(void* info, const void*) {
    pictureOf(info).unlock();
    pictureOf(info).purge();
}

void releasePicture(void* info) {
    const auto picture = cf::adopt(static_cast<Picture*>(info));
    picture.get()->detach();
}

} // namespace

Picture::~Picture() {
    std::free(pixels);
}

void Picture::freePixels() {
    std::free(pixels);
    pixels = nullptr;
}

void Picture::decode() {
    const FileBytes bytes(file.get());
    pixels = static_cast<std::uint8_t*>(std::malloc(header.byteCount()));
    if (!pixels)
        return;
    const std::size_t rows = reader->decode(bytes.bytes(), header, pixels);
    std::memset(pixels + rows * header.bytesPerRow, 0, (header.height - rows) * header.bytesPerRow);
    cannotBeDecoded = rows == 0;
    if (cannotBeDecoded)
        freePixels();
}

const void* Picture::lock() {
    const std::lock_guard hold(mutex);
    if (!pixels && !cannotBeDecoded)
        decode();
    lockCount += pixels ? 1 : 0;
    return pixels;
}

void Picture::unlock() {
    const std::lock_guard hold(mutex);
    --lockCount;
}

void Picture::purge() {
    const std::lock_guard hold(mutex);
    if (lockCount == 0)
        freePixels();
}

void Picture::attach() {
    const std::lock_guard hold(mutex);
    ++providerCount;
}

void Picture::detach() {
    const std::lock_guard hold(mutex);
    if (--providerCount == 0)
        freePixels();
}

PictureRef makePicture(const ImageReader& reader, const Provider& file, const ImageHeader& header) {
    const auto picture = cf::adopt(cg::create<Picture>(kPictureClass));
    if (picture) {
        picture.get()->reader = &reader;
        picture.get()->file = file;
        picture.get()->header = header;
    }
    return picture;
}

Provider makePixelProvider(Picture* picture, KeepPixels keep) {
    const XGDataProviderDirectCallbacks callbacks = {
        .getBytePointer = lockPixels,
        .releaseBytePointer = keep == KeepPixels::Yes ? unlockPixels : unlockAndPurgePixels,
        .releaseInfo = releasePicture,
        .purgeData = purgePixels,
    };
    auto provider = cf::adopt(XGDataProviderCreateDirect(
        picture, static_cast<off_t>(picture->header.byteCount()), &callbacks));
    if (provider) {
        // The provider's reference, which its releaseInfo gives up.
        picture->attach();
        CFRetain(picture);
    }
    return provider;
}

} // namespace imageio
