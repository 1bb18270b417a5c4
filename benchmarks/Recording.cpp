// Recording.cpp: ten thousand commands recorded, written and drawn again, beside Skia's pictures;
// and what drawing costs where nothing is recorded.

#include "XGCommandQueue.h"
#include "XGImage.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "include/core/SkBitmap.h"
#include "include/core/SkCanvas.h"
#include "include/core/SkData.h"
#include "include/core/SkGraphics.h"
#include "include/core/SkPaint.h"
#include "include/core/SkPath.h"
#include "include/core/SkPicture.h"
#include "include/core/SkPictureRecorder.h"
#include "include/core/SkSerialProcs.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

constexpr int kSize = 256;
constexpr int kCommands = 10000;
constexpr CGBitmapInfo kBGRA =
    CGBitmapInfo{kCGImageAlphaPremultipliedFirst} | CGBitmapInfo{kCGBitmapByteOrder32Little};

cf::Ref<CGContextRef> makeContext(void* memory) {
    static const CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    return cf::adopt(CGBitmapContextCreate(memory, kSize, kSize, 8, kSize * 4, space, kBGRA));
}

// ---- Marks of a few pixels, numbered

CGFloat x(int mark) {
    return static_cast<CGFloat>(mark * 7 % (kSize - 8));
}
CGFloat y(int mark) {
    return static_cast<CGFloat>(mark / 31 % (kSize - 8));
}

struct Mark {
    const char* name;
    void (*ours)(CGContextRef context, int mark);
    void (*bare)(SkCanvas& canvas, SkPaint& paint, int mark);
};

void setColor(CGContextRef context, int mark) {
    CGContextSetRGBFillColor(context, static_cast<CGFloat>(mark % 256) / 255, 0.5f, 0.25f, 1);
}
void setColor(SkPaint& paint, int mark) {
    paint.setColor(SkColorSetRGB(static_cast<U8CPU>(mark % 256), 128, 64));
}

const Mark kMarks[] = {
    {"rects",
     [](CGContextRef c, int i) {
         CGContextFillRect(c, {{x(i), y(i)}, {3, 3}});
     },
     [](SkCanvas& canvas, SkPaint& paint, int i) {
         canvas.drawRect(SkRect::MakeXYWH(x(i), y(i), 3, 3), paint);
     }},
    {"colouredRects",
     [](CGContextRef c, int i) {
         setColor(c, i);
         CGContextFillRect(c, {{x(i), y(i)}, {3, 3}});
     },
     [](SkCanvas& canvas, SkPaint& paint, int i) {
         setColor(paint, i);
         canvas.drawRect(SkRect::MakeXYWH(x(i), y(i), 3, 3), paint);
     }},
    {"triangles",
     [](CGContextRef c, int i) {
         CGContextMoveToPoint(c, x(i), y(i));
         CGContextAddLineToPoint(c, x(i) + 4, y(i) + 1);
         CGContextAddLineToPoint(c, x(i) + 1, y(i) + 4);
         CGContextFillPath(c);
     },
     [](SkCanvas& canvas, SkPaint& paint, int i) {
         SkPath path;
         path.moveTo(x(i), y(i)).lineTo(x(i) + 4, y(i) + 1).lineTo(x(i) + 1, y(i) + 4);
         canvas.drawPath(path, paint);
     }},
    {"lines",
     [](CGContextRef c, int i) {
         CGContextMoveToPoint(c, x(i), y(i));
         CGContextAddLineToPoint(c, x(i) + 4, y(i) + 3);
         CGContextStrokePath(c);
     },
     [](SkCanvas& canvas, SkPaint& paint, int i) {
         SkPath path;
         path.moveTo(x(i), y(i)).lineTo(x(i) + 4, y(i) + 3);
         paint.setStyle(SkPaint::kStroke_Style);
         paint.setStrokeWidth(2);
         canvas.drawPath(path, paint);
     }},
    {"circles",
     [](CGContextRef c, int i) {
         CGContextFillEllipseInRect(c, {{x(i), y(i)}, {4, 4}});
     },
     [](SkCanvas& canvas, SkPaint& paint, int i) {
         canvas.drawOval(SkRect::MakeXYWH(x(i), y(i), 4, 4), paint);
     }},
};

void prepare(CGContextRef context) {
    CGContextSetRGBFillColor(context, 0.2f, 0.4f, 0.8f, 1);
    CGContextSetRGBStrokeColor(context, 0.2f, 0.4f, 0.8f, 1);
    CGContextSetLineWidth(context, 2);
}

cf::Ref<CGImageRef> record(const Mark& mark) {
    const auto context = makeContext(nullptr);
    prepare(context.get());
    for (int i = 0; i < kCommands; ++i)
        mark.ours(context.get(), i);
    return cf::adopt(CGBitmapContextCreateImage(context.get()));
}

XGCommandQueueRef queueOf(const cf::Ref<CGImageRef>& image) {
    return static_cast<XGCommandQueueRef>(XGImageGetCommandQueue(image.get()));
}

sk_sp<SkPicture> recordBare(const Mark& mark) {
    SkPictureRecorder recorder;
    SkCanvas* const canvas = recorder.beginRecording(SkRect::MakeWH(kSize, kSize));
    SkPaint paint;
    paint.setColor(SkColorSetRGB(51, 102, 204));
    paint.setAntiAlias(true);
    for (int i = 0; i < kCommands; ++i)
        mark.bare(*canvas, paint, i);
    return recorder.finishRecordingAsPicture();
}

