// FMFontMetrics.cpp: measures, where they come from, and what is read off them.

#include <FontManager/FMFont.h>

#include "Core/Object/Diagnostics.h"
#include "Font/FMFontRecord.h"
#include "Font/FaceMetrics.h"
#include "Font/LibraryQueries.h"

#include <mutex>

namespace {

// With the font locked. Of a font that its database knows, the measures are there or the database
// is broken: nothing that is drawn with made-up ones would be right.
void learnMetrics(FMFont& font) {
    const FMLibraryRef library = font.library.load(std::memory_order_acquire);
    if (FMLibraryGetFontMetrics(library, FMFontGetFontId(&font), &font.metrics)) {
        font.set(fm::kStatusMetricsValid);
        return;
    }
    if (font.isPermanent.load(std::memory_order_relaxed))
        return;
    const cf::Ref name = cf::adopt(FMFontCopyPostScriptName(&font, false));
    CG_LOG_AS(kHostLogFault, "FMFontGetMetrics", "Metrics missing for non permanent %@",
              static_cast<CFTypeRef>(name.get()));
    HostAbortWithBacktrace();
}

} // namespace

void fm::buildFromFace(FMFont& font, FT_Face face) {
    font.permFlags.store(hasColorBitmaps(face) ? kFMFontPermHasColorBitmap : 0,
                         std::memory_order_relaxed);
    font.metrics = readMetrics(face);
    font.set(kStatusMetricsValid);
}

const FMFontMetrics* FMFontGetMetrics(FMFontRef font) {
    if (!font)
        return nullptr;
    if (!font->has(fm::kStatusMetricsValid) && font->fontId.load(std::memory_order_relaxed) != 0) {
        const std::lock_guard hold(font->mutex);
        if (!font->has(fm::kStatusMetricsValid))
            learnMetrics(*font);
    }
    return &font->metrics;
}

CGFloat FMFontGetHeightMultiple(FMFontRef font) {
    const FMFontMetrics* const metrics = FMFontGetMetrics(font);
    return metrics ? metrics->heightMultiple : 0;
}

CGFloat FMFontGetHeightMultipleForUIKit(FMFontRef font) {
    const FMFontMetrics* const metrics = FMFontGetMetrics(font);
    return metrics ? metrics->heightMultipleForUIKit : 0;
}

CFStringRef FMFontGetWeightString(int32_t weight) {
    // Deliberate: the bands are as uneven as the weights that these words stand for.
    if (weight < -799)
        return CFSTR("ultralight");
    if (weight < -599)
        return CFSTR("thin");
    if (weight < -399)
        return CFSTR("light");
    if (weight <= 0)
        return CFSTR("regular");
    if (weight <= 230)
        return CFSTR("medium");
    if (weight <= 300)
        return CFSTR("semibold");
    if (weight <= 400)
        return CFSTR("bold");
    if (weight <= 560)
        return CFSTR("heavy");
    return weight <= 620 ? CFSTR("black") : CFSTR("unknown");
}

bool FMFontIsSerif(FMFontRef font) {
    const FMFontMetrics* const metrics = FMFontGetMetrics(font);
    // Classes of the OS/2 table: old style, transitional, modern, clarendon and slab serifs, and
    // freeform ones. 6 is not in use.
    switch (metrics ? metrics->traits >> 28 : 0) {
    case 1:
    case 2:
    case 3:
    case 4:
    case 5:
    case 7:
        return true;
    default:
        return false;
    }
}
