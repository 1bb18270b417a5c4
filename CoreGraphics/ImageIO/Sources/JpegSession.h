// JpegSession.h: one reading of a JPEG file with libjpeg.
#pragma once

#include "ImageHeader.h"

#include <csetjmp>
#include <cstdio>
// clang-format off: it leaves the inclusion of the C library to its users.
#include <jpeglib.h>
// clang-format on

namespace imageio {

enum class JpegMetadata { None, All };

// libjpeg ends in error_exit when a file is damaged beyond repair, which here jumps. Every such
// jump ends in the member function that called libjpeg, which holds nothing that would have to be
// destroyed; what must be freed belongs to the session.
class JpegSession {
public:
    JpegSession(Bytes file, JpegMetadata metadata);
    ~JpegSession();
    JpegSession(const JpegSession&) = delete;
    JpegSession& operator=(const JpegSession&) = delete;

    bool readHeader();
    // Decodes into `pixels` in the layout of `header`; how many rows are written.
    // Before it, readHeader() has succeeded.
    std::size_t readRows(const ImageHeader& header, std::uint8_t* pixels);

    const jpeg_decompress_struct& info() const { return info_; }
    // The colour profile, put together from its markers, or no bytes.
    Bytes profile();
    // The TIFF data of the EXIF marker, or no bytes.
    Bytes exif() const;

private:
    static JpegSession& of(j_common_ptr info);
    static boolean fill(j_decompress_ptr info);
    static void skip(j_decompress_ptr info, long count);
    static void watchScans(j_common_ptr info);
    [[noreturn]] static void fail(j_common_ptr info);
    void prepareSource();
    void chooseColors();
    void readAllRows(const ImageHeader& header, std::uint8_t* pixels);

    Bytes file_;
    JpegMetadata metadata_;
    bool isExhausted_ = false;
    jpeg_decompress_struct info_{};
    jpeg_error_mgr errors_{};
    jpeg_source_mgr source_{};
    jpeg_progress_mgr progress_{};
    std::jmp_buf jump_;
    JOCTET* profile_ = nullptr;
    unsigned profileSize_ = 0;
};

} // namespace imageio
