// CGFont.cpp: the font object: creation, lifetime, comparison.

#include "XGFont.h"
#include <CoreGraphics/CGFont.h>
#include <FontManager/FMLibrary.h>

#include "Core/Font/CGFontRecord.h"
#include "Core/Object/RuntimeObject.h"

#include <utility>

namespace {

CGFontRef makeFont(cg::FMFontPtr native) {
    const auto font = native ? cg::create<CGFont>(CGFontGetTypeID()) : nullptr;
    if (!font)
        return nullptr;
    font->font = std::move(native);
    font->metrics = FMFontGetMetrics(font->font.get());
    return font;
}

CFTypeRef copy(CFAllocatorRef, CFTypeRef object) {
    return XGFontCreateWithFMFont(cg::as<CGFontRef>(object)->font.get());
}

CFStringRef copyDescription(CFTypeRef object) {
    const auto font = cg::as<CGFontRef>(object);
    const auto type = cf::adopt(CFCopyTypeIDDescription(CFGetTypeID(object)));
    const auto name = cf::adopt(CGFontCopyFullName(font));
    return CFStringCreateWithFormat(nullptr, nullptr, CFSTR("<%@ %p [%p]>{FMFont: (%@)}"),
                                    static_cast<CFTypeRef>(type.get()), object,
                                    static_cast<const void*>(CFGetAllocator(object)),
                                    static_cast<CFTypeRef>(name.get()));
}

constexpr CFRuntimeClass kFontClass = {
    .className = "CGFont",
    .copy = copy,
    .finalize = cg::finalize<CGFont>,
    .equal = cg::equalBy<XGFontEqualToFont>,
    .copyDebugDescription = copyDescription,
};

} // namespace

CFTypeID CGFontGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kFontClass);
    return id;
}

CGFontRef XGFontCreateWithFMFont(struct FMFont* font) {
    return makeFont(cg::FMFontPtr(FMFontRetain(font)));
}

CGFontRef CGFontCreateWithDataProvider(CGDataProviderRef provider) {
    return makeFont(cg::FMFontPtr(FMFontCreateWithDataProvider(provider, 0, true)));
}

CGFontRef CGFontCreateWithFontName(CFStringRef name) {
    if (!name)
        return nullptr;
    return makeFont(cg::FMFontPtr(FMLibraryCopyFontWithName(FMLibraryGetShared(), name, 0)));
}

CGFontRef CGFontCreateCopyWithVariations(CGFontRef font, CFDictionaryRef variations) {
    if (!font)
        return nullptr;
    const auto copy = XGFontCreateWithFMFont(font->font.get());
    if (copy && variations)
        copy->variations = cf::adopt(CFDictionaryCreateCopy(nullptr, variations));
    return copy;
}

CGFontRef CGFontRetain(CGFontRef font) {
    return cg::retain(font);
}
void CGFontRelease(CGFontRef font) {
    cg::release(font);
}

bool XGFontEqualToFont(CGFontRef a, CGFontRef b) {
    return a && b && FMFontEqual(a->font.get(), b->font.get());
}

struct FMFont* XGFontGetFMFont(CGFontRef font) {
    return font ? font->font.get() : nullptr;
}

CFURLRef XGFontCopyURL(CGFontRef font) {
    return FMFontCopyLocationURL(XGFontGetFMFont(font));
}
