// PngProperties.cpp: the metadata of PNG files.

#include "PngProperties.h"

#include "ExifData.h"
#include "PngChunks.h"
#include "PropertyDictionary.h"

#include <ImageIO/CGImageProperties.h>

#include <cstring>
#include <string_view>

namespace imageio {
namespace {

Bytes exifChunk(const PngSession& png) {
    png_uint_32 size = 0;
    png_bytep bytes = nullptr;
    if (png_get_eXIf_1(png.png(), png.info(), &size, &bytes) == 0 || !bytes)
        return {};
    return {bytes, size};
}

void addTexts(const PngSession& png, CFMutableDictionaryRef properties) {
    static constexpr struct {
        std::string_view keyword;
        const CFStringRef* key;
    } kTexts[] = {
        {"Title", &kCGImagePropertyPNGTitle},
        {"Author", &kCGImagePropertyPNGAuthor},
        {"Description", &kCGImagePropertyPNGDescription},
        {"Copyright", &kCGImagePropertyPNGCopyright},
        {"Software", &kCGImagePropertyPNGSoftware},
        {"Creation Time", &kCGImagePropertyPNGCreationTime},
        {"Comment", &kCGImagePropertyPNGComment},
    };
    png_textp texts = nullptr;
    const int count = png_get_text(png.png(), png.info(), &texts, nullptr);
    for (int i = count - 1; i >= 0; --i) {
        for (const auto& [keyword, key] : kTexts) {
            if (keyword != texts[i].key || !texts[i].text)
                continue;
            const auto* const text = reinterpret_cast<const std::uint8_t*>(texts[i].text);
            setText(properties, *key, {text, std::strlen(texts[i].text)});
        }
    }
}

void addColors(const PngSession& png, CFMutableDictionaryRef properties) {
    double gamma = 0, x[8];
    int intent = 0;
    if (png_get_gAMA(png.png(), png.info(), &gamma) != 0)
        setReal(properties, kCGImagePropertyPNGGamma, gamma);
    if (png_get_sRGB(png.png(), png.info(), &intent) != 0)
        setInteger(properties, kCGImagePropertyPNGsRGBIntent, intent);
    if (png_get_cHRM(png.png(), png.info(), &x[0], &x[1], &x[2], &x[3], &x[4], &x[5], &x[6],
                     &x[7]) != 0)
        setReals(properties, kCGImagePropertyPNGChromaticities, x);
}

} // namespace

std::uint32_t pngOrientation(Bytes file, const PngSession& png) {
    const Bytes exif = exifChunk(png);
    if (!exif.empty())
        return ExifData(exif).orientation();
    const PngLateMetadata late(file);
    if (late.bytes().empty())
        return ExifData({}).orientation();
    PngSession session(late.bytes(), PngMetadata::Header);
    session.readInfo();
    return ExifData(exifChunk(session)).orientation();
}

void addPngProperties(Bytes file, CFMutableDictionaryRef properties) {
    PngSession png(file, PngMetadata::All);
    if (!png.readInfo())
        return;
    const auto own = makeProperties();
    setInteger(own.get(), kCGImagePropertyPNGInterlaceType,
               png_get_interlace_type(png.png(), png.info()));
    addColors(png, own.get());
    png_uint_32 x = 0, y = 0;
    int unit = PNG_RESOLUTION_UNKNOWN;
    if (png_get_pHYs(png.png(), png.info(), &x, &y, &unit) != 0 && unit == PNG_RESOLUTION_METER) {
        setInteger(own.get(), kCGImagePropertyPNGXPixelsPerMeter, x);
        setInteger(own.get(), kCGImagePropertyPNGYPixelsPerMeter, y);
    }
    const PngLateMetadata lateMetadata(file);
    PngSession late(lateMetadata.bytes(), PngMetadata::All);
    late.readInfo(); // Fails for want of pixels, having kept what it read.
    addTexts(late, own.get());
    addTexts(png, own.get()); // Of equal keywords the first text counts.
    setDictionary(properties, kCGImagePropertyPNGDictionary, own);
    const Bytes exif = exifChunk(png);
    ExifData(exif.empty() ? exifChunk(late) : exif).addProperties(properties);
}

} // namespace imageio
