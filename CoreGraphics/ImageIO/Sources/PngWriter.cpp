// PngWriter.cpp: PNG files, by libpng.

#include "PngWriter.h"

#include <CoreFoundation/CFData.h>

#include "ByteSink.h"
#include "Core/Object/Diagnostics.h"
#include "PngPalette.h"
#include "WrittenPixels.h"

#include <png.h>

#include <bit>
#include <cmath>
#include <csetjmp>
#include <optional>

namespace imageio {
namespace {

// libpng leaves a failure by a jump, over frames that must have nothing to destroy: every call of
// it that can fail stands in a function passed to `run`.
class PngFile {
public:
    explicit PngFile(ByteSink& sink) : sink_(sink) {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, fail, warn);
        info_ = png_ ? png_create_info_struct(png_) : nullptr;
        if (png_)
            png_set_write_fn(png_, this, write, [](png_structp) {});
    }
    ~PngFile() { png_destroy_write_struct(&png_, &info_); }
    PngFile(const PngFile&) = delete;
    PngFile& operator=(const PngFile&) = delete;

    // False when there was no memory for it.
    bool exists() const { return info_ != nullptr; }

    template <typename Function>
    bool run(Function function) {
        if (setjmp(jump_))
            return false;
        function(png_, info_);
        return true;
    }

private:
    [[noreturn]] static void fail(png_structp png, png_const_charp message) {
        CG_LOG_ERROR("cannot write a PNG file: %s", message);
        std::longjmp(static_cast<PngFile*>(png_get_error_ptr(png))->jump_, 1);
    }
    static void warn(png_structp, png_const_charp message) {
        CG_LOG_WARNING("writing a PNG file: %s", message);
    }
    static void write(png_structp png, png_bytep bytes, std::size_t count) {
        if (!static_cast<PngFile*>(png_get_io_ptr(png))->sink_.write(bytes, count))
            png_error(png, "the bytes were not taken");
    }

