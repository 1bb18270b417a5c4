// CGDataProvider.cpp: the type, and access under the provider's mutex whatever its kind.

#include <CoreFoundation/CFAllocator.h>

#include "Core/Data/CGDataProviderRecord.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"

#include <algorithm>
#include <utility>

namespace {

using cg::DataVariant;
using Hold = std::lock_guard<host::Mutex>;

constexpr CFRuntimeClass kProviderClass = {
    .className = "CGDataProvider",
    .finalize = cg::finalize<CGDataProvider>,
};

const void* lock(CGDataProviderRef provider, DataVariant variant) {
    if (!provider)
        return nullptr;
    const Hold hold(provider->mutex);
    return provider->operations->lock(*provider, variant);
}

void unlock(CGDataProviderRef provider, DataVariant variant) {
    if (!provider)
        return;
    const Hold hold(provider->mutex);
    provider->operations->unlock(*provider, variant);
}

cg::ProviderAbilities abilities(CGDataProviderRef provider) {
    if (!provider)
        return {.canRewind = false, .canSkip = false, .isDirect = false};
    const Hold hold(provider->mutex);
    return provider->operations->abilities(*provider);
}

// Frees bytes that a provider lends: by unlocking it. The allocator keeps the provider alive.
cf::Ref<CFAllocatorRef> makeUnlocker(CGDataProviderRef provider) {
    CFAllocatorContext context = {};
    context.info = provider;
    context.retain = [](const void* info) { return CFRetain(info); };
    context.release = [](const void* info) { CFRelease(info); };
    context.deallocate = [](void*, void* info) {
        XGDataProviderUnlockData(static_cast<CGDataProviderRef>(info));
    };
    return cf::adopt(CFAllocatorCreate(nullptr, &context));
}

cf::Ref<CFDataRef> makeDataOverLockedBytes(CGDataProviderRef provider, const void* bytes) {
    const std::int64_t size = XGDataProviderGetSize(provider);
    if (size < 0 || !std::in_range<CFIndex>(size))
        return nullptr;
    const auto unlocker = makeUnlocker(provider);
    if (!unlocker)
        return nullptr;
    return cf::adopt(CFDataCreateWithBytesNoCopy(nullptr, static_cast<const UInt8*>(bytes),
                                                 static_cast<CFIndex>(size), unlocker.get()));
}

} // namespace

// ---- Life

CFTypeID CGDataProviderGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kProviderClass);
    return id;
}

CGDataProviderRef CGDataProviderRetain(CGDataProviderRef provider) {
    return cg::retain(provider);
}

void CGDataProviderRelease(CGDataProviderRef provider) {
    cg::release(provider);
}

cf::Ref<CGDataProviderRef> cg::makeProvider(const ProviderOperations& kind) {
    auto* const provider = cg::create<CGDataProvider>(CGDataProviderGetTypeID());
    if (provider)
        provider->operations = &kind;
    return cf::adopt<CGDataProviderRef>(provider);
}

// Nobody is left to use what is still lent, so it goes back first.
CGDataProvider::~CGDataProvider() {
    for (const auto variant :
         {DataVariant::Plain, DataVariant::Planar, DataVariant::Premultiplied}) {
        cg::LentPointer& left = lentAs(variant);
        left.locks = std::min(left.locks, 1);
        operations->unlock(*this, variant);
    }
    if (direct.releaseInfo)
        direct.releaseInfo(info);
    if (sequential.releaseInfo)
        sequential.releaseInfo(info);
    if (releaseData)
        releaseData(info, lentAs(DataVariant::Plain).pointer, static_cast<std::size_t>(size));
}

void* XGDataProviderGetInfo(CGDataProviderRef provider) {
    return provider ? provider->info : nullptr;
}

CFURLRef XGDataProviderCopyURL(CGDataProviderRef provider) {
    return provider ? cf::retain(provider->url.get()).release() : nullptr;
}

// ---- With the mutex held

std::int64_t cg::sizeUnsafe(CGDataProvider& provider) {
    return provider.size == kUnknownSize ? provider.operations->size(provider) : provider.size;
}

std::optional<std::size_t> cg::readUnsafe(CGDataProvider& provider, void* buffer,
                                          std::int64_t offset, std::size_t count) {
    if (offset < 0)
        return std::nullopt;
    if (provider.size != kUnknownSize) {
        if (offset >= provider.size)
            return std::nullopt;
        const auto rest = static_cast<std::uint64_t>(provider.size - offset);
        count = static_cast<std::size_t>(std::min<std::uint64_t>(count, rest));
    }
    if (count == 0)
        return 0;
    return buffer ? provider.operations->read(provider, buffer, offset, count) : std::nullopt;
}