SkBitmap makeBitmap() {
    SkGraphics::Init();
    SkBitmap bitmap;
    bitmap.allocN32Pixels(kSize, kSize);
    bitmap.eraseColor(0);
    return bitmap;
}

void addRecording(const Mark& mark) {
    const std::string name = mark.name;
    benchmark::RegisterBenchmark((name + "/record/ours").c_str(), [&mark](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(record(mark));
        if (XGCommandQueueGetCommandCount(queueOf(record(mark))) != kCommands)
            state.SkipWithError("not all was recorded");
    });
    benchmark::RegisterBenchmark((name + "/record/skia").c_str(), [&mark](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(recordBare(mark));
    });
    benchmark::RegisterBenchmark((name + "/write/ours").c_str(), [&mark](benchmark::State& state) {
        const auto image = record(mark);
        for (auto _ : state) {
            size_t size = 0;
            XGCommandQueueSerialize(queueOf(image), nullptr, &size);
            std::vector<char> buffer(size);
            XGCommandQueueSerialize(queueOf(image), buffer.data(), &size);
            benchmark::DoNotOptimize(buffer.data());
        }
    });
    benchmark::RegisterBenchmark((name + "/write/skia").c_str(), [&mark](benchmark::State& state) {
        const auto picture = recordBare(mark);
        for (auto _ : state)
            benchmark::DoNotOptimize(picture->serialize());
    });
    benchmark::RegisterBenchmark((name + "/read/ours").c_str(), [&mark](benchmark::State& state) {
        const auto image = record(mark);
        size_t size = 0;
        XGCommandQueueSerialize(queueOf(image), nullptr, &size);
        std::vector<char> buffer(size);
        XGCommandQueueSerialize(queueOf(image), buffer.data(), &size);
        const CGColorSpaceRef space = CGImageGetColorSpace(image.get());
        for (auto _ : state)
            benchmark::DoNotOptimize(
                cf::adopt(XGCommandQueueCreateDeserialized(buffer.data(), space)));
    });
    benchmark::RegisterBenchmark((name + "/read/skia").c_str(), [&mark](benchmark::State& state) {
        const auto data = recordBare(mark)->serialize();
        for (auto _ : state)
            benchmark::DoNotOptimize(SkPicture::MakeFromData(data.get()));
    });
    benchmark::RegisterBenchmark((name + "/draw/ours").c_str(), [&mark](benchmark::State& state) {
        const auto image = record(mark);
        std::vector<char> memory(kSize * kSize * 4);
        const auto context = makeContext(memory.data());
        for (auto _ : state)
            XGContextDrawCommandQueue(context.get(), queueOf(image));
    });
    benchmark::RegisterBenchmark((name + "/draw/skia").c_str(), [&mark](benchmark::State& state) {
        const auto picture = recordBare(mark);
        const SkBitmap bitmap = makeBitmap();
        SkCanvas canvas(bitmap);
        for (auto _ : state)
            picture->playback(&canvas);
    });
}

// ---- Where nothing is recorded

// A context that gave up recording, beside one that never began.
void addRefused(const Mark& mark) {
    const std::string name = mark.name;
    const auto draw = [&mark](benchmark::State& state, CGContextRef context) {
        prepare(context);
        int i = 0;
        for (auto _ : state)
            mark.ours(context, i++);
    };
    benchmark::RegisterBenchmark((name + "/refused/had").c_str(), [draw](benchmark::State& state) {
        const auto context = makeContext(nullptr);
        CGBitmapContextGetData(context.get());
        draw(state, context.get());
    });
    benchmark::RegisterBenchmark((name + "/refused/never").c_str(),
                                 [draw](benchmark::State& state) {
                                     std::vector<char> memory(kSize * kSize * 4);
                                     const auto context = makeContext(memory.data());
                                     draw(state, context.get());
                                 });
}

// A picture of a few marks, whose pixels are wanted.
void drawFew(CGContextRef context) {
    prepare(context);
    for (int i = 0; i < 4; ++i)
        kMarks[1].ours(context, i);
    benchmark::DoNotOptimize(CGBitmapContextGetData(context));
}

void addFew() {
    benchmark::RegisterBenchmark("few/recorded", [](benchmark::State& state) {
        for (auto _ : state)
            drawFew(makeContext(nullptr).get());
    });
    benchmark::RegisterBenchmark("few/drawn", [](benchmark::State& state) {
        for (auto _ : state) {
            const auto context = makeContext(nullptr);
            CGContextSetAllowsAcceleration(context.get(), false);
            drawFew(context.get());
        }
    });
    benchmark::RegisterBenchmark("few/ofTheCaller", [](benchmark::State& state) {
        for (auto _ : state) {
            const std::vector<char> memory(kSize * kSize * 4);
            drawFew(makeContext(const_cast<char*>(memory.data())).get());
        }
    });
}

[[maybe_unused]] const bool registered = [] {
    for (const Mark& mark : kMarks) {
        addRecording(mark);
        addRefused(mark);
    }
    addFew();
    return true;
}();

} // namespace
