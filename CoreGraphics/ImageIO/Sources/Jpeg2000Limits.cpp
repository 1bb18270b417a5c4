// Jpeg2000Limits.cpp: what decoding a JPEG 2000 codestream would set up besides pixels.

#include "Jpeg2000Limits.h"

#include "BigEndian.h"

#include <algorithm>
#include <array>
#include <span>

namespace imageio {
namespace {

constexpr std::uint32_t kMostResolutions = 33;
constexpr std::uint32_t kLargestPrecinct = 15; // Its exponent, where a header names none.

// How one component of a tile is coded; sizes as exponents of two.
struct Coding {
    std::uint32_t resolutions = 0, blockWidth = 0, blockHeight = 0;
    std::array<std::uint32_t, kMostResolutions> precinctWidths{}, precinctHeights{};
};

// Numbers of records, which may be of any size.
struct Structures {
    double precincts = 0, blocks = 0, largestPrecincts = 0;
};

// How many pieces of 2^exponent a line of so many samples may touch.
double pieces(double length, std::uint32_t exponent) {
    return length / double(std::uint64_t(1) << std::min(exponent, 62u)) + 2;
}

Structures structuresOf(const Coding& coding, double width, double height) {
    Structures result;
    for (std::uint32_t r = 0; r < coding.resolutions; ++r) {
        const double scale = double(std::uint64_t(1) << (coding.resolutions - 1 - r));
        const double precincts = pieces(width / scale, coding.precinctWidths[r]) *
                                 pieces(height / scale, coding.precinctHeights[r]);
        // All but the coarsest resolution consist of three bands of half its sides.
        const std::uint32_t halved = r > 0;
        const auto blocksIn = [&](double length, std::uint32_t block, std::uint32_t precinct) {
            return pieces(length / scale / (1 + halved),
                          std::min(block, precinct - std::min(precinct, halved)));
        };
        result.precincts += precincts * (halved ? 3 : 1);
        result.blocks += blocksIn(width, coding.blockWidth, coding.precinctWidths[r]) *
                         blocksIn(height, coding.blockHeight, coding.precinctHeights[r]) *
                         (halved ? 3 : 1);
        result.largestPrecincts = std::max(result.largestPrecincts, precincts);
    }
    return result;
}

// The limits leave room for pictures that break off early and for tiles of a few pixels, and keep
// the records below the size of the samples that the same bytes are allowed. Whether a picture of
// which all is coded like that is within them.
bool isInProportion(const Jpeg2000Header& header, const Coding& coding, std::uint32_t layers) {
    constexpr double kPrecinctsPerByte = 8, kBlocksPerByte = 128, kPacketsPerByte = 64;
    constexpr double kPrecinctsAlways = 1 << 12, kBlocksAlways = 1 << 16, kPacketsAlways = 1 << 18;
    Structures all;
    for (const auto& component : std::span(header.components).first(header.componentCount)) {
        const Structures each =
            structuresOf(coding, double(header.tileWidth) / component.horizontalStep,
                         double(header.tileHeight) / component.verticalStep);
        all.precincts += header.tileCount * each.precincts;
        all.blocks += header.tileCount * each.blocks;
        all.largestPrecincts = std::max(all.largestPrecincts, each.largestPrecincts);
    }
    const double packets =
        (layers + 1.0) * coding.resolutions * double(header.componentCount) * all.largestPrecincts;
    const auto size = static_cast<double>(header.codestream.size());
    return all.precincts <= kPrecinctsPerByte * size + kPrecinctsAlways &&
           all.blocks <= kBlocksPerByte * size + kBlocksAlways &&
           packets <= kPacketsPerByte * size + kPacketsAlways;
}

// ---- Headers, of the whole and of tile parts, which may say otherwise for their tile.

enum Marker : std::uint32_t {
    kCOD = 0xFF52,
    kCOC = 0xFF53,
    kTilePart = 0xFF90,
    kData = 0xFF93,
};

// OpenJPEG looks for the next of these where it meets another one in the main header.
bool isKnown(std::uint32_t marker) {
    constexpr std::uint32_t kKnown[] = {
        0xFF50, 0xFF51, kCOD,   kCOC,   0xFF55, 0xFF57, 0xFF58, 0xFF59, 0xFF5C, 0xFF5D,    0xFF5E,
        0xFF5F, 0xFF60, 0xFF61, 0xFF63, 0xFF64, 0xFF74, 0xFF75, 0xFF77, 0xFF78, kTilePart, 0xFF91};
    return std::ranges::find(kKnown, marker) != std::end(kKnown);
}

// The parameters that end a marker of coding styles, from the number of decompositions on.
Coding readCoding(Bytes bytes, bool hasPrecincts) {
    Coding coding;
    coding.resolutions = std::min(number(bytes, 0, 1) + 1, kMostResolutions);
    coding.blockWidth = (number(bytes, 1, 1) & 0xF) + 2;
    coding.blockHeight = (number(bytes, 2, 1) & 0xF) + 2;
    for (std::uint32_t r = 0; r < coding.resolutions; ++r) {
        const std::uint32_t sizes =
            hasPrecincts ? number(bytes, 5 + r, 1) : kLargestPrecinct << 4 | kLargestPrecinct;
        coding.precinctWidths[r] = sizes & 0xF;
        coding.precinctHeights[r] = sizes >> 4;
    }
    return coding;
}

class HeaderWalk {
public:
    explicit HeaderWalk(const Jpeg2000Header& header)
        : header_(header), bytes_(header.codestream) {}

    // Goes from marker to marker as the decoder does, which ends at the first that is damaged.
    bool allFit() {
        constexpr std::size_t kHead = 4;
        while (position_ <= bytes_.size() && bytes_.size() - position_ >= kHead) {
            const std::uint32_t marker = u16(bytes_, position_);
            if (marker == kData && isInTilePart_) {
                position_ = std::max(position_ + 2, partEnd_);
                continue;
            }
            if (!isKnown(marker)) {
                if (isInTilePart_)
                    return true;
                position_ += 2;
                continue;
            }
            const std::size_t length = u16(bytes_, position_ + 2);
            if (length < 2 || length > bytes_.size() - position_ - 2)
                return true;
            if (!fits(marker, bytes_.subspan(position_ + kHead, length - 2)))
                return false;
            position_ += 2 + length;
        }
        return true;
    }

private:
    bool fits(std::uint32_t marker, Bytes contents) {
        if (marker == kTilePart) {
            const std::size_t length = u32(contents, 2), left = bytes_.size() - position_;
            partEnd_ = position_ + (length == 0 || length > left ? left : length);
            isInTilePart_ = true;
        } else if (marker == kCOD) {
            layers_ = std::max(layers_, u16(contents, 2));
            return codingFits(contents, 0, 5);
        } else if (marker == kCOC) { // Of a component, whose number takes a byte.
            return codingFits(contents, 1, 2);
        }
        return true;
    }

    bool codingFits(Bytes contents, std::size_t style, std::size_t parameters) const {
        if (contents.size() < parameters)
            return true;
        const bool hasPrecincts = (contents[style] & 1) != 0;
        return isInProportion(header_, readCoding(contents.subspan(parameters), hasPrecincts),
                              layers_);
    }

    const Jpeg2000Header& header_;
    const Bytes bytes_;
    std::size_t position_ = 2; // Behind the marker that starts the codestream.
    std::size_t partEnd_ = 0;
    bool isInTilePart_ = false;
    std::uint32_t layers_ = 1;
};

} // namespace

bool structuresFit(const Jpeg2000Header& header) {
    return HeaderWalk(header).allFit();
}

} // namespace imageio
