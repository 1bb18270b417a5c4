// NativeBuffer.cpp: pixel memory of the host, borrowed for a while.

#include "Core/Context/NativeBuffer.h"

#include "Core/Object/Diagnostics.h"

namespace cg {

void* lockNativeBuffer(XGNativeBuffer& buffer) {
    if (buffer.lock)
        buffer.lock(&buffer);
    if (buffer.data)
        return buffer.data;
    unlockNativeBuffer(buffer);
    CG_LOG_ERROR("Drawing into bitmap context after releasing the native buffer.");
    return nullptr;
}

void unlockNativeBuffer(XGNativeBuffer& buffer) {
    if (buffer.unlock)
        buffer.unlock(&buffer);
}

} // namespace cg
