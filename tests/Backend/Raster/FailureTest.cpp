// FailureTest.cpp: bitmaps that no memory holds, calls out of balance, and drawing whose
// allocations fail.

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/CollectedLog.h"
#include "Support/DrawingOperations.h"
#include "Support/FailingAllocator.h"
#include "Support/Picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <vector>

using test::Context;
using test::makeContext;
using test::Picture;

// A sanitizer is to refuse the absurd sizes of this test as malloc does.
extern "C" __attribute__((visibility("default"), used)) const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

TEST(DrawingFailure, BitmapsThatNoMemoryHoldsAreNone) {
    constexpr std::size_t kMost = (1u << 28) - 1; // What the rasteriser can count.
    const auto rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const Context small = makeContext(4, 4);
    const struct {
        const char* what;
        std::size_t bitsPerComponent;
        CGBitmapInfo info;
    } cases[] = {{"BGRA", 8, test::kBGRA},
                 {"24 bits", 8, kCGImageAlphaNone},
                 {"64 bits", 16, kCGImageAlphaPremultipliedLast}};
    for (const auto& [what, bits, info] : cases) {
        const CollectedLog log;
        EXPECT_FALSE(
            cf::adopt(CGBitmapContextCreate(nullptr, kMost, kMost, bits, 0, rgb.get(), info)))
            << what;
        EXPECT_THAT(log.lines(), testing::Contains(testing::HasSubstr("Failed to allocate")))
            << what;
    }
    const CollectedLog log;
    const auto side = static_cast<CGFloat>(1 << 27);
    EXPECT_FALSE(cf::adopt(CGLayerCreateWithContext(small.get(), {side, side}, nullptr)));
    EXPECT_THAT(log.lines(), testing::Contains(testing::HasSubstr("Failed to allocate")));
}

TEST(DrawingFailure, CallsOutOfBalanceSaySoAndLeaveTheStateAlone) {
    const Picture corner = {"....", "....", "....", "#..."};
    const Picture square = {"....", "....", "##..", "##.."},
                  none = {"....", "....", "....", "...."};
    const struct {
        const char* what;
        void (*call)(CGContextRef context);
        std::size_t lines;
        Picture expected; // After a fill of two by two pixels, clipped to one at first.
    } cases[] = {
        {"a restore", [](CGContextRef c) { CGContextRestoreGState(c); }, 1, corner},
        {"the end of no group", [](CGContextRef c) { CGContextEndTransparencyLayer(c); }, 1,
         corner},
        {"more restores than saves",
         [](CGContextRef c) {
             CGContextSaveGState(c);
             CGContextResetClip(c);
             for (int i = 0; i < 3; ++i)
                 CGContextRestoreGState(c);
         },
         2, corner},
        {"a restore inside a group, which is the group's",
         [](CGContextRef c) {
             CGContextBeginTransparencyLayer(c, nullptr);
             CGContextRestoreGState(c);
             CGContextFillRect(c, CGRectMake(0, 0, 2, 2));
             CGContextEndTransparencyLayer(c);
         },
         1, corner},
        {"a group that does not end",
         [](CGContextRef c) { CGContextBeginTransparencyLayer(c, nullptr); }, 0, none},
        {"saves that are not restored",
         [](CGContextRef c) {
             for (int i = 0; i < 100; ++i)
                 CGContextSaveGState(c);
             CGContextResetClip(c);
         },
         0, square},
        {"groups a thousand deep",
         [](CGContextRef c) {
             for (int i = 0; i < 1000; ++i)
                 CGContextBeginTransparencyLayer(c, nullptr);
             CGContextFillRect(c, CGRectMake(0, 0, 2, 2));
             for (int i = 0; i < 1000; ++i)
                 CGContextEndTransparencyLayer(c);
         },
         0, corner},
    };
    for (const auto& [what, call, lines, expected] : cases) {
        const Context context = makeContext(4, 4);
        CGContextClipToRect(context.get(), CGRectMake(0, 0, 1, 1));
        const CollectedLog log;
        call(context.get());
        EXPECT_EQ(log.lines().size(), lines) << what;
        CGContextFillRect(context.get(), CGRectMake(0, 0, 2, 2));
        EXPECT_EQ(Picture(context.get()), expected) << what;
    }
}

TEST(DrawingFailure, ASaveWithoutMemoryIsRestoredFromAllTheSame) {
    makeContext(4, 4); // Makes what is made only once.
    CGFloat widths[3] = {};
    bool isRight = true;
    const test::FailureSweep sweep = test::failEachAllocation([&] {
        const Context context = makeContext(4, 4); // A new one has no states to use again.
        const CGContextRef c = context.get();
        CGContextSetLineWidth(c, 1);
        CGContextSaveGState(c);
        CGContextSetLineWidth(c, 2);
        CGContextSaveGState(c);
        CGContextSaveGState(c);
        CGContextRestoreGState(c);
        widths[0] = CGContextGetLineWidth(c);
        CGContextRestoreGState(c);
        widths[1] = CGContextGetLineWidth(c);
        CGContextRestoreGState(c);
        widths[2] = CGContextGetLineWidth(c);
        // Where the first save failed there is nothing to come back to.
        isRight = isRight && (!c || (widths[0] == 2 && widths[1] == 2 && widths[2] <= 2));
    });
    EXPECT_GT(sweep.failures, 0u);
    EXPECT_TRUE(isRight);
}

