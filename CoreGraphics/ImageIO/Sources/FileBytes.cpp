// FileBytes.cpp: a file's bytes in memory, while they are looked at.

#include "FileBytes.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace imageio {
namespace {

// A stream says how long it is by ending. One that never does is given up.
constexpr std::size_t kFirstRead = 65536;
constexpr std::size_t kMostBytes = std::size_t(1) << 31;

struct Free {
    void operator()(std::uint8_t* bytes) const { std::free(bytes); }
};
using Buffer = std::unique_ptr<std::uint8_t, Free>;

void freeBytes(void* buffer, const void*, std::size_t) {
    std::free(buffer);
}

bool grow(Buffer& buffer, std::size_t size) {
    void* const larger = std::realloc(buffer.get(), size);
    if (!larger)
        return false;
    static_cast<void>(buffer.release());
    buffer.reset(static_cast<std::uint8_t*>(larger));
    return true;
}

Provider readWhole(CGDataProviderRef provider) {
    if (XGDataProviderCanRewind(provider))
        XGDataProviderRewind(provider);
    Buffer buffer;
    std::size_t size = 0, capacity = 0;
    for (;;) {
        if (size == capacity) {
            capacity = std::max(kFirstRead, capacity * 2);
            if (capacity > kMostBytes || !grow(buffer, capacity))
                return nullptr;
        }
        std::size_t count = 0;
        if (!XGDataProviderReadBytes(provider, buffer.get() + size, static_cast<int64_t>(size),
                                     capacity - size, &count) ||
            count == 0 || count > capacity - size)
            break;
        size += count;
    }
    if (size == 0 || !grow(buffer, size))
        return nullptr;
    auto whole =
        cf::adopt(CGDataProviderCreateWithData(buffer.get(), buffer.get(), size, freeBytes));
    if (whole)
        static_cast<void>(buffer.release());
    return whole;
}

} // namespace

Provider providerInMemory(CGDataProviderRef provider) {
    if (XGDataProviderIsDirect(provider) && XGDataProviderLockData(provider)) {
        XGDataProviderUnlockData(provider);
        return cf::retain(provider);
    }
    return provider ? readWhole(provider) : nullptr;
}

FileBytes::FileBytes(CGDataProviderRef provider) : provider_(provider) {
    const int64_t size = XGDataProviderGetSize(provider);
    const void* const bytes = size > 0 ? XGDataProviderLockData(provider) : nullptr;
    if (bytes)
        bytes_ = {static_cast<const std::uint8_t*>(bytes), static_cast<std::size_t>(size)};
}

FileBytes::~FileBytes() {
    if (!bytes_.empty())
        XGDataProviderUnlockData(provider_);
}

} // namespace imageio
