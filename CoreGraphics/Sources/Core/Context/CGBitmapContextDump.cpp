// CGBitmapContextDump.cpp: a bitmap context's pixels in a file that any picture viewer opens.

#include "XGBitmapContext.h"
#include <CoreFoundation/CFRef.h>
#include <Host/Host.h>

#include "Core/Image/PixelReader.h"
#include "Core/Image/PixelWriter.h"
#include "Core/Object/Diagnostics.h"

#include <array>
#include <limits>
#include <new>

namespace {

constexpr std::size_t kBytesPerPixel = 4;

using Header = std::array<std::uint8_t, 18>;

// Truevision TGA 2.0, type 2: uncompressed true colour, here with eight bits of opacity and the
// first row on top.
Header headerFor(std::size_t width, std::size_t height) {
    const auto low = [](std::size_t value) { return static_cast<std::uint8_t>(value & 0xFF); };
    constexpr std::uint8_t kTrueColor = 2, kAlphaBits = 8, kFromTop = 0x20;
    Header header = {};
    header[2] = kTrueColor;
    header[12] = low(width);
    header[13] = low(width >> 8);
    header[14] = low(height);
    header[15] = low(height >> 8);
    header[16] = 8 * kBytesPerPixel;
    header[17] = kAlphaBits | kFromTop;
    return header;
}

// A row at a time, colours not multiplied by their opacity.
bool writeRows(int file, CGImageRef image) {
    const std::size_t width = CGImageGetWidth(image);
    const auto reader = cg::PixelReader::of(image, {.space = cg::drawnSpace(cg::pixelSpace(image)),
                                                    .alpha = cg::AlphaUse::Straight,
                                                    .order = cg::ComponentOrder::BGRX});
    const std::unique_ptr<std::byte[]> row(new (std::nothrow) std::byte[width * kBytesPerPixel]);
    bool isWritten = reader && row;
    for (std::size_t y = 0; isWritten && y < CGImageGetHeight(image); ++y)
        isWritten = reader->readRows(y, 1, row.get(), width * kBytesPerPixel) &&
                    HostFileWrite(file, row.get(), width * kBytesPerPixel);
    return isWritten;
}

} // namespace

bool XGBitmapContextDumpTGA(CGContextRef context, const char* path) {
    const auto image = cf::adopt(CGBitmapContextCreateImage(context));
    if (!image || !path)
        return false;
    const std::size_t width = CGImageGetWidth(image.get());
    const std::size_t height = CGImageGetHeight(image.get());
    constexpr std::size_t kMost = std::numeric_limits<std::uint16_t>::max();
    if (width > kMost || height > kMost) {
        CG_LOG_ERROR("A TGA file cannot hold %zu by %zu pixels", width, height);
        return false;
    }
    const host::Descriptor file(HostFileOpenForWriting(path));
    const Header header = headerFor(width, height);
    const bool isWritten = file && HostFileWrite(file.get(), header.data(), header.size()) &&
                           writeRows(file.get(), image.get());
    if (!isWritten)
        CG_LOG_ERROR("Failed to write \"%s\"", path);
    return isWritten;
}
