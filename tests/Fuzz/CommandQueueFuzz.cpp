// CommandQueueFuzz.cpp: command queues read from any bytes, drawn into pixels, and written back.

#include "XGCommandQueue.h"
#include "XGImage.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>
#include <Host/Host.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

using Queue = cf::Ref<XGCommandQueueRef>;
using Bytes = std::vector<uint8_t>;

constexpr std::size_t kHeaderSize = 68, kRecordSize = 68, kItemSize = 16, kColorSize = 16;

void require(bool condition) {
    if (!condition)
        std::abort();
}

uint32_t wordAt(const Bytes& bytes, std::size_t offset) {
    uint32_t word;
    std::memcpy(&word, &bytes[offset], sizeof word);
    return word;
}
void setWord(Bytes& bytes, std::size_t offset, uint64_t value, std::size_t size = 4) {
    std::memcpy(&bytes[offset], &value, size);
}

// An image that queues can name.
uint32_t trackedImage() {
    static const uint32_t key = [] {
        static const uint8_t pixels[16] = {1, 2, 3, 255, 4, 5, 6, 255, 7, 8, 9, 255, 0, 0, 0, 0};
        const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
        const auto provider =
            cf::adopt(CGDataProviderCreateWithData(nullptr, pixels, sizeof pixels, nullptr));
        const CGImageRef image =
            CGImageCreate(2, 2, 8, 32, 8, space.get(), kCGImageAlphaPremultipliedLast,
                          provider.get(), nullptr, false, kCGRenderingIntentDefault);
        XGImageSetSourceDataProvider(image, provider.get()); // Else queues with it are not written.
        const uint32_t made = XGCommandQueueGetImageKey(image);
        XGCommandQueueTrackUploadedImage(made, image);
        return made;
    }();
    return key;
}

// Gives the header its mark and the true size, every command a kind that exists (others abort, as
// documented) and some an image.
void mend(Bytes& bytes) {
    setWord(bytes, 0, 0x51434758);
    setWord(bytes, 4, bytes.size(), 8);
    const uint64_t size = bytes.size();
    uint64_t at = kHeaderSize;
    while (at + kRecordSize <= size) {
        const std::size_t record = static_cast<std::size_t>(at);
        setWord(bytes, record, wordAt(bytes, record) % 6);
        if (wordAt(bytes, record + 36) % 2 == 1)
            setWord(bytes, record + 36, trackedImage());
        at += kRecordSize + uint64_t{wordAt(bytes, record + 60)} * kItemSize;
        if (wordAt(bytes, record + 32) != 0)
            at += kColorSize;
        if (wordAt(bytes, record + 40) == 0)
            continue;
        if (at + 4 > size)
            return;
        at += 4 + uint64_t{wordAt(bytes, static_cast<std::size_t>(at))};
    }
}

void draw(XGCommandQueueRef queue, CGColorSpaceRef space) {
    constexpr std::size_t side = 24;
    static uint8_t pixels[4 * side * side];
    const auto context = cf::adopt(CGBitmapContextCreate(pixels, side, side, 8, 4 * side, space,
                                                         kCGImageAlphaPremultipliedLast));
    XGContextDrawCommandQueue(context.get(), queue);
}

Bytes written(XGCommandQueueRef queue) {
    std::size_t size = 0, same = 0;
    require(XGCommandQueueSerialize(queue, nullptr, &size));
    Bytes bytes(size);
    require(XGCommandQueueSerialize(queue, bytes.data(), &same) && same == size);
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* input, size_t size) {
    constexpr std::size_t kMostBytes = 2048;
    if (size < kHeaderSize || size > kMostBytes)
        return 0;
    HostLogSetThreshold(kHostLogFault);
    Bytes bytes(input, input + size);
    mend(bytes);
    static const CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    const Queue queue = cf::adopt(XGCommandQueueCreateDeserialized(bytes.data(), space));
    if (!queue)
        return 0;
    const Bytes flat = written(queue.get());
    const Queue again = cf::adopt(XGCommandQueueCreateDeserialized(flat.data(), space));
    require(again && XGCommandQueueGetCommandCount(again.get()) ==
                         XGCommandQueueGetCommandCount(queue.get()));
    XGCommandQueueNeedsBlend(queue.get());
    draw(queue.get(), space);
    return 0;
}
