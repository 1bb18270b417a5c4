// CommandPool.h: memory for many small records that go together.
#pragma once

#include <cstddef>

namespace cg {

// Records are taken one after another from blocks that grow; only the last one can be given back,
// and all others at once.
class CommandPool {
public:
    CommandPool() = default;
    ~CommandPool() { clear(); }
    CommandPool(const CommandPool&) = delete;
    CommandPool& operator=(const CommandPool&) = delete;

    // Zeroed, aligned for pointers; NULL when memory runs out.
    void* take(std::size_t size);
    // Takes back a record that nobody uses any more, if it was the last one.
    void giveBack(void* record);
    void clear();

private:
    struct Block {
        Block* before;
        std::size_t size;
        std::size_t used;

        std::byte* bytes() { return reinterpret_cast<std::byte*>(this + 1); }
    };

    class SpareBlocks;
    static SpareBlocks& spareBlocks();
    // Of `size` bytes for records, the head not set; NULL when memory runs out.
    static Block* makeBlock(std::size_t size);

    bool grow(std::size_t size);

    Block* last_ = nullptr;
};

} // namespace cg
