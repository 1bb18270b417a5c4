// NativeBuffer.h: pixel memory of the host that is there only while it is locked.
#pragma once

#include "XGBitmapContext.h"

namespace cg {

// The buffer's pixels, until it is unlocked; NULL, with an error in the log and nothing locked,
// when it has been released.
void* lockNativeBuffer(XGNativeBuffer& buffer);
void unlockNativeBuffer(XGNativeBuffer& buffer);

} // namespace cg
