// ByteSink.cpp: gathering written bytes.

#include "ByteSink.h"

#include "XGDataConsumer.h"

#include <cstring>

namespace imageio {

bool ByteSink::put(const void* bytes, std::size_t count) {
    isBroken_ = isBroken_ || !XGDataConsumerWriteBytes(consumer_, bytes, count);
    return !isBroken_;
}

bool ByteSink::write(const void* bytes, std::size_t count) {
    if (count > buffer_.size() - used_ && !flush())
        return false;
    if (count > buffer_.size())
        return put(bytes, count);
    std::memcpy(buffer_.data() + used_, bytes, count);
    used_ += count;
    return !isBroken_;
}

bool ByteSink::flush() {
    const std::size_t count = used_;
    used_ = 0;
    return count == 0 ? !isBroken_ : put(buffer_.data(), count);
}

} // namespace imageio
