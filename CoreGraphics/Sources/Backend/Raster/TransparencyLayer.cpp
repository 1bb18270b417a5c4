// TransparencyLayer.cpp: the pixels of a group, and how they reach its parent.

#include "Backend/Raster/TransparencyLayer.h"

#include "include/core/SkBlendMode.h"

#include <new>

namespace cg {

std::unique_ptr<TransparencyLayer> TransparencyLayer::create(const Surface& parent,
                                                             const SkIRect& area, int deviceHeight,
                                                             XGClippingRef outer,
                                                             const SkPaint& paint) {
    std::unique_ptr<TransparencyLayer> layer(new (std::nothrow) TransparencyLayer);
    if (!layer)
        return nullptr;
    const SkImageInfo info = SkImageInfo::MakeN32Premul(area.width(), area.height());
    layer->surface_.emplace(SkPixmap(info, nullptr, info.minRowBytes()), deviceHeight,
                            parent.origin() + area.topLeft());
    layer->outer_ = cf::retain(outer);
    layer->paint_ = paint;
    return layer;
}

std::uint64_t TransparencyLayer::byteCount() const {
    const SkImageInfo& info = surface_->pixels().info();
    return 4 * static_cast<std::uint64_t>(info.width()) * static_cast<std::uint64_t>(info.height());
}

bool TransparencyLayer::makePixels() {
    if (!surface_->bounds().isEmpty()) {
        // Zeroed by the allocator, which has fresh pages for nothing.
        if (!bitmap_.tryAllocPixelsFlags(surface_->pixels().info(),
                                         SkBitmap::kZeroPixels_AllocFlag))
            return false;
        surface_->movePixels(bitmap_.getPixels());
    }
    hasPixels_ = true;
    return true;
}

// By Porter and Duff's operators in whose result the destination is multiplied by the source's
// opacity, or is left out.
bool TransparencyLayer::changesWhatItLeavesOut() const {
    switch (paint_.getBlendMode_or(SkBlendMode::kSrcOver)) {
    case SkBlendMode::kClear:
    case SkBlendMode::kSrc:
    case SkBlendMode::kSrcIn:
    case SkBlendMode::kSrcOut:
    case SkBlendMode::kDstIn:
    case SkBlendMode::kDstATop:
        return true;
    default:
        return false;
    }
}

PlacedImage TransparencyLayer::placed() const {
    PlacedImage image = {.pixels = surface_->pixels(),
                         .rect = SkRect::Make(surface_->pixels().dimensions())};
    if (!surface_->deviceToPixels().invert(&image.toDevice))
        image.rect = SkRect::MakeEmpty();
    return image;
}

void TransparencyLayer::drawOnto(Surface& parent) const {
    parent.drawPixels(surface_->pixels(), surface_->origin() - parent.origin(), paint_);
}

} // namespace cg
