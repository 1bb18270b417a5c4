// XGImagePixels.cpp: pixel reading as siblings call it.

#include "XGImagePixels.h"

#include "Core/Image/CGImageRecord.h"
#include "PixelReader.h"

namespace {

std::optional<cg::ComponentType> componentType(uint32_t bits) {
    switch (bits) {
    case 8:
        return cg::ComponentType::Unsigned8;
    case 16:
        return cg::ComponentType::Unsigned16;
    case 32:
        return cg::ComponentType::Float;
    default:
        return std::nullopt;
    }
}

cg::AlphaUse alphaUse(const XGPixelRequest& request) {
    if (!request.hasAlpha)
        return cg::AlphaUse::None;
    return request.premultiplied ? cg::AlphaUse::Premultiplied : cg::AlphaUse::Straight;
}

} // namespace

bool XGImageReadPixels(CGImageRef image, const XGPixelRequest* request, size_t firstRow,
                       size_t rowCount, void* out, size_t outBytesPerRow) {
    if (!image || !request || !out)
        return false;
    const auto type = componentType(request->bitsPerComponent);
    if (!type || firstRow > image->height || rowCount > image->height - firstRow)
        return false;
    const auto reader = cg::PixelReader::of(image, {.space = request->space,
                                                    .type = *type,
                                                    .alpha = alphaUse(*request),
                                                    .intent = image->intent});
    if (!reader || outBytesPerRow / reader->bytesPerPixel() < image->width)
        return false;
    return reader->readRows(firstRow, rowCount, static_cast<std::byte*>(out), outBytesPerRow);
}
