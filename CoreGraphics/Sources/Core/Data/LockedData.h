// LockedData.h: a provider's contents in memory while a scope lasts.
#pragma once

#include "XGDataProvider.h"
#include <CoreFoundation/CFRef.h>

#include <cstddef>
#include <utility>

namespace cg {

class LockedData {
public:
    explicit LockedData(CGDataProviderRef provider)
        : provider_(cf::retain(provider)),
          bytes_(static_cast<const std::byte*>(XGDataProviderLockData(provider))),
          size_(bytes_ ? static_cast<std::size_t>(XGDataProviderGetSize(provider)) : 0) {}
    ~LockedData() {
        if (bytes_)
            XGDataProviderUnlockData(provider_.get());
    }
    LockedData(LockedData&& other) noexcept
        : provider_(std::move(other.provider_)), bytes_(std::exchange(other.bytes_, nullptr)),
          size_(other.size_) {}
    LockedData& operator=(LockedData&&) = delete;

    // NULL when the contents cannot be locked.
    const std::byte* bytes() const { return bytes_; }
    std::size_t size() const { return size_; }

private:
    cf::Ref<CGDataProviderRef> provider_;
    const std::byte* bytes_;
    std::size_t size_;
};

} // namespace cg
