// BareCodecs.h: libpng and libjpeg called with nothing between, for tests and benchmarks that hold
// our files beside theirs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>
// clang-format off: it leaves the inclusion of the C library to its users.
#include <jpeglib.h>
// clang-format on
#include <png.h>

namespace test {

using Bytes = std::vector<std::uint8_t>;

// ---- Where libpng reads from and writes to.

class PngInput {
public:
    explicit PngInput(const Bytes& bytes) : bytes_(bytes) {}
    void attachTo(png_structp png) { png_set_read_fn(png, this, read); }

private:
    static void read(png_structp png, png_bytep out, png_size_t count) {
        auto& input = *static_cast<PngInput*>(png_get_io_ptr(png));
        if (count > input.bytes_.size() - input.position_)
            png_error(png, "the file ends here");
        std::memcpy(out, input.bytes_.data() + input.position_, count);
        input.position_ += count;
    }

    const Bytes& bytes_;
    std::size_t position_ = 0;
};

inline void writePngInto(Bytes& out, png_structp png) {
    const auto append = [](png_structp writer, png_bytep bytes, png_size_t count) {
        auto& to = *static_cast<Bytes*>(png_get_io_ptr(writer));
        to.insert(to.end(), bytes, bytes + count);
    };
    png_set_write_fn(png, &out, append, nullptr);
}

// ---- JPEG files as a whole.

// Interleaved, of 8 bits, without gaps.
struct JpegPixels {
    const std::uint8_t* samples = nullptr;
    std::uint32_t width = 0, height = 0;
    int components = 3; // 1 gray, 3 RGB, 4 inks.
};

struct KeepJpegAsItIs {
    void operator()(jpeg_compress_struct&) const {}
};

// A file by libjpeg's defaults, but for what `setUp` changes. `addMarkers` is called behind the
// file's header.
template <typename SetUp = KeepJpegAsItIs, typename AddMarkers = KeepJpegAsItIs>
Bytes encodeJpeg(const JpegPixels& pixels, const SetUp& setUp = {},
                 const AddMarkers& addMarkers = {}) {
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &memory, &size);
    jpeg.image_width = pixels.width;
    jpeg.image_height = pixels.height;
    jpeg.input_components = pixels.components;
    constexpr J_COLOR_SPACE kSpaces[] = {JCS_UNKNOWN, JCS_GRAYSCALE, JCS_UNKNOWN, JCS_RGB,
                                         JCS_CMYK};
    jpeg.in_color_space = kSpaces[pixels.components];
    jpeg_set_defaults(&jpeg);
    setUp(jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    addMarkers(jpeg);
    const std::size_t rowBytes = std::size_t(pixels.width) * std::size_t(pixels.components);
    while (jpeg.next_scanline < pixels.height) {
        auto* row = const_cast<JSAMPROW>(pixels.samples + jpeg.next_scanline * rowBytes);
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    Bytes file(memory, memory + size);
    std::free(memory);
    return file;
}

// Reads a file into the memory that `allocate` gives for so many bytes; `setUp` may change what is
// known once the header is read.
template <typename SetUp, typename Allocate>
void decodeJpeg(const Bytes& file, const SetUp& setUp, const Allocate& allocate) {
    jpeg_decompress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&jpeg, TRUE);
    setUp(jpeg);
    jpeg_start_decompress(&jpeg);
    const std::size_t rowBytes = jpeg.output_width * std::size_t(jpeg.output_components);
    std::uint8_t* const pixels = allocate(rowBytes * jpeg.output_height);
    // As many rows as the largest block has: a smaller count would take more calls.
    constexpr JDIMENSION kRowsAtOnce = 16;
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW rows[kRowsAtOnce];
        const JDIMENSION left = jpeg.output_height - jpeg.output_scanline;
        const JDIMENSION count = left < kRowsAtOnce ? left : kRowsAtOnce;
        for (JDIMENSION i = 0; i < count; ++i)
            rows[i] = pixels + (jpeg.output_scanline + i) * rowBytes;
        jpeg_read_scanlines(&jpeg, rows, count);
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
}

} // namespace test
