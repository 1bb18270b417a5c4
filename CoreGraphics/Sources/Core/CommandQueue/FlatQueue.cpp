// FlatQueue.cpp: queues read from flat buffers.

#include "Core/CommandQueue/FlatQueue.h"

#include "XGPath.h"

#include "Core/CommandQueue/FlatCommand.h"
#include "Core/CommandQueue/ImageUploads.h"
#include "Core/CommandQueue/QueueOptions.h"
#include "Core/CommandQueue/XGCommandQueueRecord.h"
#include "Core/Object/Diagnostics.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace cg {

namespace {

std::uint32_t wordAt(const std::byte* record, std::size_t offset) {
    std::uint32_t word;
    std::memcpy(&word, record + offset, sizeof word);
    return word;
}

// Takes parts off the front of a buffer, as long as there are any.
class FlatReader {
public:
    explicit FlatReader(std::span<const std::byte> bytes) : left_(bytes) {}

    // NULL when fewer are left; then nothing is left.
    const std::byte* take(std::size_t count) {
        if (count > left_.size()) {
            left_ = {};
            return nullptr;
        }
        const std::byte* const part = left_.data();
        left_ = left_.subspan(count);
        return part;
    }

private:
    std::span<const std::byte> left_;
};

// Opacity is 1 where the four components leave none over for it.
cf::Ref<CGColorRef> colorFrom(const std::byte* bytes, CGColorSpaceRef space) {
    constexpr std::size_t most = 64;
    std::array<CGFloat, most> components;
    components.fill(1);
    std::memcpy(components.data(), bytes, flat::kColorComponents * sizeof(CGFloat));
    if (CGColorSpaceGetNumberOfComponents(space) >= most)
        return nullptr;
    return cf::adopt(CGColorCreate(space, components.data()));
}

// A glyph belongs to every command that shows it. Without an atlas there are none.
void retainSprites(XGCommand& command) {
    const XGTextureAtlasCallbacks* const atlas = textureAtlasCallbacks();
    XGSprite* const sprites = XGCommandGetSprites(&command);
    for (uint32_t i = 0; i < command.itemCount; ++i) {
        if (!atlas)
            sprites[i].glyph = nullptr;
        else if (sprites[i].glyph && atlas->retainGlyph)
            atlas->retainGlyph(sprites[i].glyph);
    }
}

// A record and its items; empty when they are cut short or there is no memory.
CommandPointer readRecord(FlatReader& reader, const std::byte* record) {
    const auto kind = static_cast<XGCommandKind>(wordAt(record, 0));
    CG_BUG_UNLESS(kind < kCommandKinds);
    const std::size_t itemCount = wordAt(record, 60);
    const std::byte* const items = reader.take(itemCount * kCommandItemBytes);
    CommandPointer command = items ? makeCommand(kind, itemCount) : nullptr;
    if (!command)
        return nullptr;
    for (const flat::Field& field : flat::kFields)
        std::memcpy(reinterpret_cast<std::byte*>(command.get()) + field.native, record + field.flat,
                    field.size);
    std::memcpy(command.get() + 1, items, itemCount * kCommandItemBytes);
    if (kind == kXGCommandDrawSprites)
        retainSprites(*command);
    return command;
}

CommandPointer readCommand(FlatReader& reader, CGColorSpaceRef space) {
    const std::byte* const record = reader.take(flat::kCommandSize);
    CommandPointer command = record ? readRecord(reader, record) : nullptr;
    if (!command)
        return nullptr;
    if (wordAt(record, flat::kColor) != 0) {
        const std::byte* const components = reader.take(flat::kColorComponents * sizeof(CGFloat));
        if (!components)
            return nullptr;
        command->color = colorFrom(components, space).release();
    }
    if (wordAt(record, flat::kPath) != 0) {
        const std::byte* const length = reader.take(sizeof(std::uint32_t));
        const std::byte* const bytes = length ? reader.take(wordAt(length, 0)) : nullptr;
        if (!bytes)
            return nullptr;
        command->path = _CGPathCreateFromBuffer(bytes, wordAt(length, 0));
    }
    command->image = uploadedImage(wordAt(record, flat::kImage)).release();
    return command;
}

cf::Ref<XGCommandQueueRef> readHeader(const std::byte* header, CGColorSpaceRef space) {
    auto queue = cf::adopt(makeQueue(wordAt(header, flat::kWidth), wordAt(header, flat::kHeight),
                                     wordAt(header, flat::kBitsPerComponent),
                                     wordAt(header, flat::kBitsPerPixel), space,
                                     static_cast<CGBitmapInfo>(wordAt(header, flat::kBitmapInfo))));
    if (queue)
        queue.get()->imageCount = wordAt(header, flat::kImageCount);
    return queue;
}

} // namespace

XGCommandQueueRef readQueue(std::span<const std::byte> bytes, CGColorSpaceRef space) {
    FlatReader reader(bytes);
    const std::byte* const header = reader.take(flat::kHeaderSize);
    auto queue = header ? readHeader(header, space) : nullptr;
    const std::size_t count = header ? wordAt(header, flat::kCommandCount) : 0;
    bool isWhole = queue && count <= kMostCommands;
    for (std::size_t i = 0; isWhole && i < count; ++i) {
        CommandPointer command = readCommand(reader, space);
        isWhole = command && queue.get()->commands.reserve();
        if (isWhole)
            queue.get()->commands.append(std::move(command));
    }
    if (isWhole)
        return queue.release();
    CG_LOG_ERROR("%zu bytes at %p are no command queue", bytes.size(),
                 static_cast<const void*>(bytes.data()));
    return nullptr;
}

} // namespace cg

// How much may be read stands in the buffer: the signature has no length.
XGCommandQueueRef XGCommandQueueCreateDeserialized(const void* buffer, CGColorSpaceRef space) {
    cg::registerQueueOptions();
    if (!buffer || !cg::recordsDrawing())
        return nullptr;
    const auto* const bytes = static_cast<const std::byte*>(buffer);
    std::uint64_t size = 0;
    if (cg::wordAt(bytes, cg::flat::kMark) == cg::flat::kMarkValue)
        std::memcpy(&size, bytes + cg::flat::kTotalSize, sizeof size);
    return cg::readQueue({bytes, static_cast<std::size_t>(size)}, space);
}
