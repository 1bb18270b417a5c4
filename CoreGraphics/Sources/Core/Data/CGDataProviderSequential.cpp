// CGDataProviderSequential.cpp: providers over a stream, which may be able to rewind and to skip.

#include "Core/Data/CGDataProviderRecord.h"
#include "Core/Object/Diagnostics.h"

#include <algorithm>

namespace {

using cg::DataVariant;

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

bool hasSkip(const CGDataProvider& provider) {
    return provider.sequential.skipForward || provider.skipBytes;
}

cg::ProviderAbilities abilities(CGDataProvider& provider) {
    return {
        .canRewind = provider.sequential.rewind != nullptr,
        .canSkip = hasSkip(provider) || provider.sequential.getBytes,
        .isDirect = static_cast<bool>(provider.data),
    };
}

bool canSeek(CGDataProvider& provider) {
    const cg::ProviderAbilities can = abilities(provider);
    return can.canRewind && can.canSkip;
}

void advance(CGDataProvider& provider, std::int64_t count) {
    provider.position = count > kMost - provider.position ? kMost : provider.position + count;
}

// A callback may claim more than it was asked for: no more than that is believed.
std::size_t getBytes(CGDataProvider& provider, void* buffer, std::size_t count) {
    const auto& callbacks = provider.sequential;
    const std::size_t got = std::min(count, callbacks.getBytes(provider.info, buffer, count));
    advance(provider, static_cast<std::int64_t>(got));
    return got;
}

bool rewind(CGDataProvider& provider) {
    if (provider.position == 0)
        return true;
    if (!provider.sequential.rewind)
        return false;
    provider.sequential.rewind(provider.info);
    provider.position = 0;
    return true;
}

// Without a callback that tells how far it got, a skip is taken to have gone the whole way.
std::int64_t skipByReading(CGDataProvider& provider, std::int64_t count) {
    std::byte scratch[128];
    for (std::int64_t left = count; left > 0;) {
        const auto chunk = static_cast<std::size_t>(std::min<std::int64_t>(left, sizeof scratch));
        if (getBytes(provider, scratch, chunk) < chunk)
            break;
        left -= static_cast<std::int64_t>(chunk);
    }
    return count;
}

std::optional<std::int64_t> skip(CGDataProvider& provider, std::int64_t count) {
    if (const auto skipForward = provider.sequential.skipForward) {
        const auto skipped = std::clamp<std::int64_t>(
            skipForward(provider.info, static_cast<off_t>(count)), 0, count);
        advance(provider, skipped);
        return skipped;
    }
    if (const auto skipBytes = provider.skipBytes) {
        skipBytes(provider.info, static_cast<std::size_t>(count));
        advance(provider, count);
        return count;
    }
    if (!provider.sequential.getBytes)
        return std::nullopt;
    return skipByReading(provider, count);
}

std::int64_t measure(CGDataProvider& provider) {
    if (!canSeek(provider)) {
        CG_LOG_AS(kHostLogWarning, "_XGDataProviderGetSizeUnsafe",
                  "Getting the size of sequential provider requires locking if rewinding and "
                  "skipping are not supported");
        return cg::kUnknownSize;
    }
    rewind(provider);
    // Skipping by any other way reports what it was asked for: that much is known without reading
    // the stream, which may be endless.
    provider.size = kMost;
    if (provider.sequential.skipForward)
        provider.size = skip(provider, kMost).value_or(kMost);
    rewind(provider);
    return provider.size;
}

const void* lock(CGDataProvider& provider, DataVariant variant) {
    constexpr const char* function = "_XGDataProviderLockDataUnsafe";
    if (variant != DataVariant::Plain)
        return nullptr;
    CG_LOG_AS(kHostLogWarning, function,
              "You are reading the whole data for sequential provider into the memory!");
    const std::int64_t size = cg::sizeUnsafe(provider);
    rewind(provider);
    auto data = cg::readWhole(provider, size);
    if (!data) {
        CG_LOG_AS(kHostLogError, function, "Failed to read sequential data");
        return nullptr;
    }
    return cg::becomeData(provider, std::move(data));
}

// False when the stream ends before `offset`.
bool moveTo(CGDataProvider& provider, std::int64_t offset) {
    if (provider.position == offset)
        return true;
    if (!canSeek(provider)) {
        CG_LOG_AS(kHostLogWarning, "_XGDataProviderReadBytesUnsafe",
                  "Getting bytes from a sequential provider that does not support rewinding or "
                  "skipping ignores the offset");
        return true;
    }
    rewind(provider);
    return cg::skipUnsafe(provider, offset) && provider.position == offset;
}

std::optional<std::size_t> read(CGDataProvider& provider, void* buffer, std::int64_t offset,
                                std::size_t count) {
    if (!provider.sequential.getBytes || !moveTo(provider, offset))
        return std::nullopt;
    return getBytes(provider, buffer, count);
}

} // namespace

const cg::ProviderOperations cg::kSequentialOperations = {
    .size = measure,
    .lock = lock,
    .unlock = [](CGDataProvider&, DataVariant) {},
    .read = read,
    .rewind = rewind,
    .skip = skip,
    .abilities = abilities,
};

CGDataProviderRef
CGDataProviderCreateSequential(void* info, const CGDataProviderSequentialCallbacks* callbacks) {
    if (!callbacks || callbacks->version != 0)
        return nullptr;
    auto provider = cg::makeProvider(cg::kSequentialOperations);
    if (provider) {
        provider.get()->info = info;
        provider.get()->sequential = *callbacks;
    }
    return provider.release();
}

CGDataProviderRef CGDataProviderCreate(void* info, const CGDataProviderCallbacks* callbacks) {
    if (!callbacks)
        return nullptr;
    auto provider = cg::makeProvider(cg::kSequentialOperations);
    if (provider) {
        provider.get()->info = info;
        provider.get()->sequential = {.version = 0,
                                      .getBytes = callbacks->getBytes,
                                      .skipForward = nullptr,
                                      .rewind = callbacks->rewind,
                                      .releaseInfo = callbacks->releaseProvider};
        provider.get()->skipBytes = callbacks->skipBytes;
    }
    return provider.release();
}
