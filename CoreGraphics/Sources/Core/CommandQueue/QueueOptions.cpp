// QueueOptions.cpp: four options, and the colours of one.

#include "Core/CommandQueue/QueueOptions.h"

#include "Core/Object/RuntimeOptions.h"

namespace cg {

namespace {

bool usesDrawing = true;
bool usesFonts = true;
bool usesCircles = true;
bool showsRecording = false;

constexpr OptionTexts kDrawing = {
    .name = "NIMBRA_GPU_DRAWING",
    .title = "Try to perform CG drawing on the GPU",
    .category = "Graphics Rendering",
    .description = "Whenever possible, perform CG drawing on the GPU instead of in a bitmap.",
};
constexpr OptionTexts kDebug = {
    .name = "NIMBRA_GPU_DRAWING_DEBUG",
    .title = "Show GPU drawing in different colors",
    .category = "Graphcis Rendering", // As it has always been spelt: settings are kept under it.
    .description =
        "Changes the color of GPU-rendered fonts to green (good) or yellow/orange/red (various "
        "degrees of not ideal). If the background of a text view is also drawn on the GPU, it "
        "turns a pale green/yellow/orange/red color.",
};
constexpr OptionTexts kFonts = {
    .name = "NIMBRA_GPU_FONTS",
    .title = "Try to render fonts via the GPU",
    .category = "Graphics Rendering",
    .description = "Whenever possible, render fonts on the GPU from a texture atlas.",
};
constexpr OptionTexts kCircle = {
    .name = "NIMBRA_GPU_CIRCLE",
    .title = "Try to render circular paths via the GPU",
    .category = "Graphics Rendering",
    .description = "When rendering paths, analyze them to see if they're circular, and if so "
                   "render them directly as circles on the GPU.",
};

constexpr CGFloat kDebugAlpha = 0.9f;

} // namespace

void registerQueueOptions() {
    [[maybe_unused]] static const bool once = [] {
        registerOption(kDrawing, usesDrawing);
        registerOption(kDebug, showsRecording);
        registerOption(kFonts, usesFonts);
        registerOption(kCircle, usesCircles);
        return true;
    }();
}

bool recordsDrawing() {
    return usesDrawing;
}

bool recordsKind(XGCommandKind kind) {
    switch (kind) {
    case kXGCommandDrawSprites:
        return usesFonts;
    case kXGCommandFillCircle:
        return usesCircles;
    default:
        return true;
    }
}

// Made once, and kept.
CGColorRef debugColorFor(XGCommandKind kind) {
    if (!showsRecording)
        return nullptr;
    static const CGColorRef rects = CGColorCreateGenericRGB(1, 0.95f, 0.9f, kDebugAlpha);
    static const CGColorRef others = CGColorCreateGenericRGB(1, 0.65f, 0, kDebugAlpha);
    return kind == kXGCommandFillRects ? rects : others;
}

} // namespace cg
