// CGFontVariations.cpp: the axes along which a font varies.

#include <CoreFoundation/CFConstantString.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreGraphics/CGFont.h>
#include <FontManager/FMFontTables.h>

#include "Core/Font/CGFontRecord.h"

#include <mutex>

CF_CONST_STRING_DECL(kCGFontVariationAxisName, "CGFontVariationAxisName");
CF_CONST_STRING_DECL(kCGFontVariationAxisMinValue, "CGFontVariationAxisMinValue");
CF_CONST_STRING_DECL(kCGFontVariationAxisMaxValue, "CGFontVariationAxisMaxValue");
CF_CONST_STRING_DECL(kCGFontVariationAxisDefaultValue, "CGFontVariationAxisDefaultValue");

namespace {

cf::Ref<CFMutableDictionaryRef> makeDictionary() {
    return cf::adopt(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                               &kCFTypeDictionaryValueCallBacks));
}

// A 16.16 fixed-point number as one that callers can read.
void setNumber(CFMutableDictionaryRef dictionary, CFStringRef key, int32_t fixed) {
    const CGFloat value = static_cast<CGFloat>(fixed) / 65536;
    const auto number = cf::adopt(CFNumberCreate(nullptr, kCFNumberFloat32Type, &value));
    if (dictionary && number)
        CFDictionarySetValue(dictionary, key, number.get());
}

cf::Ref<CFMutableDictionaryRef> valuesOf(const FMVariationAxis& axis) {
    auto values = makeDictionary();
    setNumber(values.get(), kCGFontVariationAxisMinValue, axis.minimum);
    setNumber(values.get(), kCGFontVariationAxisMaxValue, axis.maximum);
    setNumber(values.get(), kCGFontVariationAxisDefaultValue, axis.defaultValue);
    return values;
}

void appendAxis(const FMVariationAxis* axis, void* array) {
    const auto values = valuesOf(*axis);
    if (!values)
        return;
    if (axis->name)
        CFDictionarySetValue(values.get(), kCGFontVariationAxisName, axis->name);
    CFArrayAppendValue(static_cast<CFMutableArrayRef>(array), values.get());
}

void addNamedAxis(const FMVariationAxis* axis, void* dictionary) {
    const auto values = axis->name ? valuesOf(*axis) : nullptr;
    if (values)
        CFDictionarySetValue(static_cast<CFMutableDictionaryRef>(dictionary), axis->name,
                             values.get());
}

cf::Ref<CFDictionaryRef> variationsOf(FMFontRef font) {
    const auto axes = makeDictionary();
    if (!axes || !FMFontIterateMMVariationAxes(font, addNamedAxis, axes.get()) ||
        CFDictionaryGetCount(axes.get()) == 0)
        return nullptr;
    return cf::adopt(CFDictionaryCreateCopy(nullptr, axes.get()));
}

} // namespace

CFArrayRef CGFontCopyVariationAxes(CGFontRef font) {
    const FMFontRef native = XGFontGetFMFont(font);
    if (FMFontGetMMVariationAxisCount(native) <= 0)
        return nullptr;
    const auto axes = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    if (!axes || !FMFontIterateMMVariationAxes(native, appendAxis, axes.get()))
        return nullptr;
    return CFArrayCreateCopy(nullptr, axes.get());
}

CFDictionaryRef CGFontCopyVariations(CGFontRef font) {
    if (!font)
        return nullptr;
    std::call_once(font->variationsOnce, [font] {
        if (!font->variations)
            font->variations = variationsOf(font->font.get());
    });
    return cf::Ref(font->variations).release();
}
