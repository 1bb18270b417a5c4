// XGCommandQueue.cpp: queues, and what they take.

#include "XGCommandQueue.h"

#include "XGColor.h"
#include "XGColorSpace.h"

#include "Core/CommandQueue/QueueOptions.h"
#include "Core/CommandQueue/XGCommandQueueRecord.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr CGBitmapInfo kRecordsCommands = 0x40000000;
// Nothing shows through a colour above this.
constexpr CGFloat kOpaque = 0.999f;

CFStringRef describe(XGCommandQueueRef queue) {
    const cf::Ref<CFStringRef> background = cf::adopt(
        queue->backgroundFill ? CFCopyDescription(queue->backgroundFill->color) : nullptr);
    return CFStringCreateWithFormat(
        nullptr, nullptr, CFSTR("<XGCommandQueue %p %zd x %zd, %lld commands, bg=%@%s>"), queue,
        static_cast<ssize_t>(queue->width), static_cast<ssize_t>(queue->height),
        static_cast<long long>(queue->commands.size()), background.get(),
        queue->isClosed ? " closed" : "");
}

constexpr CFRuntimeClass kQueueClass = {
    .className = "XGCommandQueue",
    .finalize = cg::finalize<XGCommandQueue>,
    .copyDebugDescription = cg::debugDescriptionBy<describe>,
};

} // namespace

// ---- Lists

bool cg::CommandList::reserve() {
    if (count_ < capacity_)
        return true;
    const std::size_t capacity = std::max<std::size_t>(16, capacity_ * 2);
    std::unique_ptr<CommandPointer[]> grown(new (std::nothrow) CommandPointer[capacity]);
    if (!grown)
        return false;
    std::move(commands_.get(), commands_.get() + count_, grown.get());
    commands_ = std::move(grown);
    capacity_ = capacity;
    return true;
}

void cg::CommandList::clear() {
    while (count_ > 0)
        commands_[--count_] = nullptr;
}

// ---- Creation

XGCommandQueueRef cg::makeQueue(uint32_t width, uint32_t height, uint32_t bitsPerComponent,
                                uint32_t bitsPerPixel, CGColorSpaceRef space,
                                CGBitmapInfo bitmapInfo) {
    const auto queue = cg::create<XGCommandQueue>(kQueueClass);
    if (!queue)
        return nullptr;
    queue->width = width;
    queue->height = height;
    queue->bitsPerComponent = bitsPerComponent;
    queue->bitsPerPixel = bitsPerPixel;
    queue->space = cf::retain(space);
    queue->bitmapInfo = bitmapInfo & ~kRecordsCommands;
    return queue;
}

XGCommandQueueRef XGCommandQueueCreate(uint32_t width, uint32_t height, uint32_t bitsPerComponent,
                                       uint32_t bitsPerPixel, CGColorSpaceRef space,
                                       CGBitmapInfo bitmapInfo) {
    cg::registerQueueOptions();
    return cg::recordsDrawing()
               ? cg::makeQueue(width, height, bitsPerComponent, bitsPerPixel, space, bitmapInfo)
               : nullptr;
}

// ---- Accessors

CGSize XGCommandQueueGetSize(XGCommandQueueRef queue) {
    return queue ? queue->canvas().size : CGSizeZero;
}

CFIndex XGCommandQueueGetCommandCount(XGCommandQueueRef queue) {
    return queue ? static_cast<CFIndex>(queue->commands.size()) : 0;
}

const XGCommand* XGCommandQueueGetCommandAtIndex(XGCommandQueueRef queue, CFIndex index) {
    const bool isThere = index >= 0 && index < XGCommandQueueGetCommandCount(queue);
    return isThere ? queue->commands.all()[static_cast<std::size_t>(index)].get() : nullptr;
}

uint32_t XGCommandQueueGetImageCount(XGCommandQueueRef queue) {
    return queue ? queue->imageCount : 0;
}

const XGCommand* XGCommandQueueGetBackgroundFillCommand(XGCommandQueueRef queue) {
    return queue ? queue->backgroundFill : nullptr;
}

bool XGCommandQueueNeedsBlend(XGCommandQueueRef queue) {
    return queue && std::ranges::any_of(queue->commands.all(), [](const auto& command) {
               return command->blendMode != kCGBlendModeNormal;
           });
}

// ---- Adding

