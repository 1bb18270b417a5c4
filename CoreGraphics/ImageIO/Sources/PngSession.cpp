// PngSession.cpp: one reading of a PNG file with libpng.

#include "PngSession.h"

#include "PngChunks.h"

#include <algorithm>
#include <csetjmp>
#include <cstring>

namespace imageio {
namespace {

[[noreturn]] void fail(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}
void keepQuiet(png_structp, png_const_charp) {}

constexpr png_byte kForHeader[] = "cHRM\0eXIf\0gAMA\0iCCP\0pHYs\0sRGB";
constexpr png_byte kForTexts[] = "bKGD\0hIST\0iTXt\0oFFs\0pCAL\0sBIT\0sCAL\0sPLT\0tEXt\0tIME\0zTXt";

template <std::size_t size>
void ignoreChunks(png_structp png, const png_byte (&names)[size]) {
    constexpr std::size_t kNameBytes = 5;
    static_assert(size % kNameBytes == 0);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, names,
                                static_cast<int>(size / kNameBytes));
}

} // namespace

PngSession::PngSession(Bytes file, PngMetadata metadata) : file_(file) {
    png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, fail, keepQuiet);
    if (!png_)
        return;
    info_ = png_create_info_struct(png_);
    png_set_read_fn(png_, this, read);
    // The size of pictures is limited by setLayout().
    png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    ignore(metadata);
}

PngSession::~PngSession() {
    png_destroy_read_struct(&png_, &info_, nullptr);
}

// Metadata that nobody asked for is neither inflated nor kept.
void PngSession::ignore(PngMetadata metadata) {
    if (setjmp(png_jmpbuf(png_)))
        return;
    if (metadata == PngMetadata::None)
        ignoreChunks(png_, kForHeader);
    if (metadata != PngMetadata::All)
        ignoreChunks(png_, kForTexts);
    ignoreBrokenChunk();
}

// libpng takes the memory that a chunk claims before it looks for its bytes. Of one that the file
// breaks off in, which may claim two gigabytes, nothing can be used. Its kind is told by the first
// letter: chunks that pictures cannot do without have a capital there.
void PngSession::ignoreBrokenChunk() {
    const std::uint32_t name = PngChunks(file_).nameOfBrokenChunk();
    const png_byte letters[] = {static_cast<png_byte>(name >> 24),
                                static_cast<png_byte>(name >> 16), static_cast<png_byte>(name >> 8),
                                static_cast<png_byte>(name), 0};
    constexpr png_byte kIsAncillary = 0x20;
    if ((letters[0] & kIsAncillary) != 0)
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, letters, 1);
}

void PngSession::read(png_structp png, png_bytep out, std::size_t count) {
    auto* const session = static_cast<PngSession*>(png_get_io_ptr(png));
    if (count > session->file_.size() - session->position_)
        png_error(png, "the file ends here");
    std::memcpy(out, session->file_.data() + session->position_, count);
    session->position_ += count;
}

bool PngSession::readInfo() {
    if (!png_ || !info_ || setjmp(png_jmpbuf(png_)))
        return false;
    png_read_info(png_, info_);
    return true;
}

void PngSession::configure(const ImageHeader& header) {
    const bool hasColor = (png_get_color_type(png_, info_) & PNG_COLOR_MASK_COLOR) != 0;
    if (header.isIndexed)
        return;
    if (png_get_color_type(png_, info_) == PNG_COLOR_TYPE_PALETTE)
        png_set_palette_to_rgb(png_);
    if (header.hasAlpha && png_get_valid(png_, info_, PNG_INFO_tRNS) != 0)
        png_set_tRNS_to_alpha(png_);
    if (hasColor && !header.hasAlpha && header.bitsPerComponent == 8)
        png_set_filler(png_, 0xFF, PNG_FILLER_AFTER);
}

std::size_t PngSession::readRows(const ImageHeader& header, std::uint8_t* pixels) {
    // What has been read before damage is met is kept, hence no distinction by the jump.
    if (setjmp(png_jmpbuf(png_)))
        return rowsRead_;
    configure(header);
    const int passes = png_set_interlace_handling(png_);
    png_read_update_info(png_, info_);
    // The bytes under a mapping may have changed since the header was read.
    if (png_get_rowbytes(png_, info_) != header.bytesPerRow ||
        png_get_image_height(png_, info_) != header.height)
        return 0;
    // Passes leave pixels out, and rows of small pixels the last bits of their last byte.
    if (passes > 1 || header.bitsPerPixel < 8)
        std::memset(pixels, 0, header.byteCount());
    for (int pass = 0; pass < passes; ++pass)
        readPass(header, pixels);
    return rowsRead_;
}

void PngSession::readPass(const ImageHeader& header, std::uint8_t* pixels) {
    for (std::size_t y = 0; y < header.height; ++y) {
        png_read_row(png_, pixels + y * header.bytesPerRow, nullptr);
        rowsRead_ = std::max(rowsRead_, y + 1);
    }
}

} // namespace imageio