// ---- Every allocation of every drawing operation

// What fails: memory for objects of the interface, or any memory at all.
enum class Failing { Objects, Everything };
enum Outcome { kDone, kFailedAndWentOn, kBroken };

constexpr std::size_t kRow = 4 * test::kTableWidth, kGuard = 256;

std::size_t untilFailure = 0;

// The thread's default allocator from now on; the `number`-th object will not be made.
void failObject(std::size_t number) {
    CFAllocatorContext context = {};
    context.allocate = [](CFIndex size, CFOptionFlags, void*) -> void* {
        return --untilFailure == 0 ? nullptr : std::malloc(static_cast<std::size_t>(size));
    };
    context.reallocate = [](void* memory, CFIndex size, CFOptionFlags, void*) -> void* {
        return --untilFailure == 0 ? nullptr : std::realloc(memory, static_cast<std::size_t>(size));
    };
    context.deallocate = [](void* memory, void*) { std::free(memory); };
    CFAllocatorSetDefault(CFAllocatorCreate(nullptr, &context));
    untilFailure = number;
}

// Whether the failure happened.
bool drawFailing(const test::DrawingOperation& operation, CGContextRef context, Failing what,
                 std::size_t number) {
    if (what == Failing::Objects) {
        failObject(number);
        test::drawOurs(operation, context, kCGBlendModeNormal);
        const bool happened = untilFailure == 0 || untilFailure > number;
        untilFailure = 0; // Counting down from there it meets none.
        return happened;
    }
    const test::AllocationFailure failure(number);
    test::drawOurs(operation, context, kCGBlendModeNormal);
    return failure.happened();
}

Outcome drawAndLookAround(const test::DrawingOperation& operation, Failing what,
                          std::size_t number) {
    std::vector<std::uint8_t> memory(2 * kGuard + kRow * test::kTableHeight, 0xA5);
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const Context context =
        cf::adopt(CGBitmapContextCreate(memory.data() + kGuard, test::kTableWidth,
                                        test::kTableHeight, 8, kRow, space.get(), test::kBGRA));
    CGContextSaveGState(context.get());
    const bool happened = drawFailing(operation, context.get(), what, number);
    CGContextRestoreGState(context.get());
    CGContextSetRGBFillColor(context.get(), 1, 0, 0, 1);
    CGContextFillRect(context.get(), CGRectMake(0, 0, 1, 1));
    const std::uint8_t* const lowest = &memory[memory.size() - kGuard - kRow];
    const auto isGuard = [](std::uint8_t byte) { return byte == 0xA5; };
    const bool isWhole = lowest[0] == 0 && lowest[2] == 255 && lowest[3] == 255 &&
                         std::all_of(memory.begin(), memory.begin() + kGuard, isGuard) &&
                         std::all_of(memory.end() - kGuard, memory.end(), isGuard);
    return !isWhole ? kBroken : happened ? kFailedAndWentOn : kDone;
}

// Of a process of its own.
int exitStatus(const test::DrawingOperation& operation, Failing what, std::size_t number) {
    const pid_t child = fork();
    if (child == 0) {
        // A process that is ended says so here.
        if (!freopen("/dev/null", "w", stderr))
            _exit(kBroken);
        _exit(drawAndLookAround(operation, what, number));
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

// Skia ends the process where it gets no memory for a path or for its scan conversion; objects of
// the interface never do.
TEST(DrawingFailure, OfAnyAllocationLeavesAWholeContextOrEndsTheProcessInOrder) {
    const struct {
        const char* what;
        Failing failing;
        bool mayEnd;
    } cases[] = {{"objects", Failing::Objects, false}, {"everything", Failing::Everything, true}};
    for (const auto& [what, failing, mayEnd] : cases) {
        std::size_t wentOn = 0, ended = 0;
        for (const test::DrawingOperation& operation : test::drawingOperations()) {
            const Context first = makeContext(test::kTableWidth, test::kTableHeight);
            test::drawOurs(operation, first.get(), 0); // Makes what is made only once.
            for (std::size_t number = 1;; ++number) {
                SCOPED_TRACE(testing::Message() << operation.what << ", " << what << ' ' << number);
                const int status = exitStatus(operation, failing, number);
                if (WIFSIGNALED(status)) {
                    ASSERT_TRUE(mayEnd && WTERMSIG(status) == SIGABRT) << WTERMSIG(status);
                    ++ended;
                    continue;
                }
                ASSERT_NE(WEXITSTATUS(status), kBroken);
                if (WEXITSTATUS(status) == kDone)
                    break;
                ++wentOn;
            }
        }
        EXPECT_GT(wentOn, 20u) << what;
        std::printf("%s: %zu failures survived, %zu ended the process\n", what, wentOn, ended);
    }
}

} // namespace
