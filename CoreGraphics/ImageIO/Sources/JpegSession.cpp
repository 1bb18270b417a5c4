// JpegSession.cpp: one reading of a JPEG file with libjpeg.

#include "JpegSession.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace imageio {
namespace {

// Progressive files have about ten scans. Each goes over all blocks, however few bytes it has.
constexpr int kMostScans = 100;
constexpr unsigned kWholeMarker = 0xFFFF;

void keepQuiet(j_common_ptr) {}
void keepQuietAtLevel(j_common_ptr, int) {}
void doNothing(j_decompress_ptr) {}

} // namespace

JpegSession::JpegSession(Bytes file, JpegMetadata metadata) : file_(file), metadata_(metadata) {}

JpegSession::~JpegSession() {
    jpeg_destroy_decompress(&info_);
    std::free(profile_);
}

JpegSession& JpegSession::of(j_common_ptr info) {
    return *static_cast<JpegSession*>(info->client_data);
}

void JpegSession::fail(j_common_ptr info) {
    std::longjmp(of(info).jump_, 1);
}

// At the end of a file that breaks off: its end is made up, so that what has arrived is decoded.
boolean JpegSession::fill(j_decompress_ptr info) {
    static constexpr JOCTET kEnd[] = {0xFF, JPEG_EOI};
    of(reinterpret_cast<j_common_ptr>(info)).isExhausted_ = true;
    info->src->next_input_byte = kEnd;
    info->src->bytes_in_buffer = sizeof(kEnd);
    return TRUE;
}

void JpegSession::skip(j_decompress_ptr info, long count) {
    if (count <= 0)
        return;
    const std::size_t skipped =
        std::min(static_cast<std::size_t>(count), info->src->bytes_in_buffer);
    info->src->next_input_byte += skipped;
    info->src->bytes_in_buffer -= skipped;
}

void JpegSession::watchScans(j_common_ptr info) {
    if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > kMostScans)
        fail(info);
}

void JpegSession::prepareSource() {
    source_.init_source = doNothing;
    source_.fill_input_buffer = fill;
    source_.skip_input_data = skip;
    source_.resync_to_restart = jpeg_resync_to_restart;
    source_.term_source = doNothing;
    source_.next_input_byte = file_.data();
    source_.bytes_in_buffer = file_.size();
    progress_.progress_monitor = watchScans;
    info_.src = &source_;
    info_.progress = &progress_;
}

bool JpegSession::readHeader() {
    info_.err = jpeg_std_error(&errors_);
    info_.client_data = this;
    errors_.error_exit = fail;
    errors_.emit_message = keepQuietAtLevel;
    errors_.output_message = keepQuiet;
    if (setjmp(jump_))
        return false;
    jpeg_create_decompress(&info_);
    prepareSource();
    if (metadata_ == JpegMetadata::All) {
        jpeg_save_markers(&info_, JPEG_APP0 + 1, kWholeMarker);
        jpeg_save_markers(&info_, JPEG_APP0 + 2, kWholeMarker);
    }
    return jpeg_read_header(&info_, TRUE) == JPEG_HEADER_OK;
}

Bytes JpegSession::profile() {
    if (setjmp(jump_))
        return {};
    if (!profile_ && jpeg_read_icc_profile(&info_, &profile_, &profileSize_) == FALSE)
        return {};
    return {profile_, profileSize_};
}

Bytes JpegSession::exif() const {
    static constexpr char kName[6] = {'E', 'x', 'i', 'f', 0, 0};
    for (auto* marker = info_.marker_list; marker; marker = marker->next) {
        if (marker->marker == JPEG_APP0 + 1 && marker->data_length > sizeof(kName) &&
            std::memcmp(marker->data, kName, sizeof(kName)) == 0)
            return Bytes(marker->data, marker->data_length).subspan(sizeof(kName));
    }
    return {};
}

void JpegSession::chooseColors() {
    if (info_.num_components == 1)
        info_.out_color_space = JCS_GRAYSCALE;
    else if (info_.num_components == 4)
        info_.out_color_space = JCS_CMYK;
    else
        info_.out_color_space = JCS_EXT_BGRX;
}

std::size_t JpegSession::readRows(const ImageHeader& header, std::uint8_t* pixels) {
    // What has been decoded before damage is met is kept, hence no distinction by the jump.
    if (setjmp(jump_))
        return info_.output_scanline;
    chooseColors();
    jpeg_start_decompress(&info_);
    // The bytes under a mapping may have changed since the header was read.
    const std::size_t rowBytes =
        std::size_t(info_.output_width) * static_cast<unsigned>(info_.output_components);
    if (rowBytes != header.bytesPerRow || info_.output_height != header.height)
        return 0;
    readAllRows(header, pixels);
    return info_.output_scanline;
}

// A file of one scan that breaks off is not filled up with grey to its end, which would take its
// time for nothing: it is left when the row of blocks that it breaks off in is out.
void JpegSession::readAllRows(const ImageHeader& header, std::uint8_t* pixels) {
    constexpr std::size_t kRowsAtOnce = 16;
    JSAMPROW rows[kRowsAtOnce];
    const bool mayStop = jpeg_has_multiple_scans(&info_) == FALSE;
    const std::size_t rest = 2 * DCTSIZE * static_cast<std::size_t>(info_.max_v_samp_factor);
    std::size_t end = header.height;
    while (info_.output_scanline < end) {
        const std::size_t first = info_.output_scanline;
        const std::size_t count = std::min(kRowsAtOnce, header.height - first);
        for (std::size_t i = 0; i < count; ++i)
            rows[i] = pixels + (first + i) * header.bytesPerRow;
        jpeg_read_scanlines(&info_, rows, static_cast<JDIMENSION>(count));
        if (isExhausted_ && mayStop && end == header.height)
            end = std::min(end, info_.output_scanline + rest);
    }
}

} // namespace imageio
