// Jpeg2000Reader.cpp: JPEG 2000 pixels, decoded with OpenJPEG.

#include "ImageReader.h"
#include "Jpeg2000Header.h"
#include "Jpeg2000Limits.h"

#include <openjpeg.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>

namespace imageio {
namespace {

template <auto function>
struct Destroy {
    template <typename Object>
    void operator()(Object* object) const {
        function(object);
    }
};
using Codec = std::unique_ptr<opj_codec_t, Destroy<opj_destroy_codec>>;
using Image = std::unique_ptr<opj_image_t, Destroy<opj_image_destroy>>;
// A stream's own buffer and position die with it; the file does not.
using Stream = std::unique_ptr<opj_stream_t, Destroy<opj_stream_destroy>>;

// ---- The file as a stream.

struct Cursor {
    Bytes file;
    std::size_t position = 0;
};

OPJ_SIZE_T read(void* out, OPJ_SIZE_T count, void* user) {
    auto& cursor = *static_cast<Cursor*>(user);
    const std::size_t available = std::min(count, cursor.file.size() - cursor.position);
    if (available == 0)
        return static_cast<OPJ_SIZE_T>(-1);
    std::memcpy(out, cursor.file.data() + cursor.position, available);
    cursor.position += available;
    return available;
}

OPJ_BOOL seek(OPJ_OFF_T position, void* user) {
    auto& cursor = *static_cast<Cursor*>(user);
    if (position < 0 || static_cast<std::uint64_t>(position) > cursor.file.size())
        return OPJ_FALSE;
    cursor.position = static_cast<std::size_t>(position);
    return OPJ_TRUE;
}

OPJ_OFF_T skip(OPJ_OFF_T count, void* user) {
    auto& cursor = *static_cast<Cursor*>(user);
    if (count < 0 || static_cast<std::uint64_t>(count) > cursor.file.size() - cursor.position)
        return -1;
    cursor.position += static_cast<std::size_t>(count);
    return count;
}

Stream makeStream(Cursor& cursor) {
    constexpr OPJ_SIZE_T kBufferSize = 65536;
    Stream stream(opj_stream_create(kBufferSize, OPJ_TRUE));
    if (stream) {
        opj_stream_set_user_data(stream.get(), &cursor, nullptr);
        opj_stream_set_user_data_length(stream.get(), cursor.file.size());
        opj_stream_set_read_function(stream.get(), read);
        opj_stream_set_seek_function(stream.get(), seek);
        opj_stream_set_skip_function(stream.get(), skip);
    }
    return stream;
}

// ---- Tile parts that claim more bytes than there are.

// A tile part's header: its marker with a length of ten, the tile's number, then its own length.
// Coded data has no such marker in it.
constexpr std::uint8_t kTilePart[] = {0xFF, 0x90, 0x00, 0x0A};
constexpr std::size_t kLengthOffset = 6, kTilePartHeader = 12;

// The next one, from `start` on, that goes beyond the end; the file's size if there is none.
std::size_t nextOverlongTilePart(Bytes file, std::size_t start) {
    auto at = file.begin() + static_cast<std::ptrdiff_t>(start);
    for (;; ++at) {
        at = std::search(at, file.end(), std::begin(kTilePart), std::end(kTilePart));
        const auto left = static_cast<std::size_t>(file.end() - at);
        if (left < kTilePartHeader)
            return file.size();
        std::uint32_t length = 0;
        for (std::size_t i = 0; i < 4; ++i)
            length = length << 8 | at[static_cast<std::ptrdiff_t>(kLengthOffset + i)];
        if (length > left)
            return file.size() - left;
    }
}

// OpenJPEG allocates what a tile part claims before it looks for its bytes, unless it is to refuse
// all files that break off. So such a file is decoded from a copy with lengths that are true.
class TrueLengths {
public:
    explicit TrueLengths(Bytes file) : bytes_(file) {
        std::size_t at = nextOverlongTilePart(file, 0);
        if (at == file.size())
            return;
        copy_.reset(new (std::nothrow) std::uint8_t[file.size()]);
        bytes_ = copy_ ? Bytes(copy_.get(), file.size()) : Bytes();
        if (copy_)
            std::ranges::copy(file, copy_.get());
        for (; copy_ && at < file.size(); at = nextOverlongTilePart(file, at + 1)) {
            const std::size_t length = file.size() - at;
            for (std::size_t i = 0; i < 4; ++i)
                copy_[at + kLengthOffset + i] =
                    static_cast<std::uint8_t>(std::uint64_t(length) >> (24 - 8 * i));
        }
    }
    // None when there is no memory for the copy.
    Bytes bytes() const { return bytes_; }

private:
    Bytes bytes_;
    std::unique_ptr<std::uint8_t[]> copy_;
};

// ---- Decoding.

// An image with samples in every component, or none.
Image decodeComponents(Bytes file, bool hasBoxes) {
    const TrueLengths lengths(file);
    Cursor cursor{lengths.bytes()};
    const Stream stream = makeStream(cursor);
    const Codec codec(opj_create_decompress(hasBoxes ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K));
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    if (!stream || !codec || !opj_setup_decoder(codec.get(), &parameters))
        return nullptr;
    // A codestream that breaks off gives what it has.
    opj_decoder_set_strict_mode(codec.get(), OPJ_FALSE);
    opj_image_t* decoded = nullptr;
    const bool hasHeader = opj_read_header(stream.get(), codec.get(), &decoded);
    Image image(decoded);
    if (!hasHeader || !image || !opj_decode(codec.get(), stream.get(), image.get()))
        return nullptr;
    const std::span components(image->comps, image->numcomps);
    const bool hasSamples = std::ranges::all_of(components, [](const opj_image_comp_t& c) {
        return c.data && c.w > 0 && c.h > 0 && c.dx > 0 && c.dy > 0 && c.prec > 0 && c.prec <= 31;
    });
    return hasSamples ? std::move(image) : nullptr;
}

// ---- From components to pixels.

// The components in the order of the pixel's: colours, then opacity.
using Channels = std::array<const opj_image_comp_t*, 4>;

std::optional<Channels> channelsOf(const opj_image_t& image, const Jpeg2000Header& header) {
    Channels channels{};
    std::size_t colors = 0;
    const opj_image_comp_t* opacity = nullptr;
    for (const opj_image_comp_t& component : std::span(image.comps, image.numcomps)) {
        if (component.alpha == 0 && colors < header.colorCount())
            channels[colors++] = &component;
        else if (!opacity || (opacity->alpha == 0 && component.alpha != 0))
            opacity = &component;
    }
    if (colors < header.colorCount() || (header.hasAlpha() && !opacity))
        return std::nullopt;
    if (header.hasAlpha())
        channels[colors] = opacity;
    return channels;
}

// The row or column of a component that holds the sample for a pixel: the one at or before the
// pixel's place on the grid.
std::size_t sampleIndex(std::size_t pixel, std::uint32_t first, std::uint32_t step,
                        std::uint32_t componentStep, std::uint32_t count) {
    const std::uint64_t place =
        ((std::uint64_t(first) + step - 1) / step + pixel) * std::uint64_t(step);
    const std::uint64_t start = (std::uint64_t(first) + componentStep - 1) / componentStep;
    const std::uint64_t index = place / componentStep;
    return static_cast<std::size_t>(
        std::min<std::uint64_t>(index > start ? index - start : 0, count - 1));
}

// A row of one channel as numbers from 0 to `most`.
void readRow(const opj_image_comp_t& component, const Jpeg2000Header& header, std::size_t y,
             std::int64_t most, std::int32_t* out) {
    const std::size_t row =
        sampleIndex(y, header.top, header.verticalStep, component.dy, component.h);
    const OPJ_INT32* const samples = component.data + row * component.w;
    const std::int64_t offset = component.sgnd ? std::int64_t(1) << (component.prec - 1) : 0;
    const std::int64_t largest = (std::int64_t(1) << component.prec) - 1;
    for (std::size_t x = 0; x < header.width; ++x) {
        const std::size_t column =
            sampleIndex(x, header.left, header.horizontalStep, component.dx, component.w);
        const std::int64_t value = std::clamp<std::int64_t>(samples[column] + offset, 0, largest);
        out[x] = static_cast<std::int32_t>(
            largest == most ? value : (value * most + largest / 2) / largest);
    }
}

// Luma and colour differences as JPEG has them (ITU-R BT.601, full range).
void convertSYCC(std::int32_t* luma, std::int32_t* blue, std::int32_t* red, std::size_t count,
                 std::int32_t most) {
    const auto saturate = [most](double value) {
        return static_cast<std::int32_t>(std::clamp(value + 0.5, 0.0, double(most)));
    };
    const double half = (double(most) + 1) / 2;
    for (std::size_t x = 0; x < count; ++x) {
        const double y = luma[x], cb = blue[x] - half, cr = red[x] - half;
        luma[x] = saturate(y + 1.402 * cr);
        blue[x] = saturate(y - 0.344136 * cb - 0.714136 * cr);
        red[x] = saturate(y + 1.772 * cb);
    }
}

class RowWriter {
public:
    RowWriter(const Jpeg2000Header& header, const ImageHeader& layout)
        : header_(header), layout_(layout), channels_(header.colorCount() + header.hasAlpha()),
          slots_(layout.bitsPerPixel / layout.bitsPerComponent),
          rows_(new (std::nothrow) std::int32_t[channels_ * header.width]) {}

