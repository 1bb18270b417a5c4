// Images.cpp: the image files that a document shows.

#include "Images.h"

#include <ImageIO/ImageIO.h>

#include <string>

namespace svg {

namespace {

using Object = std::unique_ptr<const void, Releaser<CFRelease>>;

CFURLRef url(const Object& object) {
    return static_cast<CFURLRef>(object.get());
}

// Links are relative to the document, and lead to files and to the bytes in the link itself.
Object urlOf(const Document& document, const std::string& link) {
    const Object base(CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>(document.fileName().data()),
        CFIndex(document.fileName().size()), false));
    return Object(CFURLCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(link.data()),
                                       CFIndex(link.size()), kCFStringEncodingUTF8, url(base)));
}

// Editors break the lines of long data URLs.
std::string withoutSpace(std::string text) {
    std::erase_if(text, [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
    return text;
}

Image load(const Document& document, const std::string& link) {
    const Object location = urlOf(document, link.starts_with("data:") ? withoutSpace(link) : link);
    const std::unique_ptr<std::remove_pointer_t<CGDataProviderRef>, Releaser<CGDataProviderRelease>>
        file(CGDataProviderCreateWithURL(url(location)));
    const Object source(CGImageSourceCreateWithDataProvider(file.get(), nullptr));
    return Image(CGImageSourceCreateImageAtIndex(
        static_cast<CGImageSourceRef>(const_cast<void*>(source.get())), 0, nullptr));
}

// A side that is not given is the image's own, or follows from the other by its proportions.
Size sizeOf(const Occurrence& occurrence, CGImageRef image) {
    const Size own = {double(CGImageGetWidth(image)), double(CGImageGetHeight(image))};
    Size size = {occurrence.length("width", Axis::X, -1), occurrence.length("height", Axis::Y, -1)};
    if (size.width < 0)
        size.width = size.height < 0 ? own.width : size.height * own.width / own.height;
    if (size.height < 0)
        size.height = size.width * own.height / own.width;
    return size;
}

} // namespace

void drawImage(Scene& scene, CGContextRef context, const Occurrence& occurrence) {
    const auto link = occurrence.element.link();
    const Image image = link ? load(scene.document, *link) : nullptr;
    if (!image) {
        if (link)
            scene.report.warn("an image file cannot be read");
        return;
    }
    const Size size = sizeOf(occurrence, image.get());
    if (!(size.width > 0 && size.height > 0))
        return;
    const double x = occurrence.length("x", Axis::X), y = occurrence.length("y", Axis::Y);
    const auto width = double(CGImageGetWidth(image.get()));
    const auto height = double(CGImageGetHeight(image.get()));
    const AspectRatio ratio = parseAspectRatio(
        occurrence.element.attribute("preserveAspectRatio").value_or(std::string()));

    const SavedState saved(context);
    CGContextClipToRect(context, toRect(x, y, size.width, size.height));
    CGContextTranslateCTM(context, toCoordinate(x), toCoordinate(y));
    CGContextConcatCTM(context, fitViewBox({0, 0, width, height}, ratio, size.width, size.height));
    // Images stand upright where y runs up.
    CGContextTranslateCTM(context, 0, CGFloat(height));
    CGContextScaleCTM(context, 1, -1);
    CGContextSetInterpolationQuality(context, occurrence.style.isSmoothed ? kCGInterpolationHigh
                                                                          : kCGInterpolationNone);
    CGContextDrawImage(context, toRect(0, 0, width, height), image.get());
}

} // namespace svg
