// Renderer.cpp: walks a document and draws it.

#include "Renderer.h"

#include "Filters.h"
#include "Images.h"
#include "Markers.h"
#include "Masks.h"
#include "Paint.h"
#include "Shapes.h"
#include "Text.h"

namespace svg {

namespace {

// CSS has no name for the library's other modes.
struct BlendRow {
    std::string_view name;
    CGBlendMode mode;
};

constexpr BlendRow kBlendModes[] = {
    {"multiply", kCGBlendModeMultiply},     {"screen", kCGBlendModeScreen},
    {"overlay", kCGBlendModeOverlay},       {"darken", kCGBlendModeDarken},
    {"lighten", kCGBlendModeLighten},       {"color-dodge", kCGBlendModeColorDodge},
    {"color-burn", kCGBlendModeColorBurn},  {"hard-light", kCGBlendModeHardLight},
    {"soft-light", kCGBlendModeSoftLight},  {"difference", kCGBlendModeDifference},
    {"exclusion", kCGBlendModeExclusion},   {"hue", kCGBlendModeHue},
    {"saturation", kCGBlendModeSaturation}, {"color", kCGBlendModeColor},
    {"luminosity", kCGBlendModeLuminosity}, {"plus-lighter", kCGBlendModePlusLighter},
};

CGBlendMode blendModeNamed(std::string_view name) {
    for (const BlendRow& row : kBlendModes)
        if (row.name == name)
            return row.mode;
    return kCGBlendModeNormal;
}

// Elements that would leave marks if we could draw them; the others hold definitions and notes.
bool leavesMarks(Element element) {
    return element.is("foreignObject");
}

} // namespace

// Visibility hides a shape alone, as children may be visible again; display hides a whole branch.
void Renderer::draw(const Occurrence& occurrence) {
    const Style& style = occurrence.style;
    if (!style.isDisplayed || style.opacity == 0)
        return;
    const Path path = shapePath(occurrence);
    const bool isText = occurrence.element.is("text");
    if (!path && !isText && !isContainer(occurrence) && !occurrence.element.is("image")) {
        if (leavesMarks(occurrence.element))
            scene_.report.cannotDraw(occurrence.element.name());
        return;
    }
    if ((path || occurrence.element.is("image")) && !style.isVisible)
        return;
    const SavedState saved(context_);
    CGContextConcatCTM(context_, transformOf(occurrence.element));
    drawGroup(occurrence, path.get());
}

// What has an opacity, a blend mode or a life of its own is drawn apart and composited as a whole.
// A layer costs a copy of the picture, which a lone colour can do without.
void Renderer::drawGroup(const Occurrence& occurrence, CGPathRef path) {
    const Style& style = occurrence.style;
    const bool blends = !style.blendMode.empty();
    const bool folds = path && paintsOnce(style) && !blends && !hasMarkers(occurrence) &&
                       !hasFilter(scene_, occurrence);
    const auto unfiltered = [&](CGContextRef target) {
        Renderer(scene_, target).drawContent(occurrence, path, folds ? style.opacity : 1);
    };
    const auto content = [&] {
        drawMasked(scene_, context_, occurrence, [&] {
            clipPaths_.limit(occurrence,
                             [&] { drawFiltered(scene_, context_, occurrence, path, unfiltered); });
        });
    };
    if (folds || (style.opacity == 1 && !blends && !style.isIsolated))
        return content();
    CGContextSetAlpha(context_, CGFloat(style.opacity));
    CGContextSetBlendMode(context_, blendModeNamed(style.blendMode));
    const TransparencyLayer layer(context_);
    content();
}

void Renderer::drawContent(const Occurrence& occurrence, CGPathRef path, double opacity) {
    if (path) {
        paintShape(scene_, context_, occurrence, path, opacity);
        drawMarkers(scene_, context_, occurrence, path);
    } else if (occurrence.element.is("image")) {
        drawImage(scene_, context_, occurrence);
    } else if (occurrence.element.is("text")) {
        drawText(scene_, context_, occurrence);
    } else {
        drawInterior(occurrence);
    }
}

// The viewport's clip is given in the space outside, before the view box maps the children.
void Renderer::drawInterior(const Occurrence& occurrence) {
    const SavedState saved(context_);
    const Interior interior = interiorOf(scene_, occurrence);
    if (interior.clip)
        CGContextClipToRect(context_, *interior.clip);
    CGContextConcatCTM(context_, interior.transform);
    for (const Occurrence& child : interior.children)
        draw(child);
}

Context makeBitmap(std::size_t width, std::size_t height) {
    const ColorSpace rgb(CGColorSpaceCreateDeviceRGB());
    constexpr std::size_t bitsPerComponent = 8, bytesPerPixel = 4;
    return Context(CGBitmapContextCreate(
        nullptr, width, height, bitsPerComponent, width * bytesPerPixel, rgb.get(),
        CGBitmapInfo(kCGImageAlphaPremultipliedFirst) | kCGBitmapByteOrder32Little));
}

Context render(const Document& document, std::size_t width, std::size_t height, Report& report) {
    Context context = makeBitmap(width, height);
    if (!context)
        return nullptr;
    // User space starts at the bottom with y up; an SVG picture starts at the top with y down.
    CGContextTranslateCTM(context.get(), 0, CGFloat(height));
    CGContextScaleCTM(context.get(), 1, -1);

    Scene scene = {document, report};
    Occurrence root = occurInPlace(scene, document.root());
    root.viewport = {double(width), double(height)};
    Renderer(scene, context.get()).draw(root);
    CGContextFlush(context.get());
    return context;
}

} // namespace svg