    bool isReady() const { return static_cast<bool>(rows_); }

    void write(const Channels& channels, std::size_t y, std::uint8_t* out) {
        const std::int32_t most = layout_.bitsPerComponent == 8 ? 0xFF : 0xFFFF;
        for (std::size_t c = 0; c < channels_; ++c)
            readRow(*channels[c], header_, y, most, row(c));
        if (header_.colors == Jpeg2000Colors::SYCC && header_.colorCount() == 3)
            convertSYCC(row(0), row(1), row(2), header_.width, most);
        if (layout_.bitsPerComponent == 8)
            interleave(out);
        else
            interleave(reinterpret_cast<std::uint16_t*>(out));
    }

private:
    std::int32_t* row(std::size_t channel) { return rows_.get() + channel * header_.width; }

    // A place without a channel, of pixels padded to four bytes, is full.
    template <typename Sample>
    void interleave(Sample* out) {
        for (std::size_t slot = 0; slot < slots_; ++slot) {
            const std::int32_t* const samples = slot < channels_ ? row(slot) : nullptr;
            for (std::size_t x = 0; x < header_.width; ++x)
                out[x * slots_ + slot] = static_cast<Sample>(samples ? samples[x] : 0xFFFF);
        }
    }

    const Jpeg2000Header& header_;
    const ImageHeader& layout_;
    const std::size_t channels_, slots_;
    const std::unique_ptr<std::int32_t[]> rows_;
};

// ---- The reader.

bool setPixelLayout(const Jpeg2000Header& file, ImageHeader& header) {
    const std::size_t bits = file.depth > 8 ? 16 : 8;
    const CGBitmapInfo order =
        bits == 16 ? kCGBitmapByteOrder16Host : CGBitmapInfo(kCGBitmapByteOrderDefault);
    const std::size_t colors = file.colorCount();
    if (file.hasAlpha()) {
        const CGImageAlphaInfo alpha =
            file.isPremultiplied ? kCGImageAlphaPremultipliedLast : kCGImageAlphaLast;
        return setLayout(header, colors + 1, bits, order | alpha);
    }
    if (colors == 3 && bits == 8)
        return setLayout(header, 4, bits, order | kCGImageAlphaNoneSkipLast);
    return setLayout(header, colors, bits, order | kCGImageAlphaNone);
}

bool readHeader(Bytes file, ImageHeader& header) {
    const auto found = readJpeg2000Header(file);
    if (!found)
        return false;
    header.width = found->width;
    header.height = found->height;
    header.depth = found->depth;
    header.hasAlpha = found->hasAlpha();
    const bool isStandard =
        found->colors == Jpeg2000Colors::SRGB || found->colors == Jpeg2000Colors::SYCC;
    if (isStandard && found->colorCount() == 3)
        header.space = cf::adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    if (!header.space)
        header.space = spaceOfProfile(found->profile, found->colorCount());
    return header.space && setPixelLayout(*found, header);
}

std::size_t decode(Bytes file, const ImageHeader& layout, std::uint8_t* pixels) {
    const auto header = readJpeg2000Header(file);
    // The bytes under a mapping may have changed since the header was read.
    ImageHeader again;
    if (!header || header->width != layout.width || header->height != layout.height ||
        !(again.width = header->width, again.height = header->height,
          setPixelLayout(*header, again)) ||
        again.bitsPerPixel != layout.bitsPerPixel || !structuresFit(*header))
        return 0;
    RowWriter writer(*header, layout);
    const Image image = decodeComponents(file, header->codestream.data() != file.data());
    const auto channels = image ? channelsOf(*image, *header) : std::nullopt;
    if (!channels || !writer.isReady())
        return 0;
    for (std::size_t y = 0; y < header->height; ++y)
        writer.write(*channels, y, pixels + y * layout.bytesPerRow);
    return header->height;
}

// A codestream ends with its end marker, and so do the files, but for boxes that may follow.
bool isComplete(Bytes file) {
    const auto header = readJpeg2000Header(file);
    const Bytes codestream = header ? header->codestream : Bytes();
    return codestream.size() >= 2 && codestream[codestream.size() - 2] == 0xFF &&
           codestream[codestream.size() - 1] == 0xD9;
}

} // namespace

// What is all of one colour takes next to nothing.
constinit const ImageReader kJpeg2000Reader = {readHeader, decode,     nullptr,
                                               nullptr,    isComplete, 16384};

} // namespace imageio
