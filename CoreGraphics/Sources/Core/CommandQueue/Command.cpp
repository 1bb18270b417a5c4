// Command.cpp: making and freeing command records.

#include "Core/CommandQueue/Command.h"

#include "Core/Object/CheckedSize.h"
#include "Core/Object/RuntimeObject.h"

#include <array>
#include <atomic>
#include <cstdlib>

// Where addresses have 32 bits a record lies in memory as flat buffers have it.
static_assert(sizeof(void*) != 4 ||
              (offsetof(XGCommand, bounds) == 4 && offsetof(XGCommand, isPartial) == 20 &&
               offsetof(XGCommand, blendMode) == 24 && offsetof(XGCommand, color) == 32 &&
               offsetof(XGCommand, image) == 36 && offsetof(XGCommand, path) == 40 &&
               offsetof(XGCommand, itemCount) == 60 && sizeof(XGCommand) == 68));

namespace cg {

namespace {

std::atomic<const XGTextureAtlasCallbacks*> atlasCallbacks = nullptr;

void releaseSprites(const XGCommand& command) {
    const XGTextureAtlasCallbacks* const atlas = textureAtlasCallbacks();
    if (!atlas || !atlas->releaseGlyph)
        return;
    const XGSprite* const sprites = XGCommandGetSprites(&command);
    for (uint32_t i = 0; i < command.itemCount; ++i)
        if (sprites[i].glyph)
            atlas->releaseGlyph(sprites[i].glyph);
}

} // namespace

void FreeCommand::operator()(XGCommand* command) const {
    release(command->path);
    release(command->image);
    if (!command->lendsColor)
        release(command->color);
    if (command->kind == kXGCommandDrawSprites)
        releaseSprites(*command);
    if (!command->isPooled)
        std::free(command);
}

CommandPointer makeCommand(XGCommandKind kind, std::size_t itemCount) {
    const auto size = (CheckedSize(itemCount) * kCommandItemBytes + sizeof(XGCommand)).value();
    if (!size || itemCount > UINT32_MAX)
        return nullptr;
    CommandPointer command(static_cast<XGCommand*>(std::calloc(1, *size)));
    if (command) {
        command->kind = kind;
        command->itemCount = static_cast<uint32_t>(itemCount);
    }
    return command;
}

CommandPointer makePooledCommand(CommandPool& pool, XGCommandKind kind, std::size_t itemCount) {
    const auto size = (CheckedSize(itemCount) * kCommandItemBytes + sizeof(XGCommand)).value();
    if (!size || itemCount > UINT32_MAX)
        return nullptr;
    CommandPointer command(static_cast<XGCommand*>(pool.take(*size)));
    if (command) {
        command->kind = kind;
        command->itemCount = static_cast<uint32_t>(itemCount);
        command->isPooled = true;
    }
    return command;
}

const char* commandName(XGCommandKind kind) {
    constexpr std::array<const char*, kCommandKinds> names = {
        "fill rects", "draw sprites", "draw image", "fill path", "stroke path", "fill circle"};
    return kind < names.size() ? names[kind] : "<unknown>";
}

const XGTextureAtlasCallbacks* textureAtlasCallbacks() {
    return atlasCallbacks.load(std::memory_order_acquire);
}

} // namespace cg

void XGCommandQueueSetTextureAtlasCallbacks(const XGTextureAtlasCallbacks* callbacks) {
    const bool isUsable = callbacks && callbacks->version == 0;
    cg::atlasCallbacks.store(isUsable ? callbacks : nullptr, std::memory_order_release);
}
