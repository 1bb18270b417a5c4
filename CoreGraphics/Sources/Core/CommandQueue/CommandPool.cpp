// CommandPool.cpp: records taken from blocks.

#include "Core/CommandQueue/CommandPool.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace cg {

namespace {

// A picture of a few marks fits into the first block; the last one is mostly full.
constexpr std::size_t kSmallestBlock = 1 << 10, kLargestBlock = 1 << 15;

constexpr std::size_t aligned(std::size_t size) {
    constexpr std::size_t step = alignof(std::max_align_t);
    return (size + step - 1) / step * step;
}

} // namespace

bool CommandPool::grow(std::size_t size) {
    const std::size_t usual = last_ ? std::min(2 * last_->size, kLargestBlock) : kSmallestBlock;
    const std::size_t wanted = std::max(usual, size);
    if (wanted > std::numeric_limits<std::size_t>::max() - sizeof(Block))
        return false;
    auto* const block = static_cast<Block*>(std::malloc(sizeof(Block) + wanted));
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
        std::free(block);
    }
}

} // namespace cg
