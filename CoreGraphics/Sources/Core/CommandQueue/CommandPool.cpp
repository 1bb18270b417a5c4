// CommandPool.cpp: records taken from blocks.

#include "Core/CommandQueue/CommandPool.h"

#include <Host/Host.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>

namespace cg {

namespace {

// A picture of a few marks fits into the first block; the last one is mostly full.
constexpr std::size_t kSmallestBlock = 1 << 10, kLargestBlock = 1 << 15;

constexpr std::size_t aligned(std::size_t size) {
    constexpr std::size_t step = alignof(std::max_align_t);
    return (size + step - 1) / step * step;
}

} // namespace

// Blocks of emptied pools for the next ones, of all threads. Pictures are recorded anew for every
// frame; fresh memory costs more to touch for the first time than recording into it does.
class CommandPool::SpareBlocks {
public:
    // One of the largest blocks, or NULL.
    Block* take() {
        const std::lock_guard hold(mutex_);
        Block* const block = first_;
        if (block) {
            first_ = block->before;
            --count_;
        }
        return block;
    }
    // False for one that is not worth keeping.
    bool keep(Block* block) {
        if (block->size != kLargestBlock)
            return false;
        const std::lock_guard hold(mutex_);
        if (count_ == kMost)
            return false;
        block->before = first_;
        first_ = block;
        ++count_;
        return true;
    }

private:
    static constexpr std::size_t kMost = 40; // What a full queue of small marks takes.

    host::Mutex mutex_; // No other lock is taken under it.
    Block* first_ = nullptr;
    std::size_t count_ = 0;
};

CommandPool::SpareBlocks& CommandPool::spareBlocks() {
    // Immortal, since queues may go while the process ends, and made without an allocation.
    alignas(SpareBlocks) static std::byte memory[sizeof(SpareBlocks)];
    static SpareBlocks* const blocks = ::new (static_cast<void*>(memory)) SpareBlocks;
    return *blocks;
}

CommandPool::Block* CommandPool::makeBlock(std::size_t size) {
    if (Block* const spare = size == kLargestBlock ? spareBlocks().take() : nullptr)
        return spare;
    if (size > std::numeric_limits<std::size_t>::max() - sizeof(Block))
        return nullptr;
    return static_cast<Block*>(std::malloc(sizeof(Block) + size));
}

bool CommandPool::grow(std::size_t size) {
    const std::size_t usual = last_ ? std::min(2 * last_->size, kLargestBlock) : kSmallestBlock;
    const std::size_t wanted = std::max(usual, size);
    Block* const block = makeBlock(wanted);
    if (!block)
        return false;
    *block = {.before = last_, .size = wanted, .used = 0};
    last_ = block;
    return true;
}

void* CommandPool::take(std::size_t size) {
    if (size > std::numeric_limits<std::size_t>::max() / 2)
        return nullptr;
    const std::size_t room = aligned(size);
    if ((!last_ || last_->size - last_->used < room) && !grow(room))
        return nullptr;
    void* const record = last_->bytes() + last_->used;
    last_->used += room;
    return std::memset(record, 0, size);
}

void CommandPool::giveBack(void* record) {
    auto* const bytes = static_cast<std::byte*>(record);
    if (last_ && bytes >= last_->bytes() && bytes < last_->bytes() + last_->used)
        last_->used = static_cast<std::size_t>(bytes - last_->bytes());
}

void CommandPool::clear() {
    while (last_) {
        Block* const block = last_;
        last_ = block->before;
        if (!spareBlocks().keep(block))
            std::free(block);
    }
}

} // namespace cg
