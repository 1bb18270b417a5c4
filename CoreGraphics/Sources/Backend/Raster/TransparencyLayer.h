// TransparencyLayer.h: a group that is drawn aside and put down at once.
#pragma once

#include "XGClipping.h"
#include <CoreFoundation/CFRef.h>

#include "Backend/Raster/Surface.h"
#include "include/core/SkBitmap.h"

#include <memory>
#include <optional>

namespace cg {

// Pixels over the part of the parent that its clip lets through, transparent at first.
class TransparencyLayer {
public:
    // `outer` is the clipping under which the layer will be put down. NULL when memory runs out.
    static std::unique_ptr<TransparencyLayer> create(const Surface& parent, int deviceHeight,
                                                     XGClippingRef outer, const SkPaint& paint);

    Surface& surface() { return *surface_; }
    XGClippingRef outerClipping() const { return outer_.get(); }
    // The group as an image over the device pixels that it covers.
    PlacedImage placed() const;
    // Puts the group onto its parent with the paint given at creation.
    void drawOnto(Surface& parent) const;

    std::unique_ptr<TransparencyLayer> below; // The layer that this one was begun in.

private:
    TransparencyLayer() = default;

    SkBitmap bitmap_; // Of no pixels where the clip lets nothing through.
    std::optional<Surface> surface_;
    cf::Ref<XGClippingRef> outer_;
    SkPaint paint_;
};

} // namespace cg
