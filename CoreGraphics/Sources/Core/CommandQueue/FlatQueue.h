// FlatQueue.h: reading a flat buffer whose length is known.
#pragma once

#include "XGCommandQueue.h"

#include <cstddef>
#include <span>

namespace cg {

// The queue that was written into `bytes`, of which nothing beyond the end is read. NULL, with an
// error, for bytes that are no queue; a kind of command that does not exist aborts the process.
XGCommandQueueRef readQueue(std::span<const std::byte> bytes, CGColorSpaceRef space);

} // namespace cg
