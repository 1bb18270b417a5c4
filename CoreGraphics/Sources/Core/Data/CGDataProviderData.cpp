// CGDataProviderData.cpp: providers over memory.

#include "Core/Data/CGDataProviderRecord.h"
#include "Core/Object/Diagnostics.h"

#include <cstring>
#include <utility>

namespace {

using cg::DataVariant;

[[noreturn]] void abortAsCorrupt(CGDataProvider& provider, const char* function) {
    cg::logMessage(kHostLogFault, function, "Corrupt CGDataProvider %@",
                   static_cast<CFTypeRef>(&provider));
    HostAbortWithBacktrace();
}

// The memory; NULL for that of empty data.
const void* resolve(CGDataProvider& provider, const char* function) {
    const void*& pointer = provider.lentAs(DataVariant::Plain).pointer;
    if (!pointer && !provider.data)
        abortAsCorrupt(provider, function);
    if (!pointer)
        pointer = CFDataGetBytePtr(provider.data.get());
    return pointer;
}

std::int64_t knownSize(CGDataProvider& provider) {
    return provider.size;
}

const void* lock(CGDataProvider& provider, DataVariant variant) {
    if (variant != DataVariant::Plain)
        return nullptr;
    return resolve(provider, "_XGDataProviderLockDataUnsafe");
}

std::optional<std::size_t> read(CGDataProvider& provider, void* buffer, std::int64_t offset,
                                std::size_t count) {
    const auto* const bytes =
        static_cast<const std::byte*>(resolve(provider, "_XGDataProviderReadBytesUnsafe"));
    if (!bytes)
        return std::nullopt;
    std::memcpy(buffer, bytes + offset, count);
    return count;
}

} // namespace

const cg::ProviderOperations cg::kDataOperations = {
    .size = knownSize,
    .lock = lock,
    .unlock = [](CGDataProvider&, DataVariant) {},
    .read = read,
    .rewind = [](CGDataProvider&) { return true; },
    .skip = [](CGDataProvider&, std::int64_t count) { return std::optional(count); },
    .abilities =
        [](CGDataProvider& provider) {
            ProviderAbilities can;
            can.isDirect = provider.lentAs(DataVariant::Plain).pointer || provider.data;
            return can;
        },
};

const void* cg::becomeData(CGDataProvider& provider, cf::Ref<CFDataRef> data) {
    provider.operations = &kDataOperations;
    provider.size = static_cast<std::int64_t>(CFDataGetLength(data.get()));
    LentPointer& memory = provider.lentAs(DataVariant::Plain);
    memory = {.pointer = CFDataGetBytePtr(data.get())};
    provider.data = std::move(data);
    return memory.pointer;
}

CGDataProviderRef CGDataProviderCreateWithData(void* info, const void* data, size_t size,
                                               CGDataProviderReleaseDataCallback releaseData) {
    if (!data || !std::in_range<std::int64_t>(size))
        return nullptr;
    auto provider = cg::makeProvider(cg::kDataOperations);
    if (provider) {
        provider.get()->info = info;
        provider.get()->size = static_cast<std::int64_t>(size);
        provider.get()->lentAs(DataVariant::Plain).pointer = data;
        provider.get()->releaseData = releaseData;
        provider.get()->keepsBytes = releaseData != nullptr;
    }
    return provider.release();
}

CGDataProviderRef CGDataProviderCreateWithCFData(CFDataRef data) {
    if (!data)
        return nullptr;
    auto provider = cg::makeProvider(cg::kDataOperations);
    if (provider) {
        provider.get()->info = const_cast<void*>(static_cast<const void*>(data));
        provider.get()->keepsBytes = _CFDataOwnsBytes(data);
        cg::becomeData(*provider.get(), cf::retain(data));
    }
    return provider.release();
}
