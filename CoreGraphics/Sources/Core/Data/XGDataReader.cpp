// XGDataReader.cpp: a cursor over a data provider.

#include "XGDataReader.h"

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>

#include "Core/Object/RuntimeObject.h"

#include <limits>
#include <optional>

struct XGDataReader {
    CFRuntimeBase base;
    cf::Ref<CGDataProviderRef> provider;
    std::int64_t position = 0;
};

namespace {

constexpr CFRuntimeClass kReaderClass = {
    .className = "CGDataReader",
    .copy = cg::copyBy<XGDataReaderCreateCopy>,
    .finalize = cg::finalize<XGDataReader>,
};

constexpr std::int64_t kFailed = -1;

// Nothing when the sum leaves the range of positions.
std::optional<std::int64_t> positionAfter(std::int64_t position, std::int64_t offset) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    if (position < 0 || (offset > 0 && position > most - offset) || position + offset < 0)
        return std::nullopt;
    return position + offset;
}

std::int64_t skipTo(XGDataReaderRef reader, std::int64_t target) {
    return XGDataReaderSkip(reader, target - reader->position) ? reader->position : kFailed;
}

std::int64_t moveTo(XGDataReaderRef reader, std::int64_t target) {
    if (target < reader->position && !XGDataReaderRewind(reader))
        return kFailed;
    return skipTo(reader, target);
}

std::int64_t seekFromEnd(XGDataReaderRef reader, std::int64_t offset) {
    const std::int64_t size = XGDataProviderGetSize(reader->provider.get());
    if (offset == 0 && size >= 0)
        return reader->position = size;
    // A stream that cannot be measured has no place before its end to go to, perhaps no end.
    constexpr auto unmeasured = std::numeric_limits<std::int64_t>::max();
    const auto target = size == unmeasured ? std::nullopt : positionAfter(size, offset);
    return target ? moveTo(reader, *target) : kFailed;
}

} // namespace

XGDataReaderRef XGDataReaderCreate(CGDataProviderRef provider) {
    if (!provider)
        return nullptr;
    auto* const reader = cg::create<XGDataReader>(kReaderClass);
    if (reader)
        reader->provider = cf::retain(provider);
    return reader;
}

XGDataReaderRef XGDataReaderCreateCopy(XGDataReaderRef reader) {
    return reader ? XGDataReaderCreate(reader->provider.get()) : nullptr;
}

XGDataReaderRef XGDataReaderRetain(XGDataReaderRef reader) {
    return cg::retain(reader);
}

void XGDataReaderRelease(XGDataReaderRef reader) {
    cg::release(reader);
}

CGDataProviderRef XGDataReaderCopyProvider(XGDataReaderRef reader) {
    return reader ? cf::retain(reader->provider.get()).release() : nullptr;
}

// ---- Queries

bool XGDataReaderCanRewind(XGDataReaderRef reader) {
    return reader && XGDataProviderCanRewind(reader->provider.get());
}

int64_t XGDataReaderGetSize(XGDataReaderRef reader) {
    return reader ? XGDataProviderGetSize(reader->provider.get()) : 0;
}

bool XGDataReaderIsDirect(XGDataReaderRef reader) {
    return reader && XGDataProviderIsDirect(reader->provider.get());
}

int64_t XGDataReaderTell(XGDataReaderRef reader) {
    return reader ? reader->position : kFailed;
}

// ---- Access

const void* XGDataReaderLockBytePtr(XGDataReaderRef reader) {
    return reader ? XGDataProviderLockData(reader->provider.get()) : nullptr;
}

void XGDataReaderUnlockBytePtr(XGDataReaderRef reader) {
    if (reader)
        XGDataProviderUnlockData(reader->provider.get());
}

bool XGDataReaderRead(XGDataReaderRef reader, void* buffer, size_t count, size_t* read) {
    std::size_t done = 0;
    if (reader && buffer)
        XGDataProviderReadBytes(reader->provider.get(), buffer, reader->position, count, &done);
    if (done > 0)
        reader->position += static_cast<std::int64_t>(done);
    if (read)
        *read = done;
    return done > 0;
}

bool XGDataReaderRewind(XGDataReaderRef reader) {
    if (!reader)
        return false;
    if (reader->position == 0)
        return true;
    if (!XGDataProviderRewind(reader->provider.get()))
        return false;
    reader->position = 0;
    return true;
}

bool XGDataReaderSkip(XGDataReaderRef reader, int64_t count) {
    if (!reader || count < 0 || !positionAfter(reader->position, count))
        return false;
    std::int64_t skipped = 0;
    const bool succeeded = XGDataProviderSkip(reader->provider.get(), count, &skipped);
    reader->position += skipped;
    return succeeded;
}

int64_t XGDataReaderSeek(XGDataReaderRef reader, int64_t offset, int whence) {
    if (!reader || !XGDataProviderCanSeek(reader->provider.get()))
        return kFailed;
    if (whence == kXGDataReaderFromEnd)
        return seekFromEnd(reader, offset);
    if (offset < 0)
        return kFailed;
    if (whence == kXGDataReaderFromStart)
        return moveTo(reader, offset);
    if (whence != kXGDataReaderFromPosition)
        return kFailed;
    return XGDataReaderSkip(reader, offset) ? reader->position : kFailed;
}
