// RecordingBackend.h: a destination that writes down what the front end asks of it.
#pragma once

#include "XGContext.h"
#include <CoreFoundation/CFRef.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace test {

// A context whose calls to its destination are kept as text, a line each:
//
//     fill M 0 0 L 4 0 L 4 4 Z winding in 1 0 0 1
//     shadow stroke M 0 0 L 4 0 width 2 in 0 0 0 1
//     fill M … even-odd in 1 0 0 1, stroke M … width 1 in 0 0 0 1
//     rects 0 0 4 4, 5 5 1 1 blend 0
//     shadow image 2 x 1 at 0 0 4 2 | tiled image 2 x 1 at 0 0 4 2
//     shadow layer at 0 0 4 2
//     shadow text 36 at 10 20, 37 at 17.5 20 size 14
//     begin layer alpha 0.5 blend 1 shadowed
//     end layer alpha 0.5 blend 1 shadowed
//     shading
//     prepare | flush | synchronize | release
class RecordingBackend {
public:
    explicit RecordingBackend(uint32_t kind = 100);
    RecordingBackend(const RecordingBackend&) = delete;
    RecordingBackend& operator=(const RecordingBackend&) = delete;

    CGContextRef context() const { return context_.get(); }
    XGGStateRef state() const;
    // Gives the context up.
    void release() { context_ = nullptr; }

    struct Call {
        std::string text;
        XGGStateRef state; // What the call came with; NULL and 0 for calls that have none.
        uint32_t flags;
    };
    // The calls since the last time, or their texts.
    std::vector<Call> takeWholeCalls();
    std::vector<std::string> takeCalls();
    // The flags that the last call with flags came with.
    uint32_t lastFlags() const { return lastFlags_; }

    // The callbacks with which the context was made; their info is the recorder.
    static XGContextCallbacks callbacks();

private:
    static RecordingBackend& from(void* info) { return *static_cast<RecordingBackend*>(info); }
    void note(const char* call) { calls_.push_back({call, nullptr, 0}); }
    void note(std::string call, XGGStateRef state, uint32_t flags);
    void noteLayer(const char* what, XGGStateRef state, uint32_t flags);

    std::vector<Call> calls_;
    uint32_t lastFlags_ = 0;
    cf::Ref<CGContextRef> context_; // Goes first: its end is recorded too.
};

} // namespace test
