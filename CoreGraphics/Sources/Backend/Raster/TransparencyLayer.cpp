// TransparencyLayer.cpp: the pixels of a group, and how they reach its parent.

#include "Backend/Raster/TransparencyLayer.h"

#include <new>

namespace cg {

std::unique_ptr<TransparencyLayer> TransparencyLayer::create(const Surface& parent,
                                                             int deviceHeight, XGClippingRef outer,
                                                             const SkPaint& paint) {
    std::unique_ptr<TransparencyLayer> layer(new (std::nothrow) TransparencyLayer);
    if (!layer)
        return nullptr;
    const SkIRect area = parent.clip().getBounds();
    const SkImageInfo info = SkImageInfo::MakeN32Premul(area.width(), area.height());
    if (!area.isEmpty()) {
        // Zeroed by the allocator, which has fresh pages for nothing.
        if (!layer->bitmap_.tryAllocPixelsFlags(info, SkBitmap::kZeroPixels_AllocFlag))
            return nullptr;
    }
    layer->surface_.emplace(layer->bitmap_.pixmap(), deviceHeight,
                            parent.origin() + area.topLeft());
    layer->outer_ = cf::retain(outer);
    layer->paint_ = paint;
    return layer;
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
