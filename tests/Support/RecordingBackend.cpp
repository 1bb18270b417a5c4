// RecordingBackend.cpp: the callbacks that write.

#include "Support/RecordingBackend.h"

#include "XGGState.h"

#include "Core/Context/CGContextRecord.h"
#include "Support/PathText.h"

#include <initializer_list>
#include <sstream>

namespace test {

namespace {

std::string numbers(std::initializer_list<CGFloat> values) {
    std::ostringstream out;
    const char* separator = "";
    for (const CGFloat value : values) {
        out << separator << value + 0.0f; // No "-0".
        separator = " ";
    }
    return out.str();
}

std::string colorText(CGColorRef color) {
    if (!color)
        return "none";
    CGFloat red = 0, green = 0, blue = 0, alpha = 0;
    _CGColorGetRGBA(color, &red, &green, &blue, &alpha);
    return numbers({red, green, blue, alpha});
}

} // namespace

RecordingBackend::RecordingBackend(uint32_t kind) {
    const XGContextCallbacks table = callbacks();
    context_ = cf::adopt(XGContextCreate(kind, &table, this, 0));
}

XGGStateRef RecordingBackend::state() const {
    return context()->state.get();
}

std::vector<RecordingBackend::Call> RecordingBackend::takeWholeCalls() {
    return std::exchange(calls_, {});
}

std::vector<std::string> RecordingBackend::takeCalls() {
    std::vector<std::string> texts;
    for (Call& call : takeWholeCalls())
        texts.push_back(std::move(call.text));
    return texts;
}

void RecordingBackend::note(std::string call, XGGStateRef state, uint32_t flags) {
    calls_.push_back({std::move(call), state, flags});
    lastFlags_ = flags;
}

void RecordingBackend::noteLayer(const char* what, XGGStateRef state, uint32_t flags) {
    note(std::string(what) + " layer alpha " + numbers({XGGStateGetAlpha(state)}) + " blend " +
             std::to_string(XGGStateGetBlendMode(state)) +
             (XGGStateHasShadow(state) ? " shadowed" : ""),
         state, flags);
}

XGContextCallbacks RecordingBackend::callbacks() {
    XGContextCallbacks table = {};
    table.releaseInfo = [](void* info) { from(info).note("release"); };
    table.flush = [](XGGStateRef state, uint32_t flags, void* info) {
        from(info).note("flush", state, flags);
    };
    table.synchronize = [](XGGStateRef state, uint32_t flags, void* info) {
        from(info).note("synchronize", state, flags);
    };
    table.drawShading = [](XGGStateRef state, uint32_t flags, CGShadingRef shading, void* info) {
        from(info).note(shading ? "shading" : "no shading", state, flags);
    };
    table.drawPath = [](XGGStateRef state, uint32_t flags, CGPathRef fill, CGPathRef stroke,
                        bool evenOdd, void* info) {
        std::string call = flags & kXGContextShadowPass ? "shadow " : "";
        if (fill)
            call += "fill " + pathText(fill) + (evenOdd ? " even-odd" : " winding") + " in " +
                    colorText(XGGStateGetFillColor(state));
        if (stroke)
            call += std::string(fill ? ", " : "") + "stroke " + pathText(stroke) + " width " +
                    numbers({XGGStateGetLineWidth(state)}) + " in " +
                    colorText(XGGStateGetStrokeColor(state));
        from(info).note(call, state, flags);
    };
    table.fillRects = [](XGGStateRef state, uint32_t flags, const CGRect* rects, size_t count,
                         void* info) {
        std::string call = "rects";
        for (size_t index = 0; index < count; ++index)
            call +=
                (index ? ", " : " ") + numbers({rects[index].origin.x, rects[index].origin.y,
                                                rects[index].size.width, rects[index].size.height});
        from(info).note(call + " blend " + std::to_string(XGGStateGetBlendMode(state)), state,
                        flags);
    };
    table.drawImage = [](XGGStateRef state, uint32_t flags, CGRect rect, CGImageRef image,
                         void* info) {
        std::string call = flags & kXGContextShadowPass ? "shadow " : "";
        call += flags & kXGContextTiledImage ? "tiled image " : "image ";
        call += std::to_string(CGImageGetWidth(image)) + " x " +
                std::to_string(CGImageGetHeight(image)) + " at " +
                numbers({rect.origin.x, rect.origin.y, rect.size.width, rect.size.height});
        from(info).note(call, state, flags);
    };
    table.drawLayer = [](XGGStateRef state, uint32_t flags, CGRect rect, CGLayerRef, void* info) {
        from(info).note(
            (flags & kXGContextShadowPass ? "shadow layer at " : "layer at ") +
                numbers({rect.origin.x, rect.origin.y, rect.size.width, rect.size.height}),
            state, flags);
    };
    table.drawSprites = [](XGGStateRef state, uint32_t flags, CGFontRef, const void* glyphs,
                           const CGPoint* positions, size_t count, void* info) {
        std::string call = flags & kXGContextShadowPass ? "shadow text" : "text";
        for (size_t index = 0; index < count; ++index)
            call += (index ? ", " : " ") +
                    std::to_string(static_cast<const CGGlyph*>(glyphs)[index]) + " at " +
                    numbers({positions[index].x, positions[index].y});
        from(info).note(call + " size " + numbers({XGGStateGetFontSize(state)}), state, flags);
    };
    table.beginTransparencyLayer = [](XGGStateRef state, uint32_t flags, void* info) {
        from(info).noteLayer("begin", state, flags);
    };
    table.endTransparencyLayer = [](XGGStateRef state, uint32_t flags, void* info) {
        from(info).noteLayer("end", state, flags);
    };
    table.prepare = [](CGContextRef context) { from(context->info).note("prepare"); };
    return table;
}

} // namespace test
