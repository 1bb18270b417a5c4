// CGDataConsumer.cpp: sinks over data, a stream or callbacks.

#include "XGDataConsumer.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreFoundation/CFStream.h>

#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"

#include <cstdint>
#include <utility>

namespace {

enum class ConsumerKind : std::uint8_t { Data, Stream, Callbacks };

} // namespace

struct CGDataConsumer {
    CFRuntimeBase base;
    cf::Ref<CFMutableDataRef> data;
    cf::Ref<CFWriteStreamRef> stream;
    void* info = nullptr;
    XGDataConsumerCallbacks callbacks = {};
    ConsumerKind kind = ConsumerKind::Data;

    CGDataConsumer() = default;
    CGDataConsumer(const CGDataConsumer&) = delete;
    CGDataConsumer& operator=(const CGDataConsumer&) = delete;
    ~CGDataConsumer() {
        if (stream)
            CFWriteStreamClose(stream.get());
        if (callbacks.releaseConsumer)
            callbacks.releaseConsumer(info);
    }
};

namespace {

constexpr CFRuntimeClass kConsumerClass = {
    .className = "CGDataConsumer",
    .finalize = cg::finalize<CGDataConsumer>,
};

cf::Ref<CGDataConsumerRef> makeConsumer(ConsumerKind kind) {
    auto* const consumer = cg::create<CGDataConsumer>(CGDataConsumerGetTypeID());
    if (consumer)
        consumer->kind = kind;
    return cf::adopt<CGDataConsumerRef>(consumer);
}

CGDataConsumerRef createWithCallbacks(void* info, const XGDataConsumerCallbacks& callbacks) {
    auto consumer = makeConsumer(ConsumerKind::Callbacks);
    if (consumer) {
        consumer.get()->info = info;
        consumer.get()->callbacks = callbacks;
    }
    return consumer.release();
}

// Data that could not grow for lack of memory stays as it was.
bool append(CFMutableDataRef data, const UInt8* bytes, CFIndex count) {
    const CFIndex before = CFDataGetLength(data);
    CFDataAppendBytes(data, bytes, count);
    return CFDataGetLength(data) - before == count;
}

} // namespace

CFTypeID CGDataConsumerGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kConsumerClass);
    return id;
}

CGDataConsumerRef CGDataConsumerRetain(CGDataConsumerRef consumer) {
    return cg::retain(consumer);
}

void CGDataConsumerRelease(CGDataConsumerRef consumer) {
    cg::release(consumer);
}

// ---- Create

CGDataConsumerRef CGDataConsumerCreate(void* info, const CGDataConsumerCallbacks* callbacks) {
    if (!callbacks)
        return nullptr;
    return createWithCallbacks(info, {callbacks->putBytes, callbacks->releaseConsumer, nullptr});
}

CGDataConsumerRef _CGDataConsumerCreate(void* info, const XGDataConsumerCallbacks* callbacks) {
    return callbacks ? createWithCallbacks(info, *callbacks) : nullptr;
}

CGDataConsumerRef CGDataConsumerCreateWithCFData(CFMutableDataRef data) {
    if (!data)
        return nullptr;
    auto consumer = makeConsumer(ConsumerKind::Data);
    if (consumer)
        consumer.get()->data = cf::retain(data);
    return consumer.release();
}

CGDataConsumerRef CGDataConsumerCreateWithURL(CFURLRef url) {
    auto stream = cf::adopt(url ? CFWriteStreamCreateWithFile(nullptr, url) : nullptr);
    if (!stream || !CFWriteStreamOpen(stream.get()))
        return nullptr;
    auto consumer = makeConsumer(ConsumerKind::Stream);
    if (consumer)
        consumer.get()->stream = std::move(stream);
    else
        CFWriteStreamClose(stream.get());
    return consumer.release();
}

// ---- Write

bool XGDataConsumerWriteBytes(CGDataConsumerRef consumer, const void* bytes, size_t count) {
    if (!consumer || (!bytes && count > 0) || !std::in_range<CFIndex>(count))
        return false;
    const auto* const octets = static_cast<const UInt8*>(bytes);
    const auto length = static_cast<CFIndex>(count);
    switch (consumer->kind) {
    case ConsumerKind::Data:
        return append(consumer->data.get(), octets, length);
    case ConsumerKind::Stream:
        return CFWriteStreamWrite(consumer->stream.get(), octets, length) == length;
    case ConsumerKind::Callbacks:
        if (const auto putBytes = consumer->callbacks.putBytes)
            return putBytes(consumer->info, bytes, count) == count;
        CG_LOG_ERROR("Writing to DataConsumer failed with invalid callback.");
        return false;
    }
    CG_NOT_YET_IMPLEMENTED();
}

size_t _CGDataConsumerWriteData(CGDataConsumerRef consumer, CFDataRef data) {
    if (!consumer || !data)
        return 0;
    if (const auto writeData = consumer->callbacks.writeData)
        return writeData(consumer->info, data);
    const CFIndex length = CFDataGetLength(data);
    return XGDataConsumerWriteBytes(consumer, CFDataGetBytePtr(data), static_cast<size_t>(length));
}
