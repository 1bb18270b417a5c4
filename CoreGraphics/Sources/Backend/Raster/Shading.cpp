// Shading.cpp: shadings painted onto a surface.

#include "Backend/Raster/Shading.h"

#include "XGContext.h"

#include "Backend/Raster/PaintSetup.h"
#include "Backend/Raster/ShadingShader.h"
#include "Backend/Raster/SkiaConversions.h"

namespace cg {

void paintShading(Surface& surface, XGGStateRef state, uint32_t flags, CGShadingRef shading,
                  CGColorSpaceRef space) {
    if (surface.clip().isEmpty())
        return;
    SkMatrix toPixels = surface.deviceToPixels();
    if (!(flags & kXGContextGeometryInDeviceSpace))
        toPixels.preConcat(toSkia(*XGGStateGetCombinedCTM(state)));
    sk_sp<SkShader> shader =
        makeShadingShader(shading, toPixels, {space, XGGStateGetRenderingIntent(state)});
    SkMatrix toDevice;
    if (!shader || !surface.deviceToPixels().invert(&toDevice))
        return;
    SkPaint paint = PaintSetup::group(state);
    paint.setShader(std::move(shader));
    surface.drawRect(toDevice.mapRect(SkRect::Make(surface.bounds())), paint);
}

} // namespace cg
