// JpegWriter.cpp: JPEG files, by libjpeg.

#include "JpegWriter.h"

#include <CoreFoundation/CFData.h>

#include "ByteSink.h"
#include "Core/Object/Diagnostics.h"
#include "JpegRows.h"
#include "WrittenPixels.h"

#include <jpeglib.h>

#include <array>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstring>

namespace imageio {
namespace {

// libjpeg leaves a failure by a jump, over frames that must have nothing to destroy: every call of
// it that can fail stands in a function passed to `run`.
class JpegFile {
public:
    explicit JpegFile(ByteSink& sink) : sink_(sink) {
        jpeg_.err = jpeg_std_error(&errors_);
        errors_.error_exit = fail;
        errors_.output_message = [](j_common_ptr jpeg) { log(jpeg, kHostLogWarning); };
        jpeg_.client_data = this;
        exists_ = run([](j_compress_ptr jpeg) { jpeg_create_compress(jpeg); });
        destination_.init_destination = [](j_compress_ptr jpeg) { of(jpeg).rewind(); };
        destination_.empty_output_buffer = [](j_compress_ptr jpeg) {
            of(jpeg).put(sizeof buffer_);
            return static_cast<boolean>(TRUE);
        };
        destination_.term_destination = [](j_compress_ptr jpeg) {
            of(jpeg).put(sizeof buffer_ - of(jpeg).destination_.free_in_buffer);
        };
        jpeg_.dest = &destination_;
    }
    ~JpegFile() { jpeg_destroy_compress(&jpeg_); }
    JpegFile(const JpegFile&) = delete;
    JpegFile& operator=(const JpegFile&) = delete;

    // False when there was no memory for it.
    bool exists() const { return exists_; }

    template <typename Function>
    bool run(Function function) {
        if (setjmp(jump_))
            return false;
        function(&jpeg_);
        return true;
    }

private:
    static JpegFile& of(j_compress_ptr jpeg) { return *static_cast<JpegFile*>(jpeg->client_data); }

    static void log(j_common_ptr jpeg, HostLogLevel level) {
        char text[JMSG_LENGTH_MAX];
        jpeg->err->format_message(jpeg, text);
        CG_LOG(level, "writing a JPEG file: %s", text);
    }
    [[noreturn]] static void fail(j_common_ptr jpeg) {
        log(jpeg, kHostLogError);
        std::longjmp(static_cast<JpegFile*>(jpeg->client_data)->jump_, 1);
    }

    void rewind() {
        destination_.next_output_byte = buffer_;
        destination_.free_in_buffer = sizeof buffer_;
    }
    void put(std::size_t count) {
        if (!sink_.write(buffer_, count)) {
            CG_LOG_ERROR("cannot write a JPEG file: the bytes were not taken");
            std::longjmp(jump_, 1);
        }
        rewind();
    }

    ByteSink& sink_;
    bool exists_ = false;
    jpeg_error_mgr errors_ = {};
    jpeg_destination_mgr destination_ = {};
    jpeg_compress_struct jpeg_ = {};
    std::jmp_buf jump_;
    std::uint8_t buffer_[8192];
};

J_COLOR_SPACE spaceOf(CGColorSpaceModel model) {
    return model == kCGColorSpaceModelCMYK  ? JCS_CMYK
           : model == kCGColorSpaceModelRGB ? JCS_RGB
                                            : JCS_GRAYSCALE;
}

void setParameters(j_compress_ptr jpeg, const ImageToWrite& image, const FileColors& colors) {
    // From here on whoever asks for quality wants colours as sharp as brightness.
    constexpr float kFullColorQuality = 0.9f;
    jpeg->image_width = static_cast<JDIMENSION>(CGImageGetWidth(image.image));
    jpeg->image_height = static_cast<JDIMENSION>(CGImageGetHeight(image.image));
    jpeg->input_components = static_cast<int>(colors.componentCount());
    jpeg->in_color_space = spaceOf(colors.model);
    jpeg_set_defaults(jpeg);
    jpeg_set_quality(jpeg, static_cast<int>(std::lround(image.quality * 100)), TRUE);
    if (image.quality >= kFullColorQuality)
        jpeg->comp_info[0].h_samp_factor = jpeg->comp_info[0].v_samp_factor = 1;
    if (image.hasResolution()) {
        jpeg->density_unit = 1; // Pixels an inch.
        jpeg->X_density = static_cast<UINT16>(std::lround(image.dpiWidth));
        jpeg->Y_density = static_cast<UINT16>(std::lround(image.dpiHeight));
    }
}

void writeOrientation(j_compress_ptr jpeg, std::uint8_t orientation) {
    constexpr char kName[] = "Exif\0"; // And the NUL that ends it.
    const std::array exif = exifOfOrientation(orientation);
    std::array<std::uint8_t, sizeof kName + exif.size()> marker;
    std::memcpy(marker.data(), kName, sizeof kName);
    std::memcpy(marker.data() + sizeof kName, exif.data(), exif.size());
    jpeg_write_marker(jpeg, JPEG_APP0 + 1, marker.data(), static_cast<unsigned>(marker.size()));
}

bool begin(JpegFile& file, const ImageToWrite& image, const FileColors& colors) {
    return file.run([&](j_compress_ptr jpeg) {
        setParameters(jpeg, image, colors);
        jpeg_start_compress(jpeg, TRUE);
        if (image.orientation != 1)
            writeOrientation(jpeg, image.orientation);
        if (colors.profile)
            jpeg_write_icc_profile(jpeg, CFDataGetBytePtr(colors.profile.get()),
                                   static_cast<unsigned>(CFDataGetLength(colors.profile.get())));
    });
}

} // namespace

bool writeJpeg(const ImageToWrite& image, ByteSink& sink) {
    const std::size_t width = CGImageGetWidth(image.image);
    const std::size_t height = CGImageGetHeight(image.image);
    if (width > JPEG_MAX_DIMENSION || height > JPEG_MAX_DIMENSION) {
        CG_LOG_ERROR("a JPEG file cannot hold %zu x %zu pixels", width, height);
        return false;
    }
    JpegFile file(sink);
    const FileColors colors = fileColors(image.image, InkColors::Accepted);
    JpegRows rows(image, colors);
    if (!file.exists() || !begin(file, image, colors))
        return false;
    for (std::size_t y = 0; y < height; ++y) {
        const std::uint8_t* row = rows.row(y);
        // libjpeg asks for rows that it may change, and changes none.
        JSAMPROW writable = const_cast<JSAMPROW>(row);
        if (!row ||
            !file.run([&](j_compress_ptr jpeg) { jpeg_write_scanlines(jpeg, &writable, 1); }))
            return false;
    }
    return file.run([](j_compress_ptr jpeg) { jpeg_finish_compress(jpeg); });
}

} // namespace imageio
