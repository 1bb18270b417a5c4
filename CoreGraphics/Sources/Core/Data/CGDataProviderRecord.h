// CGDataProviderRecord.h: what a provider is made of, and what the four kinds have in common.
#pragma once

#include "XGDataProvider.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <Host/Host.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <mutex>
#include <optional>

namespace cg {

// The three forms in which pixel data may be lent.
enum class DataVariant : std::uint8_t { Plain, Planar, Premultiplied };

// A pointer on loan, and how often it has been asked for.
struct LentPointer {
    const void* pointer = nullptr;
    std::int32_t locks = 0;
};

// Where a crop lies in its source.
struct CropGeometry {
    std::int64_t byteOffset = 0;
    std::size_t sourceRowBytes = 0;
    std::size_t usedBytesPerRow = 0;
    std::size_t rows = 0;
};

struct ProviderAbilities {
    bool canRewind = true;
    bool canSkip = true;
    bool isDirect = true;
};

// What the kinds do each in its own way. The provider's mutex is held; offsets and counts have been
// cut to the size, where it is known, and counts are not 0.
struct ProviderOperations {
    std::int64_t (*size)(CGDataProvider&);
    const void* (*lock)(CGDataProvider&, DataVariant);
    void (*unlock)(CGDataProvider&, DataVariant);
    std::optional<std::size_t> (*read)(CGDataProvider&, void* buffer, std::int64_t offset,
                                       std::size_t count);
    bool (*rewind)(CGDataProvider&);
    std::optional<std::int64_t> (*skip)(CGDataProvider&, std::int64_t count);
    ProviderAbilities (*abilities)(CGDataProvider&);
};

extern const ProviderOperations kDirectOperations;
extern const ProviderOperations kSequentialOperations;
extern const ProviderOperations kDataOperations;
extern const ProviderOperations kCroppedOperations;

// Nobody knows how long the stream is.
inline constexpr std::int64_t kUnknownSize = -1;

} // namespace cg

struct CGDataProvider {
    CFRuntimeBase base;
    // Guards all below, but for what is set at creation, and the caller's callbacks, which run
    // under it. A crop takes its source's after its own.
    host::Mutex mutex;
    const cg::ProviderOperations* operations = nullptr; // The kind.
    void* info = nullptr;
    std::int64_t size = cg::kUnknownSize;

    XGDataProviderDirectCallbacks direct = {};
    CGDataProviderSequentialCallbacks sequential = {};
    CGDataProviderSkipBytesCallback skipBytes = nullptr; // Of the callbacks without version.
    CGDataProviderReleaseDataCallback releaseData = nullptr;

    std::array<cg::LentPointer, 3> lent; // By DataVariant; of the data kind its memory is first.
    std::int64_t position = 0;           // Of a stream.
    cf::Ref<CFDataRef> data;             // Wrapped, or read from a stream or a crop.
    cf::Ref<CGDataProviderRef> source;   // Of a crop.
    cg::CropGeometry crop;
    cf::Ref<CFURLRef> url;
    // The bytes stay what they are while the provider lives: they are its own, or their owner waits
    // to be told when it no longer needs them. Of callbacks nobody knows.
    bool keepsBytes = false;

    CGDataProvider() = default;
    CGDataProvider(const CGDataProvider&) = delete;
    CGDataProvider& operator=(const CGDataProvider&) = delete;
    ~CGDataProvider();

    cg::LentPointer& lentAs(cg::DataVariant variant) {
        return lent[static_cast<std::size_t>(variant)];
    }
};

namespace cg {

// A provider of that kind with nothing in it; empty when memory runs out.
cf::Ref<CGDataProviderRef> makeProvider(const ProviderOperations& kind);

// The routines behind the exported functions of the same names, for a provider whose mutex is held.
std::int64_t sizeUnsafe(CGDataProvider& provider);
std::optional<std::size_t> readUnsafe(CGDataProvider& provider, void* buffer, std::int64_t offset,
                                      std::size_t count);
std::optional<std::int64_t> skipUnsafe(CGDataProvider& provider, std::int64_t count);

// The whole contents, read from the start; empty when they cannot be had to the last byte.
cf::Ref<CFDataRef> readWhole(CGDataProvider& provider, std::int64_t size);
// Turns a provider into one of the data kind over what was read of it, for good.
const void* becomeData(CGDataProvider& provider, cf::Ref<CFDataRef> data);

// Lends a pointer that `acquire()` supplies the first time; NULL when it supplies none.
template <typename Acquire>
const void* lend(LentPointer& lent, Acquire acquire) {
    if (lent.locks == std::numeric_limits<std::int32_t>::max())
        return nullptr;
    if (lent.locks == 0)
        lent.pointer = acquire();
    if (lent.pointer)
        ++lent.locks;
    return lent.pointer;
}

// Takes one loan back; the last one goes back through `giveBack(pointer)`. One that was never made
// is no loan.
template <typename GiveBack>
void takeBack(LentPointer& lent, GiveBack giveBack) {
    if (lent.locks == 0 || --lent.locks > 0)
        return;
    giveBack(lent.pointer);
    lent.pointer = nullptr;
}

} // namespace cg