    ByteSink& sink_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::jmp_buf jump_;
};

// All that is said before the pixels.
struct Header {
    png_uint_32 width;
    png_uint_32 height;
    int bits = 8;
    int colorType = PNG_COLOR_TYPE_GRAY;
    const PngPalette* palette = nullptr;
    FileColors colors;
    int intent = PNG_sRGB_INTENT_PERCEPTUAL;
};

int colorTypeOf(const WrittenLayout& layout) {
    return (layout.colorCount == 3 ? PNG_COLOR_MASK_COLOR : 0) |
           (layout.hasAlpha ? PNG_COLOR_MASK_ALPHA : 0);
}

int sRGBIntent(CGColorRenderingIntent intent) {
    switch (intent) {
    case kCGRenderingIntentAbsoluteColorimetric:
        return PNG_sRGB_INTENT_ABSOLUTE;
    case kCGRenderingIntentRelativeColorimetric:
        return PNG_sRGB_INTENT_RELATIVE;
    case kCGRenderingIntentSaturation:
        return PNG_sRGB_INTENT_SATURATION;
    default:
        return PNG_sRGB_INTENT_PERCEPTUAL;
    }
}

void writePalette(png_structp png, png_infop info, const PngPalette& palette) {
    png_color colors[256];
    for (std::size_t i = 0; i < palette.entryCount(); ++i) {
        const std::uint8_t* entry = palette.entry(i);
        colors[i] = {entry[0], entry[1], entry[2]};
    }
    png_set_PLTE(png, info, colors, static_cast<int>(palette.entryCount()));
}

void writeColors(png_structp png, png_infop info, const FileColors& colors, int intent) {
    // A gray file cannot be sRGB by the profile of that name, which is of three components.
    if (colors.isSRGB) {
        png_set_sRGB_gAMA_and_cHRM(png, info, intent);
    } else if (colors.profile) {
        // What libpng holds for a faulty profile is left out, with a warning.
        png_set_benign_errors(png, 1);
        png_set_iCCP(png, info, "ICC profile", PNG_COMPRESSION_TYPE_BASE,
                     CFDataGetBytePtr(colors.profile.get()),
                     static_cast<png_uint_32>(CFDataGetLength(colors.profile.get())));
    }
}

void writeMetadata(png_structp png, png_infop info, const ImageToWrite& image) {
    constexpr double kInchesPerMetre = 1 / 0.0254;
    if (image.hasResolution())
        png_set_pHYs(png, info,
                     static_cast<png_uint_32>(std::lround(image.dpiWidth * kInchesPerMetre)),
                     static_cast<png_uint_32>(std::lround(image.dpiHeight * kInchesPerMetre)),
                     PNG_RESOLUTION_METER);
    if (image.orientation != 1) {
        std::array exif = exifOfOrientation(image.orientation);
        png_set_eXIf_1(png, info, static_cast<png_uint_32>(exif.size()), exif.data());
    }
}

bool writeHeader(PngFile& file, const Header& header, const ImageToWrite& image) {
    return file.run([&](png_structp png, png_infop info) {
        // No limits on size but those of the format.
        png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        png_set_IHDR(png, info, header.width, header.height, header.bits, header.colorType,
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        if (header.palette)
            writePalette(png, info, *header.palette);
        writeColors(png, info, header.colors, header.intent);
        writeMetadata(png, info, image);
        png_write_info(png, info);
        if (header.bits == 16 && std::endian::native == std::endian::little)
            png_set_swap(png);
    });
}

// `rows` gives a pointer for a row's number, or NULL.
template <typename Rows>
bool writeRows(PngFile& file, png_uint_32 height, Rows rows) {
    for (png_uint_32 y = 0; y < height; ++y) {
        const std::uint8_t* row = rows(y);
        if (!row || !file.run([row](png_structp png, png_infop) { png_write_row(png, row); }))
            return false;
    }
    // All is said in the header: what libpng is given here it would say again.
    return file.run([](png_structp png, png_infop) { png_write_end(png, nullptr); });
}

} // namespace

bool writePng(const ImageToWrite& image, ByteSink& sink) {
    const std::size_t width = CGImageGetWidth(image.image);
    const std::size_t height = CGImageGetHeight(image.image);
    if (width > PNG_UINT_31_MAX || height > PNG_UINT_31_MAX) {
        CG_LOG_ERROR("a PNG file cannot hold %zu x %zu pixels", width, height);
        return false;
    }
    PngFile file(sink);
    if (!file.exists()) {
        CG_LOG_ERROR("no memory for writing a PNG file");
        return false;
    }
    Header header = {
        .width = static_cast<png_uint_32>(width),
        .height = static_cast<png_uint_32>(height),
        .colors = fileColors(image.image, InkColors::Refused),
        .intent = sRGBIntent(CGImageGetRenderingIntent(image.image)),
    };
    // The table's colours are the image's own.
    const auto palette = header.colors.space ? std::nullopt : PngPalette::of(image.image);
    if (palette) {
        header.bits = palette->bitsPerIndex();
        header.colorType = PNG_COLOR_TYPE_PALETTE;
        header.palette = &*palette;
        return writeHeader(file, header, image) &&
               writeRows(file, header.height, [&](std::size_t y) { return palette->row(y); });
    }
    const WrittenLayout layout = {
        .space = header.colors.space,
        .colorCount = header.colors.componentCount(),
        .bitsPerComponent = CGImageGetBitsPerComponent(image.image) > 8 ? 16u : 8u,
        .hasAlpha = hasOpacity(image.image),
    };
    header.bits = static_cast<int>(layout.bitsPerComponent);
    header.colorType = colorTypeOf(layout);
    WrittenRows rows(image.image, layout);
    return writeHeader(file, header, image) &&
           writeRows(file, header.height, [&](std::size_t y) { return rows.row(y); });
}

} // namespace imageio
