// Jpeg2000Header.cpp: reading the headers of JPEG 2000 files.

#include "Jpeg2000Header.h"

#include "BigEndian.h"

#include <algorithm>
#include <limits>

namespace imageio {
namespace {

constexpr std::uint32_t kMostDepth = 16;

constexpr std::uint32_t name(const char (&text)[5]) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | static_cast<std::uint8_t>(text[i]);
    return value;
}

// ---- Codestream.

std::uint32_t ceilDivide(std::uint32_t a, std::uint32_t b) {
    return static_cast<std::uint32_t>((std::uint64_t(a) + b - 1) / b);
}

// Each tile has a header of its own of 14 bytes. Decoders set up all tiles at once, so that a file
// that announces more than it can hold is refused.
bool readTiles(Bytes siz, std::size_t fileSize, Jpeg2000Header& header) {
    constexpr std::size_t kTileHeader = 14;
    const std::uint32_t right = u32(siz, 6), bottom = u32(siz, 10);
    const std::uint32_t tileWidth = u32(siz, 22), tileHeight = u32(siz, 26);
    const std::uint32_t left = u32(siz, 30), top = u32(siz, 34);
    if (tileWidth == 0 || tileHeight == 0 || left > right || top > bottom)
        return false;
    const std::uint64_t tiles =
        std::uint64_t(ceilDivide(right - left, tileWidth)) * ceilDivide(bottom - top, tileHeight);
    header.tileWidth = std::min(tileWidth, right - header.left);
    header.tileHeight = std::min(tileHeight, bottom - header.top);
    header.tileCount = static_cast<double>(tiles);
    return tiles <= fileSize / kTileHeader + 1;
}

bool readComponents(Bytes siz, Jpeg2000Header& header) {
    constexpr std::size_t kFirst = 40, kSize = 3;
    header.componentCount = u16(siz, 38);
    if (header.componentCount < 1 || header.componentCount > header.components.size() ||
        siz.size() < kFirst + header.componentCount * kSize)
        return false;
    header.horizontalStep = header.verticalStep = std::numeric_limits<std::uint32_t>::max();
    for (std::size_t i = 0; i < header.componentCount; ++i) {
        const std::size_t at = kFirst + i * kSize;
        auto& component = header.components[i];
        component = {(siz[at] & 0x7Fu) + 1, siz[at + 1], siz[at + 2]};
        if (component.depth > kMostDepth || component.horizontalStep == 0 ||
            component.verticalStep == 0)
            return false;
        header.horizontalStep = std::min(header.horizontalStep, component.horizontalStep);
        header.verticalStep = std::min(header.verticalStep, component.verticalStep);
        header.depth = std::max(header.depth, component.depth);
    }
    return true;
}

// The marker of sizes comes first.
bool readCodestream(Bytes codestream, std::size_t fileSize, Jpeg2000Header& header) {
    constexpr std::uint32_t kStartAndSizes = 0xFF4FFF51;
    if (u32(codestream, 0) != kStartAndSizes)
        return false;
    const Bytes siz = codestream.subspan(2); // From the marker itself on.
    const std::uint32_t right = u32(siz, 6), bottom = u32(siz, 10);
    header.left = u32(siz, 14);
    header.top = u32(siz, 18);
    if (header.left >= right || header.top >= bottom || !readTiles(siz, fileSize, header) ||
        !readComponents(siz, header))
        return false;
    header.width =
        ceilDivide(right, header.horizontalStep) - ceilDivide(header.left, header.horizontalStep);
    header.height =
        ceilDivide(bottom, header.verticalStep) - ceilDivide(header.top, header.verticalStep);
    header.channelCount = header.componentCount;
    header.codestream = codestream;
    return true;
}

// ---- Boxes: a length that counts itself, a name, contents.

struct Box {
    std::uint32_t type = 0; // 0: there is no box here.
    Bytes contents, rest;
};

Box nextBox(Bytes bytes) {
    constexpr std::size_t kHead = 8, kLongHead = 16;
    if (bytes.size() < kHead)
        return {};
    std::uint64_t length = u32(bytes, 0);
    std::size_t head = kHead;
    if (length == 1) { // The true length has eight bytes.
        length = std::uint64_t(u32(bytes, 8)) << 32 | u32(bytes, 12);
        head = kLongHead;
    } else if (length == 0) {
        length = bytes.size();
    }
    // A box that breaks off has what there is of it.
    const std::size_t size =
        length < bytes.size() ? static_cast<std::size_t>(length) : bytes.size();
    if (size < head)
        return {};
    return {u32(bytes, 4), bytes.subspan(head, size - head), bytes.subspan(size)};
}

// A profile says at its byte 16 for which colours it is.
Jpeg2000Colors colorsOfProfile(Bytes profile) {
    switch (u32(profile, 16)) {
    case name("GRAY"):
        return Jpeg2000Colors::Gray;
    case name("CMYK"):
        return Jpeg2000Colors::CMYK;
    default:
        return Jpeg2000Colors::Unspecified;
    }
}

// The first colour box that is understood counts.
bool readColors(Bytes colr, Jpeg2000Header& header) {
    constexpr std::uint32_t kEnumerated = 1, kRestrictedProfile = 2, kAnyProfile = 3;
    const std::uint32_t method = colr.empty() ? 0 : colr[0];
    if ((method == kRestrictedProfile || method == kAnyProfile) && colr.size() > 3) {
        header.profile = colr.subspan(3);
        header.colors = colorsOfProfile(header.profile);
        return true;
    }
    if (method != kEnumerated)
        return false;
    header.colors = static_cast<Jpeg2000Colors>(u32(colr, 3));
    return true;
}

void readChannelDefinitions(Bytes cdef, Jpeg2000Header& header) {
    constexpr std::uint32_t kPremultipliedOpacity = 2;
    const std::uint32_t count = u16(cdef, 0);
    for (std::uint32_t i = 0; i < count && 2 + i * 6 < cdef.size(); ++i)
        header.isPremultiplied |= u16(cdef, 2 + i * 6 + 2) == kPremultipliedOpacity;
}

struct Palette {
    std::size_t channels = 0;
    std::uint32_t depth = 0;
};

bool readPalette(Bytes pclr, Palette& palette) {
    palette.channels = pclr.size() > 3 ? pclr[2] : 0;
    if (palette.channels < 1 || palette.channels > 4 || pclr.size() < 3 + palette.channels)
        return false;
    for (std::size_t i = 0; i < palette.channels; ++i)
        palette.depth = std::max(palette.depth, (pclr[3 + i] & 0x7Fu) + 1);
    return palette.depth <= kMostDepth;
}

bool readHeaderBoxes(Bytes boxes, Jpeg2000Header& header, Palette& palette) {
    bool hasColors = false;
    for (Box box = nextBox(boxes); box.type != 0; box = nextBox(box.rest)) {
        if (box.type == name("colr") && !hasColors)
            hasColors = readColors(box.contents, header);
        else if (box.type == name("cdef"))
            readChannelDefinitions(box.contents, header);
        else if (box.type == name("pclr") && !readPalette(box.contents, palette))
            return false;
    }
    return true;
}

bool readBoxes(Bytes file, Jpeg2000Header& header) {
    Palette palette;
    for (Box box = nextBox(file); box.type != 0; box = nextBox(box.rest)) {
        if (box.type == name("jp2h") && !readHeaderBoxes(box.contents, header, palette))
            return false;
        if (box.type != name("jp2c"))
            continue;
        if (!readCodestream(box.contents, file.size(), header))
            return false;
        if (palette.channels > 0) {
            header.channelCount = palette.channels;
            header.depth = palette.depth;
        }
        return true;
    }
    return false;
}

// ---- Colours.

// Coarser second and third components are colour differences where nothing else is said.
void guessColors(Jpeg2000Header& header) {
    const bool isOpen = header.colors == Jpeg2000Colors::Unspecified && header.profile.empty();
    const auto& c = header.components;
    if (isOpen && header.componentCount >= 3 && c[1].horizontalStep > c[0].horizontalStep &&
        c[2].horizontalStep > c[0].horizontalStep)
        header.colors = Jpeg2000Colors::SYCC;
}

bool isUnderstood(Jpeg2000Colors colors) {
    switch (colors) {
    case Jpeg2000Colors::Unspecified:
    case Jpeg2000Colors::CMYK:
    case Jpeg2000Colors::SRGB:
    case Jpeg2000Colors::Gray:
    case Jpeg2000Colors::SYCC:
        return true;
    }
    return false;
}

} // namespace

std::size_t Jpeg2000Header::colorCount() const {
    if (colors == Jpeg2000Colors::CMYK && channelCount == 4)
        return 4;
    return colors == Jpeg2000Colors::Gray || channelCount < 3 ? 1 : 3;
}

std::optional<Jpeg2000Header> readJpeg2000Header(Bytes file) {
    constexpr std::uint32_t kSignatureBox = 12;
    Jpeg2000Header header;
    const bool hasBoxes = u32(file, 0) == kSignatureBox;
    if (hasBoxes ? !readBoxes(file, header) : !readCodestream(file, file.size(), header))
        return std::nullopt;
    guessColors(header);
    if (!isUnderstood(header.colors))
        return std::nullopt;
    return header;
}

} // namespace imageio