namespace {

bool isTakingKind(const XGCommandQueue& queue, XGCommandKind kind) {
    if (kind == kXGCommandDrawSprites && !cg::textureAtlasCallbacks())
        return false;
    return cg::recordsKind(kind) && !queue.isClosed;
}

bool hasRoom(XGCommandQueueRef queue, XGCommandKind kind) {
    if (queue->commands.size() < cg::kMostCommands)
        return queue->commands.reserve();
    if (HostLogIsEnabled(kHostLogWarning))
        HostLog(kHostLogWarning, "CommandQueue", "XGCommandQueueAddCommand",
                "CommandQueue: [%p] Rejecting %s command, exceeded max command count.",
                static_cast<void*>(queue), cg::commandName(kind));
    return false;
}

// What a colour is on the canvas. Empty for a colour that has no equal there, as a pattern.
cf::Ref<CGColorRef> colorOnCanvas(const XGCommandQueue& queue, CGColorRef color) {
    if (CGColorGetPattern(color))
        return nullptr;
    if (!queue.space ||
        XGColorSpaceEqualToColorSpace(CGColorGetColorSpace(color), queue.space.get()))
        return cf::retain(color);
    return cf::adopt(XGColorCreateWithColor(queue.space.get(), color, kCGRenderingIntentDefault));
}

void replaceColor(XGCommand& command, cf::Ref<CGColorRef> color) {
    cg::release(std::exchange(command.color, color.release()));
}

// Whether nothing of what lies beneath can be seen any more.
bool coversCanvas(const XGCommandQueue& queue, const XGCommand& command) {
    return command.kind == kXGCommandFillRects && !command.isPartial && command.itemCount > 0 &&
           CGColorGetAlpha(command.color) > kOpaque &&
           CGRectContainsRect(*XGCommandGetRects(&command), queue.canvas()) &&
           (command.blendMode == kCGBlendModeNormal || command.blendMode == kCGBlendModeCopy);
}

// A record of its own for one that is in the queue's memory, which all go at once.
cg::CommandPointer movedOut(cg::CommandPointer command) {
    if (!command->isPooled)
        return command;
    cg::CommandPointer copy = cg::makeCommand(command->kind, command->itemCount);
    if (!copy)
        return command;
    std::memcpy(copy.get(), command.get(),
                sizeof(XGCommand) + command->itemCount * cg::kCommandItemBytes);
    copy->isPooled = false;
    static_cast<void>(command.release());
    return copy;
}

// What lies beneath is forgotten.
cg::CommandPointer uncovered(XGCommandQueue& queue, cg::CommandPointer command) {
    if (command->lendsColor)
        command->color = cf::retain(command->color).release();
    command->lendsColor = false;
    command = movedOut(std::move(command));
    queue.commands.clear();
    if (!command->isPooled)
        queue.pool.clear();
    queue.imageCount = 0;
    queue.backgroundFill = nullptr;
    return command;
}

void append(XGCommandQueue& queue, cg::CommandPointer command) {
    const bool covers = coversCanvas(queue, *command);
    if (covers && queue.commands.size() > 0)
        command = uncovered(queue, std::move(command));
    if (covers)
        queue.backgroundFill = command.get();
    if (!command->lendsColor)
        queue.lastColor = command->color;
    if (command->kind == kXGCommandDrawImage)
        ++queue.imageCount;
    queue.commands.append(std::move(command));
}

// Whether a command of the kind, mode and colour can follow those that are there.
bool canTake(XGCommandQueueRef queue, const XGCommand& command, CGColorRef color) {
    if (!isTakingKind(*queue, command.kind) || !hasRoom(queue, command.kind))
        return false;
    return command.blendMode != kCGBlendModeCopy || queue->commands.size() == 0 ||
           CGColorGetAlpha(color) > kOpaque;
}

bool areSame(const CGRect& a, const CGRect& b) {
    return a.origin.x == b.origin.x && a.origin.y == b.origin.y && a.size.width == b.size.width &&
           a.size.height == b.size.height;
}

// Settles what follows from mode and bounds, which are standardised. False for a command that
// nobody could see.
bool settle(const XGCommandQueue& queue, XGCommand& command) {
    if (command.blendMode == kCGBlendModeCopy)
        command.blendMode = kCGBlendModeNormal;
    command.isPartial = !areSame(command.bounds, queue.canvas());
    return !CGRectIsEmpty(command.bounds);
}

} // namespace

bool XGCommandQueueAddCommand(XGCommandQueueRef queue, XGCommand* command) {
    if (!queue || !command || !canTake(queue, *command, command->color))
        return false;
    cf::Ref<CGColorRef> color;
    if (command->color && !(color = colorOnCanvas(*queue, command->color)))
        return false;

    command->isPooled = command->lendsColor = false;
    cg::CommandPointer taken(command);
    taken->bounds = CGRectStandardize(taken->bounds);
    if (!settle(*queue, *taken))
        return true;
    if (const CGColorRef debugColor = cg::debugColorFor(taken->kind))
        color = colorOnCanvas(*queue, debugColor);
    if (color)
        replaceColor(*taken, std::move(color));
    append(*queue, std::move(taken));
    return true;
}

// ---- Drafts

XGCommand* cg::draftCommand(XGCommandQueue& queue, XGCommandKind kind, std::size_t itemCount) {
    return makePooledCommand(queue.pool, kind, itemCount).release();
}

void cg::dropDraft(XGCommandQueue& queue, XGCommand* draft) {
    FreeCommand()(draft);
    queue.pool.giveBack(draft);
}

bool cg::addDraft(XGCommandQueue& queue, XGCommand* draft, CGColorRef color) {
    if (!canTake(&queue, *draft, color))
        return false;
    if (!settle(queue, *draft)) {
        dropDraft(queue, draft);
        return true;
    }
    cf::Ref<CGColorRef> debugColor;
    if (const CGColorRef shown = debugColorFor(draft->kind))
        color = (debugColor = colorOnCanvas(queue, shown)).get();
    draft->lendsColor = color == queue.lastColor;
    draft->color = draft->lendsColor ? color : cf::retain(color).release();
    append(queue, CommandPointer(draft));
    return true;
}
