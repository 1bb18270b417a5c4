// GroupDrawing.cpp: where the raster backend's marks go, and how groups of them are put down.

#include "Backend/Raster/DeviceClip.h"
#include "Backend/Raster/ImageShadow.h"
#include "Backend/Raster/RasterBackend.h"
#include "Core/Object/Diagnostics.h"

#include <algorithm>

namespace cg {

TransparencyLayer* RasterBackend::innermostLayer() const {
    const auto found = std::find_if(layers_.rbegin(), layers_.rend(),
                                    [](const auto& layer) { return layer && !layer->isGivenUp(); });
    return found == layers_.rend() ? nullptr : found->get();
}

Surface& RasterBackend::surface() {
    TransparencyLayer* const layer = innermostLayer();
    return layer ? layer->surface() : *base_;
}

// The surface that marks go to, clipped as the state says, but not ready for them. The state tells
// when its clip changed.
Surface& RasterBackend::clippedSurface(XGGStateRef state, uint32_t flags) {
    const TransparencyLayer* const layer = innermostLayer();
    Surface& target = surface();
    const bool hasChanged = XGGStateShouldRasterizeClipRegion(state);
    if (clipIsStale_ || hasChanged) {
        applyClipping(target, XGGStateGetClipping(state), layer ? layer->outerClipping() : nullptr,
                      antialiasing(state, flags));
        XGGStateSetShouldRasterizeClipRegion(state, false);
        clipIsStale_ = false;
        // Where saves and restores do not match, a surface beneath may have the same state.
        outerClipsAreStale_ = outerClipsAreStale_ || (layer && hasChanged);
    }
    return target;
}

Surface& RasterBackend::surfaceUnderClip(XGGStateRef state, uint32_t flags) {
    // A layer without memory for its pixels is passed over; what it should have held goes below.
    TransparencyLayer* layer = innermostLayer();
    while (layer && !layer->hasPixels() && !makePixels(*layer)) {
        layer = innermostLayer();
        clipIsStale_ = true;
    }
    Surface& target = clippedSurface(state, flags);
    if (!layer && !takeBackPixels()) {
        target.clipOut();
        clipIsStale_ = true;
    }
    return target;
}

// Whatever the depth of groups, their pixels leave memory for others.
bool RasterBackend::makePixels(TransparencyLayer& layer) {
    constexpr std::uint64_t kMostBytes = std::uint64_t{2} << 30;
    std::uint64_t bytes = layer.byteCount();
    bool isFirst = true;
    for (const auto& open : layers_) {
        bytes += open && open->hasPixels() ? open->byteCount() : 0;
        isFirst = isFirst && open && !open->isGivenUp();
    }
    if (bytes <= kMostBytes && layer.makePixels())
        return true;
    if (isFirst) // Of many within each other.
        CG_LOG_ERROR("Failed to allocate a transparency layer, drawing without it");
    layer.giveUp();
    return false;
}

// A group with a shadow is drawn beyond its clip as well, as far as it may throw shadow into it.
void RasterBackend::beginTransparencyLayer(XGGStateRef state, uint32_t flags) {
    // The parent is only looked at: its pixels may stay shared, or unmade.
    const Surface& parent = clippedSurface(state, flags);
    const SkPaint paint = PaintSetup::group(state);
    SkIRect area = parent.clip().getBounds();
    if (XGGStateHasShadow(state))
        area = areaThrowingShadowInto(area, shadowOf(state, paint));
    layers_.push_back(
        TransparencyLayer::create(parent, area, deviceHeight(), XGGStateGetClipping(state), paint));
    if (layers_.back())
        clipIsStale_ = true;
    else
        CG_LOG_ERROR("Failed to allocate a transparency layer, drawing without it");
}

void RasterBackend::endTransparencyLayer(XGGStateRef state, uint32_t flags) {
    if (layers_.empty())
        return;
    const std::unique_ptr<TransparencyLayer> ended = std::move(layers_.back());
    layers_.pop_back();
    if (!ended || ended->isGivenUp())
        return;
    // The surface beneath kept its clip while this one was drawn.
    clipIsStale_ = outerClipsAreStale_;
    outerClipsAreStale_ = outerClipsAreStale_ && innermostLayer();
    if (!ended->hasPixels() && !(ended->changesWhatItLeavesOut() && ended->makePixels()))
        return;
    Surface& target = surfaceUnderClip(state, flags);
    if (XGGStateHasShadow(state))
        drawImageShadow(target, deviceHeight(), ended->placed(),
                        shadowOf(state, PaintSetup::group(state)));
    ended->drawOnto(target);
}

} // namespace cg
