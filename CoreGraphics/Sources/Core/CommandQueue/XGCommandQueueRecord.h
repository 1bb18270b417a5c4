// XGCommandQueueRecord.h: what a command queue holds.
#pragma once

#include "XGCommandQueue.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <Host/Host.h>

#include "Core/CommandQueue/Command.h"

#include <cstddef>
#include <memory>
#include <span>

namespace cg {

inline constexpr std::size_t kMostCommands = 10000;

// Commands in the order of their submission. Growing may fail, and says so beforehand.
class CommandList {
public:
    std::size_t size() const { return count_; }
    std::span<const CommandPointer> all() const { return {commands_.get(), count_}; }

    // Makes room for one more.
    bool reserve();
    // There is room for it.
    void append(CommandPointer command) { commands_[count_++] = std::move(command); }
    void clear(); // Keeps the room.

private:
    std::unique_ptr<CommandPointer[]> commands_; // Absent until the first one.
    std::size_t count_ = 0;
    std::size_t capacity_ = 0;
};

} // namespace cg

struct XGCommandQueue {
    CFRuntimeBase base;
    cg::CommandPool pool; // Of the commands that contexts record, which go before it.
    cg::CommandList commands;
    // The colour of the last recorded command that owns one, for those that follow to share.
    CGColorRef lastColor = nullptr;
    uint32_t imageCount = 0;
    const XGCommand* backgroundFill = nullptr; // Among the commands.
    bool isClosed = false;
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t bitsPerComponent = 0;
    uint32_t bitsPerPixel = 0;
    cf::Ref<CGColorSpaceRef> space;
    CGBitmapInfo bitmapInfo = 0;
    std::size_t bytesPerRow = 0; // Of the bitmap that records; 0 where none does.
    // What images of the queue show, once one of them was looked at. The mutex guards that alone;
    // it is held while the queue is drawn, which takes the locks of what it draws.
    host::Mutex drawingMutex;
    cf::Ref<CGContextRef> drawing;

    CGRect canvas() const {
        return {{0, 0}, {static_cast<CGFloat>(width), static_cast<CGFloat>(height)}};
    }
};

namespace cg {

// An empty queue, whatever the options say; NULL when memory runs out.
XGCommandQueueRef makeQueue(uint32_t width, uint32_t height, uint32_t bitsPerComponent,
                            uint32_t bitsPerPixel, CGColorSpaceRef space, CGBitmapInfo bitmapInfo);
// A record in the queue's own memory, zeroed; the queue takes it or has it given back. NULL when
// memory runs out.
XGCommand* draftCommand(XGCommandQueue& queue, XGCommandKind kind, std::size_t itemCount);
void dropDraft(XGCommandQueue& queue, XGCommand* draft);
// XGCommandQueueAddCommand of a draft with standardised bounds and without a colour, which gets
// this one: one of the canvas's space, lent, or NULL.
bool addDraft(XGCommandQueue& queue, XGCommand* draft, CGColorRef color);
// From now on every command is refused: an image stands for what was recorded until now.
inline void closeQueue(XGCommandQueueRef queue) {
    queue->isClosed = true;
}

} // namespace cg
