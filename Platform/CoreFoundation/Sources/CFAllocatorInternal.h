// CFAllocatorInternal.h: which memory an allocator argument stands for.
#pragma once

#include <CoreFoundation/CFAllocator.h>

namespace cf {

// The allocator meant by an argument that may be NULL; lent.
CFAllocatorRef resolveAllocator(CFAllocatorRef allocator);

// Whether the argument stands for plain malloc. Objects in such memory store no allocator.
bool isSystemAllocator(CFAllocatorRef allocator);

// Gives back the block of an allocator that lives in memory of its own making, then lets go of its
// info, which the deallocation still needs.
void freeSelfHostedAllocator(CFAllocatorRef allocator, void* block);

} // namespace cf
