// CGDataProviderDirect.cpp: providers over callbacks with random access.

#include "Core/Data/CGDataProviderRecord.h"
#include "Core/Object/Diagnostics.h"

#include <algorithm>
#include <cstring>

namespace {

using cg::DataVariant;

struct VariantCallbacks {
    CGDataProviderGetBytePointerCallback get;
    CGDataProviderReleaseBytePointerCallback release;
};

VariantCallbacks callbacksFor(const CGDataProvider& provider, DataVariant variant) {
    const XGDataProviderDirectCallbacks& direct = provider.direct;
    switch (variant) {
    case DataVariant::Planar:
        return {direct.getPlanarBytePointer, direct.releasePlanarBytePointer};
    case DataVariant::Premultiplied:
        return {direct.getPremultipliedBytePointer, direct.releasePremultipliedBytePointer};
    case DataVariant::Plain:
        break;
    }
    return {direct.getBytePointer, direct.releaseBytePointer};
}

std::int64_t knownSize(CGDataProvider& provider) {
    return provider.size;
}

const void* lock(CGDataProvider& provider, DataVariant variant) {
    const auto get = callbacksFor(provider, variant).get;
    return cg::lend(provider.lentAs(variant), [&] { return get ? get(provider.info) : nullptr; });
}

void unlock(CGDataProvider& provider, DataVariant variant) {
    const auto release = callbacksFor(provider, variant).release;
    cg::takeBack(provider.lentAs(variant), [&](const void* pointer) {
        if (release)
            release(provider.info, pointer);
    });
}

std::optional<std::size_t> read(CGDataProvider& provider, void* buffer, std::int64_t offset,
                                std::size_t count) {
    if (const auto getBytes = provider.direct.getBytesAtPosition)
        return std::min(count, getBytes(provider.info, buffer, static_cast<off_t>(offset), count));
    const auto* const bytes = static_cast<const std::byte*>(lock(provider, DataVariant::Plain));
    if (!bytes)
        return std::nullopt;
    std::memcpy(buffer, bytes + offset, count);
    unlock(provider, DataVariant::Plain);
    return count;
}

cf::Ref<CGDataProviderRef> makeDirect(void* info, off_t size,
                                      const XGDataProviderDirectCallbacks& callbacks) {
    if (size < 0 || callbacks.version != 0)
        return nullptr;
    auto provider = cg::makeProvider(cg::kDirectOperations);
    if (provider) {
        provider.get()->info = info;
        provider.get()->size = size;
        provider.get()->direct = callbacks;
    }
    return provider;
}

void purge(const CGDataProvider& provider, DataVariant variant,
           XGDataProviderPurgeCallback callback, const char* function, const char* message) {
    if (provider.lent[static_cast<std::size_t>(variant)].locks == 0) {
        if (callback)
            callback(provider.info);
    } else if (HostLogIsEnabled(kHostLogWarning)) {
        cg::logMessage(kHostLogWarning, function, message, static_cast<CFTypeRef>(&provider));
    }
}

} // namespace

const cg::ProviderOperations cg::kDirectOperations = {
    .size = knownSize,
    .lock = lock,
    .unlock = unlock,
    .read = read,
    .rewind = [](CGDataProvider&) { return true; },
    .skip = [](CGDataProvider&, std::int64_t count) { return std::optional(count); },
    .abilities = [](CGDataProvider&) { return ProviderAbilities{}; },
};

CGDataProviderRef CGDataProviderCreateDirect(void* info, off_t size,
                                             const CGDataProviderDirectCallbacks* callbacks) {
    if (!callbacks)
        return nullptr;
    const XGDataProviderDirectCallbacks extended = {
        .version = callbacks->version,
        .getBytePointer = callbacks->getBytePointer,
        .releaseBytePointer = callbacks->releaseBytePointer,
        .getBytesAtPosition = callbacks->getBytesAtPosition,
        .releaseInfo = callbacks->releaseInfo,
    };
    return makeDirect(info, size, extended).release();
}

CGDataProviderRef XGDataProviderCreateDirect(void* info, off_t size,
                                             const XGDataProviderDirectCallbacks* callbacks) {
    return callbacks ? makeDirect(info, size, *callbacks).release() : nullptr;
}

void XGDataProviderPurge(CGDataProviderRef provider) {
    if (!provider)
        return;
    const std::lock_guard hold(provider->mutex);
    if (provider->operations != &cg::kDirectOperations)
        return;
    const XGDataProviderDirectCallbacks& direct = provider->direct;
    purge(*provider, DataVariant::Plain, direct.purgeData, __func__,
          "Skipping purge of data provider %@ because the data is locked.");
    purge(*provider, DataVariant::Planar, direct.purgePlanarData, __func__,
          "Skipping purge of data provider %@ because the planar data is locked.");
    purge(*provider, DataVariant::Premultiplied, direct.purgePremultipliedData, __func__,
          "Skipping purge of data provider %@ because the premultiplied data is locked.");
}
