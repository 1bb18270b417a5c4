// XGCommandQueueSerialize.cpp: queues written into flat buffers.

#include "XGCommandQueue.h"
#include "XGImage.h"
#include "XGPath.h"

#include "Core/CommandQueue/FlatCommand.h"
#include "Core/CommandQueue/XGCommandQueueRecord.h"
#include "Core/Object/Diagnostics.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace cg {

namespace {

// Writes on, or only counts.
class FlatWriter {
public:
    explicit FlatWriter(void* buffer) : start_(static_cast<std::byte*>(buffer)) {}

    std::size_t size() const { return size_; }
    bool writes() const { return start_; }

    void add(const void* bytes, std::size_t count) {
        if (start_)
            std::memcpy(start_ + size_, bytes, count);
        size_ += count;
    }
    void add(std::uint32_t word) { add(&word, sizeof word); }

    // Where `count` bytes go that somebody else writes; NULL when only counting.
    std::byte* claim(std::size_t count) {
        std::byte* const place = start_ ? start_ + size_ : nullptr;
        size_ += count;
        return place;
    }

private:
    std::byte* start_;
    std::size_t size_ = 0;
};

void put(std::byte* record, std::size_t offset, std::uint32_t word) {
    std::memcpy(record + offset, &word, sizeof word);
}

void writeHeader(FlatWriter& writer, const XGCommandQueue& queue, std::size_t totalSize) {
    std::array<std::byte, flat::kHeaderSize> header = {};
    const auto set = [&](std::size_t offset, std::uint32_t word) {
        put(header.data(), offset, word);
    };
    const auto total = static_cast<std::uint64_t>(totalSize);
    set(flat::kMark, flat::kMarkValue);
    std::memcpy(header.data() + flat::kTotalSize, &total, sizeof total);
    set(flat::kImageCount, queue.imageCount);
    set(flat::kWidth, queue.width);
    set(flat::kHeight, queue.height);
    set(flat::kBitsPerComponent, queue.bitsPerComponent);
    set(flat::kBitsPerPixel, queue.bitsPerPixel);
    set(flat::kBitmapInfo, queue.bitmapInfo);
    set(flat::kCommandCount, static_cast<std::uint32_t>(queue.commands.size()));
    set(flat::kProcess, static_cast<std::uint32_t>(getpid()));
    writer.add(header.data(), header.size());
}

// Absent components are 0.
void writeColor(FlatWriter& writer, CGColorRef color) {
    std::array<CGFloat, flat::kColorComponents> components = {};
    const std::size_t count = std::min(CGColorGetNumberOfComponents(color), components.size());
    if (const CGFloat* const own = CGColorGetComponents(color))
        std::copy_n(own, count, components.begin());
    writer.add(components.data(), sizeof components);
}

void writePath(FlatWriter& writer, CGPathRef path) {
    const std::size_t size = _CGPathWriteToBuffer(path, nullptr);
    writer.add(static_cast<std::uint32_t>(size));
    if (std::byte* const place = writer.claim(size))
        _CGPathWriteToBuffer(path, place);
}

void handOver(CGImageRef image) {
    if (XGImageIsUploaded(image))
        return;
    XGImageSetUploaded(image, true);
    CFArrayAppendValue(XGCommandQueueGetImagesToUpload(), image);
}

void writeCommand(FlatWriter& writer, const XGCommand& command) {
    CG_BUG_UNLESS(command.kind < kCommandKinds);
    std::array<std::byte, flat::kCommandSize> record = {};
    for (const flat::Field& field : flat::kFields)
        std::memcpy(record.data() + field.flat,
                    reinterpret_cast<const std::byte*>(&command) + field.native, field.size);
    put(record.data(), flat::kColor, command.color ? 1 : 0);
    put(record.data(), flat::kImage, XGCommandQueueGetImageKey(command.image));
    put(record.data(), flat::kPath, command.path ? 1 : 0);
    writer.add(record.data(), record.size());
    writer.add(&command + 1, command.itemCount * kCommandItemBytes);
    if (command.color)
        writeColor(writer, command.color);
    if (command.path)
        writePath(writer, command.path);
    if (command.image && writer.writes())
        handOver(command.image);
}

bool haveSources(const XGCommandQueue& queue) {
    return std::ranges::all_of(queue.commands.all(), [](const auto& command) {
        return !command->image || XGImageGetSourceDataProvider(command->image);
    });
}

std::size_t flatSize(const XGCommandQueue& queue) {
    FlatWriter counter(nullptr);
    counter.claim(flat::kHeaderSize);
    for (const auto& command : queue.commands.all())
        writeCommand(counter, *command);
    return counter.size();
}

} // namespace

} // namespace cg

bool XGCommandQueueSerialize(XGCommandQueueRef queue, void* buffer, size_t* size) {
    if (!queue || !cg::haveSources(*queue))
        return false;
    const std::size_t total = cg::flatSize(*queue);
    if (size)
        *size = total;
    if (!buffer)
        return true;
    cg::FlatWriter writer(buffer);
    cg::writeHeader(writer, *queue, total);
    for (const auto& command : queue->commands.all())
        cg::writeCommand(writer, *command);
    return true;
}
