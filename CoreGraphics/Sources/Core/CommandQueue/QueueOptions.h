// QueueOptions.h: the switches of recording.
#pragma once

#include "XGCommandQueue.h"

namespace cg {

// Enters the options in the registry, the first time only.
void registerQueueOptions();

bool recordsDrawing();
// Whether commands of the kind are recorded at all.
bool recordsKind(XGCommandKind kind);
// The colour that a recorded command shows in while the debug option is on, borrowed; else NULL.
CGColorRef debugColorFor(XGCommandKind kind);

} // namespace cg
