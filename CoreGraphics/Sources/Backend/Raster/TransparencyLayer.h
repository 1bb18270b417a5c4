// TransparencyLayer.h: a group that is drawn aside and put down at once.
#pragma once

#include "XGClipping.h"
#include <CoreFoundation/CFRef.h>

#include "Backend/Raster/Surface.h"
#include "include/core/SkBitmap.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace cg {

// Pixels over a part of what the parent shows, transparent at first. There are none before the
// first mark needs them, so that groups around groups cost little.
class TransparencyLayer {
public:
    // Over `area`, in the parent's columns and rows; `outer` is the clipping under which the layer
    // will be put down. NULL when memory runs out.
    static std::unique_ptr<TransparencyLayer> create(const Surface& parent, const SkIRect& area,
                                                     int deviceHeight, XGClippingRef outer,
                                                     const SkPaint& paint);

    Surface& surface() { return *surface_; }
    XGClippingRef outerClipping() const { return outer_.get(); }

    bool hasPixels() const { return hasPixels_; }
    // False when memory runs out.
    bool makePixels();
    // What the pixels take, made or not.
    std::uint64_t byteCount() const;
    // The group is drawn into its parent without being one.
    void giveUp() { isGivenUp_ = true; }
    bool isGivenUp() const { return isGivenUp_; }

    // Whether putting it down makes a difference where nothing was drawn.
    bool changesWhatItLeavesOut() const;
    // The group as an image over the device pixels that it covers.
    PlacedImage placed() const;
    // Puts the group onto its parent with the paint given at creation.
    void drawOnto(Surface& parent) const;

private:
    TransparencyLayer() = default;

    SkBitmap bitmap_; // Of no pixels where the clip lets nothing through.
    std::optional<Surface> surface_;
    cf::Ref<XGClippingRef> outer_;
    SkPaint paint_;
    bool hasPixels_ = false;
    bool isGivenUp_ = false;
};

} // namespace cg
