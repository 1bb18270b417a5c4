// EncodedFiles.cpp: picture files of made-up pixels, written with the bare libraries.

#include "EncodedFiles.h"

#include "Support/BareCodecs.h"

#include <openjpeg.h>

#include <algorithm>
#include <random>

namespace test {

// ---- PNG.

namespace {

void addPalette(png_structp png, png_infop info, const PngFile& file) {
    std::vector<png_color> palette(std::size_t(1) << file.depth);
    Bytes alpha(palette.size() / 2 + 1);
    for (std::size_t i = 0; i < palette.size(); ++i)
        palette[i] = {png_byte(i * 3), png_byte(255 - i), png_byte(i * 7)};
    for (std::size_t i = 0; i < alpha.size(); ++i)
        alpha[i] = png_byte(i * 5);
    png_set_PLTE(png, info, palette.data(), int(palette.size()));
    if (file.hasTransparentColor)
        png_set_tRNS(png, info, alpha.data(), int(alpha.size()), nullptr);
}

} // namespace

Bytes makePng(const PngFile& file) {
    Bytes out;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    writePngInto(out, png);
    png_set_IHDR(png, info, file.width, file.height, file.depth, file.colorType,
                 file.isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
    if (file.colorType == PNG_COLOR_TYPE_PALETTE) {
        addPalette(png, info, file);
    } else if (file.hasTransparentColor) {
        const png_color_16 color = {0, 1, 1, 1, 1};
        png_set_tRNS(png, info, nullptr, 0, &color);
    }
    if (file.addChunks)
        file.addChunks(png, info);
    png_write_info(png, info);
    std::mt19937 random(7);
    const int passes = png_set_interlace_handling(png);
    const std::size_t rowBytes = png_get_rowbytes(png, info);
    Bytes rows(rowBytes * file.height);
    // Few values, so that the transparent colour is met.
    for (std::uint8_t& byte : rows)
        byte = file.depth >= 8 ? std::uint8_t(random() % 4) : std::uint8_t(random());
    for (int pass = 0; pass < passes; ++pass)
        for (std::uint32_t y = 0; y < file.height; ++y)
            png_write_row(png, &rows[y * rowBytes]);
    png_infop end = png_create_info_struct(png);
    if (file.addLateChunks)
        file.addLateChunks(png, end);
    png_write_end(png, end);
    png_destroy_info_struct(png, &end);
    png_destroy_write_struct(&png, &info);
    return out;
}

// ---- JPEG.

Bytes makeJpeg(const JpegFile& file) {
    std::mt19937 random(3);
    const std::size_t rowBytes = file.width * std::size_t(file.components);
    Bytes pixels(rowBytes * file.height);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = std::uint8_t(i % rowBytes * 2 + i / rowBytes * 5 + random() % 32);
    const auto setUp = [&](jpeg_compress_struct& jpeg) {
        if (file.storesColorsDirectly)
            jpeg_set_colorspace(&jpeg, jpeg.in_color_space);
        else if (file.components == 4)
            jpeg_set_colorspace(&jpeg, JCS_YCCK);
        jpeg.write_Adobe_marker = file.hasAdobeMarker;
        jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = file.sampling;
        jpeg_set_quality(&jpeg, 80, TRUE);
        jpeg.restart_in_rows = file.restartRows;
        if (file.isProgressive)
            jpeg_simple_progression(&jpeg);
    };
    return encodeJpeg({pixels.data(), file.width, file.height, file.components}, setUp,
                      [&](jpeg_compress_struct& jpeg) {
                          if (file.addMarkers)
                              file.addMarkers(&jpeg);
                      });
}

// ---- JPEG 2000.

namespace {

struct Output {
    Bytes bytes;
    std::size_t position = 0;
};

OPJ_SIZE_T write(void* bytes, OPJ_SIZE_T count, void* user) {
    auto& out = *static_cast<Output*>(user);
    out.bytes.resize(std::max(out.bytes.size(), out.position + count));
    std::memcpy(&out.bytes[out.position], bytes, count);
    out.position += count;
    return count;
}
OPJ_OFF_T skip(OPJ_OFF_T count, void* user) {
    static_cast<Output*>(user)->position += std::size_t(count);
    return count;
}
OPJ_BOOL seek(OPJ_OFF_T position, void* user) {
    static_cast<Output*>(user)->position = std::size_t(position);
    return OPJ_TRUE;
}

std::uint32_t steps(std::uint32_t length, int step) {
    return (length + std::uint32_t(step) - 1) / std::uint32_t(step);
}
int stepOf(const Jpeg2000File& file, int component) {
    return component ? file.chromaStep : 1;
}

opj_image_t* makeImage(const Jpeg2000File& file) {
    opj_image_cmptparm_t parameters[4] = {};
    for (int c = 0; c < file.components; ++c) {
        const auto step = std::uint32_t(stepOf(file, c));
        const auto depth = std::uint32_t(file.depth);
        parameters[c] = {.dx = step,
                         .dy = step,
                         .w = steps(file.width, int(step)),
                         .h = steps(file.height, int(step)),
                         .prec = depth,
                         .bpp = depth};
    }
    const OPJ_COLOR_SPACE space = file.isSYCC           ? OPJ_CLRSPC_SYCC
                                  : file.isCMYK         ? OPJ_CLRSPC_CMYK
                                  : file.components < 3 ? OPJ_CLRSPC_GRAY
                                                        : OPJ_CLRSPC_SRGB;
    opj_image_t* const image = opj_image_create(unsigned(file.components), parameters, space);
    image->x1 = file.width;
    image->y1 = file.height;
    for (int c = 0; c < file.components; ++c) {
        const auto samples = jpeg2000Samples(file, c);
        std::copy(samples.begin(), samples.end(), image->comps[c].data);
    }
    image->comps[file.components - 1].alpha = file.hasAlpha;
    if (!file.profile.empty()) { // Freed with the image.
        image->icc_profile_len = OPJ_UINT32(file.profile.size());
        image->icc_profile_buf = static_cast<OPJ_BYTE*>(std::malloc(file.profile.size()));
        std::memcpy(image->icc_profile_buf, file.profile.data(), file.profile.size());
    }
    return image;
}

// The library does not write the number that stands for four inks.
void markAsCMYK(Bytes& file) {
    constexpr std::uint8_t kName[] = {'c', 'o', 'l', 'r'};
    constexpr std::ptrdiff_t kLastOfNumber = 10;
    constexpr std::uint8_t kCMYK = 12;
    const auto found = std::search(file.begin(), file.end(), std::begin(kName), std::end(kName));
    found[kLastOfNumber] = kCMYK;
}

} // namespace

std::vector<std::int32_t> jpeg2000Samples(const Jpeg2000File& file, int component) {
    std::mt19937 random(unsigned(component) + 11);
    const int step = stepOf(file, component);
    std::vector<std::int32_t> samples(std::size_t(steps(file.width, step)) *
                                      steps(file.height, step));
    for (std::int32_t& sample : samples)
        sample = std::int32_t(random() & ((1u << file.depth) - 1));
    return samples;
}

Bytes makeJpeg2000(const Jpeg2000File& file) {
    Output out;
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    parameters.numresolution = 3;
    parameters.tcp_numlayers = 1;
    parameters.cp_disto_alloc = 1;
    parameters.tcp_rates[0] = file.compressionRate;
    parameters.irreversible = file.compressionRate > 1;
    parameters.tile_size_on = file.tileSide > 0;
    parameters.cp_tdx = parameters.cp_tdy = file.tileSide;
    parameters.tcp_mct = file.components == 3 && file.chromaStep == 1 && !file.isSYCC ? 1 : 0;
    opj_codec_t* const codec = opj_create_compress(file.hasBoxes ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K);
    opj_image_t* const image = makeImage(file);
    opj_stream_t* const stream = opj_stream_create(4096, OPJ_FALSE);
    opj_stream_set_user_data(stream, &out, nullptr);
    opj_stream_set_write_function(stream, write);
    opj_stream_set_skip_function(stream, skip);
    opj_stream_set_seek_function(stream, seek);
    const bool isWritten = opj_setup_encoder(codec, &parameters, image) &&
                           opj_start_compress(codec, image, stream) && opj_encode(codec, stream) &&
                           opj_end_compress(codec, stream);
    opj_stream_destroy(stream);
    opj_destroy_codec(codec);
    opj_image_destroy(image);
    if (file.isCMYK)
        markAsCMYK(out.bytes);
    return isWritten ? out.bytes : Bytes();
}

} // namespace test
