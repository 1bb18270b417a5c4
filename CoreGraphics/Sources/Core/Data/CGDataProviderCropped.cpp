// CGDataProviderCropped.cpp: providers over a byte range of another one.

#include "Core/Data/CGDataProviderRecord.h"
#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"

#include <utility>

namespace {

using cg::DataVariant;
using Hold = std::lock_guard<host::Mutex>;

cg::ProviderAbilities abilities(CGDataProvider& provider) {
    CGDataProvider& source = *provider.source.get();
    const Hold hold(source.mutex);
    return source.operations->abilities(source);
}

std::int64_t knownSize(CGDataProvider& provider) {
    return provider.size;
}

// The crop's first byte in the source's memory; NULL when the source ends before the crop does.
const void* lockSource(CGDataProvider& provider, DataVariant variant) {
    CGDataProvider& source = *provider.source.get();
    const Hold hold(source.mutex);
    const std::int64_t sourceSize = cg::sizeUnsafe(source);
    const std::int64_t offset = provider.crop.byteOffset;
    if (offset > sourceSize || provider.size > sourceSize - offset)
        return nullptr;
    const auto* const bytes =
        static_cast<const std::byte*>(source.operations->lock(source, variant));
    return bytes ? bytes + offset : nullptr;
}

bool rewind(CGDataProvider& provider) {
    CGDataProvider& source = *provider.source.get();
    const Hold hold(source.mutex);
    return source.operations->rewind(source);
}

const void* lock(CGDataProvider& provider, DataVariant variant) {
    if (variant == DataVariant::Planar)
        return nullptr; // The planes of a crop lie apart.
    if (abilities(provider).isDirect)
        return cg::lend(provider.lentAs(variant), [&] { return lockSource(provider, variant); });
    if (variant != DataVariant::Plain)
        return nullptr;
    CG_LOG_AS(kHostLogWarning, "_XGDataProviderLockDataUnsafe",
              "You are losing optimizations by locking cropped data!");
    rewind(provider);
    auto data = cg::readWhole(provider, provider.size);
    if (!data)
        return nullptr;
    provider.source = nullptr;
    return cg::becomeData(provider, std::move(data));
}

void unlock(CGDataProvider& provider, DataVariant variant) {
    cg::takeBack(provider.lentAs(variant), [&](const void*) {
        CGDataProvider& source = *provider.source.get();
        const Hold hold(source.mutex);
        source.operations->unlock(source, variant);
    });
}

std::optional<std::size_t> read(CGDataProvider& provider, void* buffer, std::int64_t offset,
                                std::size_t count) {
    CGDataProvider& source = *provider.source.get();
    const Hold hold(source.mutex);
    return cg::readUnsafe(source, buffer, provider.crop.byteOffset + offset, count);
}

std::optional<std::int64_t> skip(CGDataProvider& provider, std::int64_t count) {
    CGDataProvider& source = *provider.source.get();
    const Hold hold(source.mutex);
    return cg::skipUnsafe(source, count);
}

// From the first row's first byte to the last row's last used one; nothing when that overflows.
std::optional<std::int64_t> byteSize(const cg::CropGeometry& crop) {
    if (crop.byteOffset < 0)
        return std::nullopt;
    if (crop.rows == 0)
        return 0;
    const auto size =
        (cg::CheckedSize(crop.rows - 1) * crop.sourceRowBytes + crop.usedBytesPerRow).value();
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    if (!size || !std::in_range<std::int64_t>(*size) ||
        static_cast<std::int64_t>(*size) > most - crop.byteOffset)
        return std::nullopt;
    return static_cast<std::int64_t>(*size);
}

} // namespace

const cg::ProviderOperations cg::kCroppedOperations = {
    .size = knownSize,
    .lock = lock,
    .unlock = unlock,
    .read = read,
    .rewind = rewind,
    .skip = skip,
    .abilities = abilities,
};

CGDataProviderRef XGDataProviderCreateCroppedWithProvider(CGDataProviderRef source,
                                                          int64_t byteOffset, size_t sourceRowBytes,
                                                          size_t usedBytesPerRow, size_t rows) {
    const cg::CropGeometry crop = {byteOffset, sourceRowBytes, usedBytesPerRow, rows};
    const auto size = byteSize(crop);
    if (!source || !size)
        return nullptr;
    auto provider = cg::makeProvider(cg::kCroppedOperations);
    if (provider) {
        provider.get()->source = cf::retain(source);
        provider.get()->crop = crop;
        provider.get()->size = *size;
    }
    return provider.release();
}
