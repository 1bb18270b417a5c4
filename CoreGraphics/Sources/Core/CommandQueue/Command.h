// Command.h: the lives of command records.
#pragma once

#include "XGCommandQueue.h"

#include "Core/CommandQueue/CommandPool.h"

#include <cstddef>
#include <memory>

namespace cg {

inline constexpr uint32_t kCommandKinds = kXGCommandFillCircle + 1;
inline constexpr std::size_t kCommandItemBytes = 16;

static_assert(sizeof(CGRect) == kCommandItemBytes);
static_assert(sizeof(XGSprite) <= kCommandItemBytes);

// Releases what a record holds, and frees it.
struct FreeCommand {
    void operator()(XGCommand* command) const;
};
using CommandPointer = std::unique_ptr<XGCommand, FreeCommand>;

// A record of zeroes with room for items; empty when memory runs out.
CommandPointer makeCommand(XGCommandKind kind, std::size_t itemCount);

// The same in a queue's own memory, which it must not outlive.
CommandPointer makePooledCommand(CommandPool& pool, XGCommandKind kind, std::size_t itemCount);

// The kind as messages name it.
const char* commandName(XGCommandKind kind);

// The compositor's, if they can be used.
const XGTextureAtlasCallbacks* textureAtlasCallbacks();

} // namespace cg
