// ByteSink.h: the bytes of a file on their way into a data consumer.
#pragma once

#include <CoreGraphics/CGDataConsumer.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace imageio {

// Gathers the few bytes at a time that encoders write. What a consumer refuses breaks the sink: it
// takes nothing from then on.
class ByteSink {
public:
    // Lends the consumer.
    explicit ByteSink(CGDataConsumerRef consumer) : consumer_(consumer) {}
    ByteSink(const ByteSink&) = delete;
    ByteSink& operator=(const ByteSink&) = delete;

    bool write(const void* bytes, std::size_t count);
    // Hands over what has been gathered: to be called when all is written.
    bool flush();

private:
    bool put(const void* bytes, std::size_t count);

    CGDataConsumerRef consumer_;
    bool isBroken_ = false;
    std::size_t used_ = 0;
    std::array<std::uint8_t, 16384> buffer_;
};

} // namespace imageio
