// PngChunks.cpp: the chunks that a PNG file consists of.

#include "PngChunks.h"

#include "BigEndian.h"

#include <algorithm>
#include <new>

namespace imageio {
namespace {

constexpr std::size_t kSignature = 8;
constexpr std::size_t kFrame = 12; // Length, name and checksum.

// The kinds that the format lets follow the pixels.
bool mayComeLate(std::uint32_t name) {
    switch (name) {
    case pngName("eXIf"):
    case pngName("iTXt"):
    case pngName("tEXt"):
    case pngName("tIME"):
    case pngName("zTXt"):
        return true;
    default:
        return false;
    }
}

// Calls `take` with each chunk that belongs in the copy: the first, which says what picture it is,
// and those of the late kinds behind the pixels.
template <typename Take>
void visitLate(Bytes file, const Take& take) {
    PngChunks chunks(file);
    bool isBehindPixels = false;
    while (const auto chunk = chunks.next()) {
        isBehindPixels |= chunk->name == pngName("IDAT");
        if (chunk->name == pngName("IHDR") || (isBehindPixels && mayComeLate(chunk->name)))
            take(*chunk);
    }
}

} // namespace

PngChunks::PngChunks(Bytes file) : rest_(file.subspan(std::min(kSignature, file.size()))) {}

std::optional<PngChunk> PngChunks::next() {
    if (rest_.size() < kFrame)
        return std::nullopt;
    const std::size_t length = u32(rest_, 0);
    if (length > rest_.size() - kFrame)
        return std::nullopt;
    const PngChunk chunk = {u32(rest_, 4), rest_.first(kFrame + length)};
    rest_ = rest_.subspan(chunk.whole.size());
    return chunk;
}

std::uint32_t PngChunks::nameOfBrokenChunk() {
    while (next()) {
    }
    return u32(rest_, 4);
}

PngLateMetadata::PngLateMetadata(Bytes file) {
    std::size_t size = kSignature;
    bool isWanted = false;
    visitLate(file, [&](const PngChunk& chunk) {
        size += chunk.whole.size();
        isWanted |= mayComeLate(chunk.name);
    });
    if (isWanted)
        copy_.reset(new (std::nothrow) std::uint8_t[size]);
    if (!copy_)
        return;
    const auto append = [this](Bytes bytes) {
        std::ranges::copy(bytes, copy_.get() + size_);
        size_ += bytes.size();
    };
    append(file.first(kSignature));
    // The bytes under a mapping may have changed meanwhile.
    visitLate(file, [&](const PngChunk& chunk) {
        if (chunk.whole.size() <= size - size_)
            append(chunk.whole);
    });
}

} // namespace imageio
