// CGBitmapContextRecording.cpp: bitmap contexts that record commands, and what ends it.
//
// While a context records it has neither pixels nor a backend: of its callbacks only the one that
// brings them is there. What comes afterwards is a context like any other.

#include "XGBitmapContext.h"
#include "XGColorSpace.h"
#include "XGDataProvider.h"
#include "XGGState.h"

#include "Core/CommandQueue/XGCommandQueueRecord.h"
#include "Core/Context/CGBitmapContextRecord.h"
#include "Core/Context/XGBackend.h"
#include "Core/Image/CGImageRecord.h"

#include <mutex>
#include <utility>

namespace cg {

namespace {

// The raster backend's marks do not depend on the size of the bitmap up to this one, nor do
// processors take larger canvases.
constexpr std::size_t kLargestCanvas = 8191;

// Four numbers say every colour of such a space, with its opacity.
bool canRecord(const Bitmap& bitmap) {
    const CGColorSpaceModel model = CGColorSpaceGetModel(bitmap.space);
    return (model == kCGColorSpaceModelRGB || model == kCGColorSpaceModelMonochrome) &&
           alphaInfo(bitmap.info) != kCGImageAlphaOnly && bitmap.width <= kLargestCanvas &&
           bitmap.height <= kLargestCanvas;
}

cf::Ref<XGCommandQueueRef> createQueue(const Bitmap& bitmap) {
    auto queue = cf::adopt(XGCommandQueueCreate(
        static_cast<uint32_t>(bitmap.width), static_cast<uint32_t>(bitmap.height),
        static_cast<uint32_t>(bitmap.bitsPerComponent), static_cast<uint32_t>(bitmap.bitsPerPixel),
        bitmap.space, bitmap.info));
    if (queue)
        queue.get()->bytesPerRow = bitmap.bytesPerRow;
    return queue;
}

constexpr XGContextCallbacks kRecordingCallbacks = {
    .version = 0,
    .prepare = [](CGContextRef context) { bringIntoPixels(context); },
};

} // namespace

CGContextRef createRecording(const Bitmap& bitmap) {
    auto queue = canRecord(bitmap) ? createQueue(bitmap) : nullptr;
    auto context = cf::adopt(queue ? makeBitmapContext(kRecordingCallbacks, nullptr) : nullptr);
    if (!context)
        return nullptr;
    setUpBitmapContext(context.get(), bitmap, nullptr);
    // The clip is the whole bitmap's: a context without one had no memory for it.
    if (!XGGStateGetClipping(context.get()->state.get()))
        return nullptr;
    fieldsOf(context.get())->info |= kRecordsCommands;
    context.get()->queue = std::move(queue);
    return context.release();
}

// ---- Pixels

namespace {

// What commands are drawn under, in place of whatever the context is in the middle of.
class FreshState {
public:
    FreshState(CGContext& context, cf::Ref<XGGStateRef> state)
        : context_(context), state_(std::move(state)) {
        exchange();
    }
    // Its clip is not the one that the backend has by now.
    ~FreshState() {
        exchange();
        XGGStateSetShouldRasterizeClipRegion(context_.state.get(), true);
    }
    FreshState(const FreshState&) = delete;
    FreshState& operator=(const FreshState&) = delete;

private:
    void exchange() {
        std::swap(context_.state, state_);
        std::swap(context_.path, path_);
        std::swap(context_.allowsFlags, allowsFlags_);
        std::swap(context_.failedSaves, failedSaves_);
    }

