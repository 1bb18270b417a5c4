// FMFontVariations.cpp: a font's axes of variation and named styles.

#include <FontManager/FMFontTables.h>

#include "Face/Variations.h"
#include "Font/FaceUse.h"

namespace {

// Gathered with the font locked, so that no lock is held when they are handed out.
fm::RecordList<fm::VariationAxis> axesOf(FMFontRef font) {
    const fm::FaceUse use(font);
    if (!use)
        return {};
    return fm::Variations(use.face()).axes(font->cache.harfBuzzFace(use.face()));
}

fm::RecordList<fm::NamedStyle> namedStylesOf(FMFontRef font) {
    const fm::FaceUse use(font);
    if (!use)
        return {};
    return fm::Variations(use.face()).namedStyles(font->cache.harfBuzzFace(use.face()));
}

} // namespace

CFIndex FMFontGetMMVariationAxisCount(FMFontRef font) {
    const fm::FaceUse use(font);
    return use ? fm::Variations(use.face()).axisCount() : 0;
}

CFIndex FMFontGetMMVariationDesignCount(FMFontRef font) {
    const fm::FaceUse use(font);
    return use ? fm::Variations(use.face()).designCount() : 0;
}

CFIndex FMFontGetMMVariationNamedStyleCount(FMFontRef font) {
    const fm::FaceUse use(font);
    return use ? fm::Variations(use.face()).namedStyleCount() : 0;
}

bool FMFontIterateMMVariationAxes(FMFontRef font, FMVariationAxisFunction function, void* context) {
    if (!function)
        return false;
    const auto axes = axesOf(font);
    for (const auto& axis : axes) {
        const FMVariationAxis record = {axis.name.get(), axis.tag, axis.minimum, axis.maximum,
                                        axis.defaultValue};
        function(&record, context);
    }
    return !axes.empty();
}

bool FMFontIterateMMVariationNamedStyles(FMFontRef font, FMVariationNamedStyleFunction function,
                                         void* context) {
    if (!function)
        return false;
    const auto styles = namedStylesOf(font);
    for (const auto& style : styles) {
        const FMVariationNamedStyle record = {style.name.get(), style.postScriptName.get(),
                                              style.coordinates.data(),
                                              static_cast<CFIndex>(style.coordinates.size())};
        function(&record, context);
    }
    return !styles.empty();
}
