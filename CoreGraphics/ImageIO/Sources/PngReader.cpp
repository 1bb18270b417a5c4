// PngReader.cpp: PNG headers and pixels.

#include "ImageReader.h"
#include "PngChunks.h"
#include "PngProperties.h"
#include "PngSession.h"

#include <algorithm>
#include <cmath>

namespace imageio {
namespace {

constexpr double kInchesPerMeter = 0.0254;

bool hasTransparency(const PngSession& png) {
    png_bytep alpha = nullptr;
    int count = 0;
    png_color_16p color = nullptr;
    if (png_get_tRNS(png.png(), png.info(), &alpha, &count, &color) == 0)
        return false;
    // A palette whose every entry is opaque after all may stay one.
    const bool isPalette = png_get_color_type(png.png(), png.info()) == PNG_COLOR_TYPE_PALETTE;
    return !isPalette || std::any_of(alpha, alpha + count, [](png_byte a) { return a != 255; });
}

// ---- Colour spaces.

// 1/2.2 within what a rounded value may be off: files that mean sRGB say so.
bool isUsualGamma(png_fixed_point gamma) {
    return gamma > 45000 && gamma < 46000;
}

bool hasUsualPrimaries(const PngSession& png) {
    double x[8];
    if (png_get_cHRM(png.png(), png.info(), &x[0], &x[1], &x[2], &x[3], &x[4], &x[5], &x[6],
                     &x[7]) == 0)
        return true;
    constexpr double kUsual[8] = {0.3127, 0.329, 0.64, 0.33, 0.3, 0.6, 0.15, 0.06};
    return std::equal(x, x + 8, kUsual, [](double a, double b) { return std::abs(a - b) < 0.001; });
}

// The primaries as the columns of a matrix to XYZ, after the sRGB ones where the file names none.
cf::Ref<CGColorSpaceRef> calibratedSpace(const PngSession& png, CGFloat gamma, bool isGray) {
    double m[9] = {0.4124, 0.2126, 0.0193, 0.3576, 0.7152, 0.1192, 0.1805, 0.0722, 0.9505};
    png_get_cHRM_XYZ(png.png(), png.info(), &m[0], &m[1], &m[2], &m[3], &m[4], &m[5], &m[6], &m[7],
                     &m[8]);
    CGFloat matrix[9];
    std::copy_n(m, 9, matrix);
    const CGFloat white[3] = {matrix[0] + matrix[3] + matrix[6], matrix[1] + matrix[4] + matrix[7],
                              matrix[2] + matrix[5] + matrix[8]};
    const CGFloat black[3] = {0, 0, 0}, gammas[3] = {gamma, gamma, gamma};
    return cf::adopt(isGray ? CGColorSpaceCreateCalibratedGray(white, black, gamma)
                            : CGColorSpaceCreateCalibratedRGB(white, black, gammas, matrix));
}

// The profile goes before sRGB, and that before gamma and primaries, as the format asks for.
cf::Ref<CGColorSpaceRef> colorSpace(const PngSession& png, std::size_t components) {
    png_charp name = nullptr;
    png_bytep profile = nullptr;
    png_uint_32 size = 0;
    int compression = 0, intent = 0;
    if (png_get_iCCP(png.png(), png.info(), &name, &compression, &profile, &size) != 0)
        return spaceOfProfile({profile, size}, components);
    png_fixed_point gamma = 0;
    const bool hasGamma = png_get_gAMA_fixed(png.png(), png.info(), &gamma) != 0 && gamma > 0;
    const bool isStandard = png_get_sRGB(png.png(), png.info(), &intent) != 0 ||
                            (hasGamma && isUsualGamma(gamma) && hasUsualPrimaries(png));
    cf::Ref<CGColorSpaceRef> space;
    if (isStandard && components == 3)
        space = cf::adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    else if (hasGamma && !isStandard)
        space =
            calibratedSpace(png, static_cast<CGFloat>(PNG_FP_1 / double(gamma)), components == 1);
    return space ? space : deviceSpace(components);
}

cf::Ref<CGColorSpaceRef> indexedSpace(const PngSession& png) {
    png_colorp palette = nullptr;
    int count = 0;
    if (png_get_PLTE(png.png(), png.info(), &palette, &count) == 0 || count < 1)
        return nullptr;
    static_assert(sizeof(png_color) == 3);
    const auto base = colorSpace(png, 3);
    return cf::adopt(CGColorSpaceCreateIndexed(base.get(), static_cast<std::size_t>(count) - 1,
                                               reinterpret_cast<const std::uint8_t*>(palette)));
}

// ---- Header.

void setResolution(const PngSession& png, ImageHeader& header) {
    png_uint_32 x = 0, y = 0;
    int unit = PNG_RESOLUTION_UNKNOWN;
    if (png_get_pHYs(png.png(), png.info(), &x, &y, &unit) == 0 || unit != PNG_RESOLUTION_METER)
        return;
    header.horizontalDPI = x * kInchesPerMeter;
    header.verticalDPI = y * kInchesPerMeter;
}

bool setPixelLayout(const PngSession& png, ImageHeader& header) {
    const bool hasColor = (png_get_color_type(png.png(), png.info()) & PNG_COLOR_MASK_COLOR) != 0;
    const std::size_t bits = header.depth == 16                                    ? 16
                             : header.isIndexed || (!hasColor && !header.hasAlpha) ? header.depth
                                                                                   : 8;
    const CGBitmapInfo order = bits == 16 ? kCGBitmapByteOrder16Big : kCGBitmapByteOrderDefault;
    if (header.isIndexed)
        return setLayout(header, 1, bits, kCGImageAlphaNone);
    if (header.hasAlpha)
        return setLayout(header, hasColor ? 4 : 2, bits, order | kCGImageAlphaLast);
    if (hasColor && bits == 8)
        return setLayout(header, 4, bits, kCGImageAlphaNoneSkipLast);
    return setLayout(header, hasColor ? 3 : 1, bits, order | kCGImageAlphaNone);
}

bool readHeader(Bytes file, ImageHeader& header) {
    PngSession png(file, PngMetadata::Header);
    if (!png.readInfo())
        return false;
    const png_byte type = png_get_color_type(png.png(), png.info());
    header.width = png_get_image_width(png.png(), png.info());
    header.height = png_get_image_height(png.png(), png.info());
    header.depth = png_get_bit_depth(png.png(), png.info());
    header.hasAlpha = (type & PNG_COLOR_MASK_ALPHA) != 0 || hasTransparency(png);
    header.isIndexed = type == PNG_COLOR_TYPE_PALETTE && !header.hasAlpha;
    header.space = header.isIndexed ? indexedSpace(png)
                                    : colorSpace(png, (type & PNG_COLOR_MASK_COLOR) != 0 ? 3 : 1);
    header.orientation = pngOrientation(file, png);
    setResolution(png, header);
    return header.space && setPixelLayout(png, header);
}

std::size_t decode(Bytes file, const ImageHeader& header, std::uint8_t* pixels) {
    PngSession png(file, PngMetadata::None);
    return png.readInfo() ? png.readRows(header, pixels) : 0;
}

// Follows the chunks to the one that ends the file.
bool isComplete(Bytes file) {
    PngChunks chunks(file);
    while (const auto chunk = chunks.next())
        if (chunk->name == pngName("IEND"))
            return true;
    return false;
}

} // namespace

// Deflate packs at most 1032 bytes into one, each of up to eight pixels.
constinit const ImageReader kPngReader = {readHeader, decode,     addPngProperties,
                                          nullptr,    isComplete, 8300};

} // namespace imageio