std::optional<std::int64_t> cg::skipUnsafe(CGDataProvider& provider, std::int64_t count) {
    if (count == 0)
        return 0;
    return count > 0 ? provider.operations->skip(provider, count) : std::nullopt;
}

cf::Ref<CFDataRef> cg::readWhole(CGDataProvider& provider, std::int64_t size) {
    // A stream that cannot be measured reports the largest number there is: do not even try.
    if (size < 0 || size == std::numeric_limits<std::int64_t>::max() ||
        !std::in_range<CFIndex>(size))
        return nullptr;
    auto* const bytes =
        static_cast<UInt8*>(CFAllocatorAllocate(nullptr, std::max<CFIndex>(size, 1), 0));
    if (!bytes)
        return nullptr;
    std::int64_t done = 0;
    while (done < size) {
        const auto count =
            readUnsafe(provider, bytes + done, done, static_cast<std::size_t>(size - done));
        if (!count || *count == 0)
            break;
        done += static_cast<std::int64_t>(*count);
    }
    cf::Ref<CFDataRef> data;
    if (done == size && size > 0)
        data = cf::adopt(CFDataCreateWithBytesNoCopy(nullptr, bytes, static_cast<CFIndex>(size),
                                                     CFAllocatorGetDefault()));
    if (!data)
        CFAllocatorDeallocate(nullptr, bytes);
    return data;
}

// ---- Access

int64_t XGDataProviderGetSize(CGDataProviderRef provider) {
    if (!provider)
        return 0;
    const Hold hold(provider->mutex);
    return cg::sizeUnsafe(*provider);
}

const void* XGDataProviderLockData(CGDataProviderRef provider) {
    return lock(provider, DataVariant::Plain);
}

void XGDataProviderUnlockData(CGDataProviderRef provider) {
    unlock(provider, DataVariant::Plain);
}

const void* XGDataProviderLockPlanarData(CGDataProviderRef provider) {
    return lock(provider, DataVariant::Planar);
}

void XGDataProviderUnlockPlanarData(CGDataProviderRef provider) {
    unlock(provider, DataVariant::Planar);
}

const void* XGDataProviderLockPremultipliedData(CGDataProviderRef provider) {
    return lock(provider, DataVariant::Premultiplied);
}

void XGDataProviderUnlockPremultipliedData(CGDataProviderRef provider) {
    unlock(provider, DataVariant::Premultiplied);
}

bool XGDataProviderReadBytes(CGDataProviderRef provider, void* buffer, int64_t offset, size_t count,
                             size_t* read) {
    std::optional<std::size_t> done;
    if (provider) {
        const Hold hold(provider->mutex);
        done = cg::readUnsafe(*provider, buffer, offset, count);
    }
    if (read)
        *read = done.value_or(0);
    return done.has_value();
}

CFDataRef CGDataProviderCopyData(CGDataProviderRef provider) {
    if (!provider)
        return nullptr;
    if (const void* const bytes = XGDataProviderLockData(provider)) {
        auto data = makeDataOverLockedBytes(provider, bytes);
        if (!data)
            XGDataProviderUnlockData(provider);
        return data.release();
    }
    const Hold hold(provider->mutex);
    return cg::readWhole(*provider, cg::sizeUnsafe(*provider)).release();
}

// ---- Streams

bool XGDataProviderRewind(CGDataProviderRef provider) {
    if (!provider)
        return false;
    const Hold hold(provider->mutex);
    return provider->operations->rewind(*provider);
}

bool XGDataProviderSkip(CGDataProviderRef provider, int64_t count, int64_t* skipped) {
    std::optional<std::int64_t> done;
    if (provider) {
        const Hold hold(provider->mutex);
        done = cg::skipUnsafe(*provider, count);
    }
    if (skipped)
        *skipped = done.value_or(0);
    return done.has_value();
}

bool XGDataProviderCanRewind(CGDataProviderRef provider) {
    return abilities(provider).canRewind;
}

bool XGDataProviderCanSkip(CGDataProviderRef provider) {
    return abilities(provider).canSkip;
}

bool XGDataProviderCanSeek(CGDataProviderRef provider) {
    const cg::ProviderAbilities can = abilities(provider);
    return can.canRewind && can.canSkip;
}

bool XGDataProviderIsDirect(CGDataProviderRef provider) {
    return abilities(provider).isDirect;
}