    CGContext& context_;
    cf::Ref<XGGStateRef> state_;
    cf::Ref<CGMutablePathRef> path_;
    uint32_t allowsFlags_ = kXGContextAllowsAntialiasing;
    size_t failedSaves_ = 0;
};

// As new contexts have it; empty when memory runs out.
cf::Ref<XGGStateRef> makeState(const CGRect& canvas) {
    auto state = cf::adopt(XGGStateCreate());
    const auto clip = cf::adopt(XGClippingCreateWithRect(canvas));
    if (!state || !clip)
        return nullptr;
    XGGStateSetClipping(state.get(), clip.get());
    return state;
}

// Gives the context pixels and their backend. False, and nothing has changed, without memory.
bool addPixels(CGContext& context, BitmapFields& fields) {
    Bitmap bitmap = describe(fields);
    auto data = allocatePixels(bitmap);
    if (!data)
        return false;
    bitmap.pixels = CFDataGetMutableBytePtr(const_cast<CFMutableDataRef>(data.get()));
    void* const backend = createRasterBackend(bitmap);
    if (!backend)
        return false;
    context.callbacks = rasterBackendCallbacks();
    context.info = backend;
    fields.pixels = bitmap.pixels;
    fields.data = std::move(data);
    fields.info &= ~kRecordsCommands;
    return true;
}

} // namespace

bool bringIntoPixels(CGContextRef context) {
    if (!context->queue)
        return true;
    BitmapFields& fields = *fieldsOf(context);
    auto state = makeState(context->queue.get()->canvas());
    if (!state || !addPixels(*context, fields)) {
        logFailedAllocation(context, describe(fields));
        return false;
    }
    const auto queue = std::move(context->queue);
    if (XGCommandQueueGetCommandCount(queue.get()) > 0) {
        const FreshState scope(*context, std::move(state));
        XGContextDrawCommandQueue(context, queue.get());
    }
    return true;
}

// ---- Images

namespace {

XGCommandQueueRef queueOf(void* info) {
    return static_cast<XGCommandQueueRef>(info);
}

// The bitmap that a queue's images show, drawn by whoever looks first. Images share a queue across
// threads, and each has a provider, with a lock, of its own.
const void* pixelsOf(void* info) {
    XGCommandQueueRef queue = queueOf(info);
    const std::lock_guard hold(queue->drawingMutex);
    if (!queue->drawing) {
        auto drawing = cf::adopt(createWithPixels({.width = queue->width,
                                                   .height = queue->height,
                                                   .bitsPerComponent = queue->bitsPerComponent,
                                                   .bytesPerRow = queue->bytesPerRow,
                                                   .space = queue->space.get(),
                                                   .info = queue->bitmapInfo}));
        if (!drawing)
            return nullptr;
        XGContextDrawCommandQueue(drawing.get(), queue);
        queue->drawing = std::move(drawing);
    }
    return fieldsOf(queue->drawing.get())->pixels;
}

constexpr XGDataProviderDirectCallbacks kQueueCallbacks = {
    .version = 0,
    .getBytePointer = pixelsOf,
    .releaseInfo = [](void* info) { CFRelease(info); },
};

cf::Ref<CGDataProviderRef> createQueueProvider(XGCommandQueueRef queue) {
    const std::size_t size = queue->bytesPerRow * queue->height;
    auto provider =
        cf::adopt(XGDataProviderCreateDirect(queue, static_cast<off_t>(size), &kQueueCallbacks));
    if (provider)
        CFRetain(queue); // The provider's, released by its callback.
    return provider;
}

} // namespace

CGImageRef createQueueImage(CGContextRef context) {
    const BitmapFields& bitmap = *fieldsOf(context);
    const auto provider = createQueueProvider(context->queue.get());
    auto image = provider ? makeImage({.width = bitmap.width,
                                       .height = bitmap.height,
                                       .bitsPerComponent = bitmap.bitsPerComponent,
                                       .bitsPerPixel = bitmap.bitsPerPixel,
                                       .bytesPerRow = bitmap.bytesPerRow,
                                       .bitmapInfo = bitmap.info | kXGImageCommandQueue,
                                       .flags = kImageInterpolates,
                                       .space = bitmap.space.get(),
                                       .provider = provider.get()})
                          : nullptr;
    if (!image) {
        logFailedAllocation(context, describe(bitmap));
        return nullptr;
    }
    closeQueue(context->queue.get());
    return image.release();
}

} // namespace cg
