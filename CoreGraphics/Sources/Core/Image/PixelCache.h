// PixelCache.h: the converted pixels that are kept with an image.
#pragma once

#include "Core/Image/CGImageRecord.h"
#include "DrawablePixels.h"

#include <array>
#include <memory>
#include <mutex>

namespace cg {

// Immutable once made, and shared by the image's cache and whoever draws from it.
struct ConvertedPixels {
    CFRuntimeBase base;
    DrawableFormat format = DrawableFormat::BGRX8;
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t bytesPerRow = 0;
    std::unique_ptr<std::byte[]> pixels;
};
using ConvertedPixelsRef = cf::Ref<const ConvertedPixels*>;

// What an image was converted for. The destination's space is held for as long as it is compared by
// its address.
struct ConversionKey {
    cf::Ref<CGColorSpaceRef> space;
    CGColorRenderingIntent intent = kCGRenderingIntentDefault;

    friend bool operator==(const ConversionKey& a, const ConversionKey& b) {
        return a.space.get() == b.space.get() && a.intent == b.intent;
    }
};

// Two conversions: most images are drawn for one destination only, some for a bitmap and for a
// layer of it that differs. A third takes the place of the older.
class PixelCache {
public:
    // The image's cache, made by whichever thread is first; NULL when memory runs out.
    static PixelCache* of(CGImageRef image);

    // What was converted before, or what `convert()` gives now. The lock is held meanwhile, so that
    // no conversion is made twice; a provider's mutex comes after it.
    template <typename Convert>
    ConvertedPixelsRef find(const ConversionKey& key, Convert convert) {
        const std::lock_guard guard(mutex_);
        for (const Entry& entry : entries_)
            if (entry.pixels && entry.key == key)
                return entry.pixels;
        Entry entry = {key, convert()};
        if (entry.pixels)
            entries_[std::exchange(next_, 1 - next_)] = entry;
        return entry.pixels;
    }

    // Forgets all conversions; who draws from one keeps it as long.
    void purge() {
        const std::lock_guard guard(mutex_);
        entries_ = {};
    }

private:
    struct Entry {
        ConversionKey key;
        ConvertedPixelsRef pixels;
    };

    std::mutex mutex_; // Guards all below.
    std::array<Entry, 2> entries_;
    std::size_t next_ = 0;
};

} // namespace cg
