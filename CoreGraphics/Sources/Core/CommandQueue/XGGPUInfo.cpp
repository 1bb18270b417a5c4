// XGGPUInfo.cpp: the one record of the graphics processor.

#include "XGGPUInfo.h"

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFSet.h>

#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeOptions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace {

enum class Revision { None, FirstNumber, FirstNumberOrTwo };

struct Family {
    XGGPUType type;
    std::string_view vendor;   // A part of the vendor's name,
    std::string_view renderer; // and of the renderer's.
    Revision revision;
};

// The first that fits is taken. Early Tegra drivers left the "2" out.
constexpr std::array kFamilies = {
    Family{kXGGPUTypeTegra, "NVIDIA", "Tegra", Revision::FirstNumberOrTwo},
    Family{kXGGPUTypePowerVR, "Imagination Technologies", "PowerVR SGX", Revision::FirstNumber},
    Family{kXGGPUTypeAdreno, "Qualcomm", "Adreno", Revision::FirstNumber},
    Family{kXGGPUTypeMali, "ARM", "Mali", Revision::FirstNumber},
    Family{kXGGPUTypeVMware, "VMware", "", Revision::None},
    Family{kXGGPUTypeVivante, "Vivante Corporation", "", Revision::FirstNumber},
    Family{kXGGPUTypeBroadcom, "Broadcom", "", Revision::None},
};

struct GPUInfo {
    XGGPUType type = kXGGPUTypeUnset;
    int32_t revision = 0;
    uint32_t maxTextureSize = 2048;
    cf::Ref<CFMutableSetRef> extensions;
};

GPUInfo& info() {
    static GPUInfo only;
    return only;
}

// ---- Options

bool usesSRGBTextures = false;
bool usesSRGBFramebuffers = false;

constexpr cg::OptionTexts kTextureOption = {
    .name = "NIMBRA_SRGB_TEXTURE",
    .title = "Try to use sRGB textures",
    .category = "OpenGL",
    .description = "Use sRGB textures if the colorspace is sRGB",
};
constexpr cg::OptionTexts kFramebufferOption = {
    .name = "NIMBRA_SRGB_FRAMEBUFFER",
    .title = "Try to use sRGB framebuffers",
    .category = "OpenGL",
    .description = "Use sRGB framebuffers  ", // Both blanks belong to it.
};

bool registerOptions() {
    cg::registerOption(kTextureOption, usesSRGBTextures);
    cg::registerOption(kFramebufferOption, usesSRGBFramebuffers);
    return true;
}

// ---- Telling processors apart

int32_t firstNumber(std::string_view text) {
    const std::size_t start = text.find_first_of("0123456789");
    if (start == std::string_view::npos)
        return 0;
    int32_t number = 0;
    const auto [end, error] =
        std::from_chars(text.data() + start, text.data() + text.size(), number);
    return error == std::errc() ? number : INT32_MAX;
}

int32_t revisionOf(Revision rule, std::string_view renderer) {
    if (rule == Revision::None)
        return 0;
    const int32_t number = firstNumber(renderer);
    return rule == Revision::FirstNumberOrTwo && number == 0 ? 2 : number;
}

void classify(GPUInfo& gpu, const char* vendor, const char* renderer) {
    gpu.type = kXGGPUTypeOther;
    gpu.revision = 0;
    if (!vendor || !renderer)
        return;
    const std::string_view vendorName = vendor, rendererName = renderer;
    for (const Family& family : kFamilies) {
        if (vendorName.find(family.vendor) == std::string_view::npos ||
            rendererName.find(family.renderer) == std::string_view::npos)
            continue;
        gpu.type = family.type;
        gpu.revision = revisionOf(family.revision, rendererName);
        return;
    }
}

// ---- Extensions

cf::Ref<CFMutableSetRef> wordsOf(std::string_view text) {
    auto words = cf::adopt(CFSetCreateMutable(nullptr, 0, &kCFTypeSetCallBacks));
    while (words && !text.empty()) {
        const std::size_t length = std::min(text.find(' '), text.size());
        const auto word = cf::adopt(
            CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                    static_cast<CFIndex>(length), kCFStringEncodingUTF8, false));
        if (length > 0 && word)
            CFSetAddValue(words.get(), word.get());
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return words;
}

bool knowsExtensions() {
    if (!info().extensions)
        CG_LOG_AS(kHostLogWarning, "XGGPUInfoHasExtension",
                  "Checking for extension before GPUInfo has been set.");
    return info().extensions != nullptr;
}

bool contains(CFStringRef name) {
    return CFSetContainsValue(info().extensions.get(), name);
}

} // namespace

void XGGPUInfoFill(const char* vendor, const char* renderer, const char* extensions,
                   uint32_t maxTextureSize) {
    [[maybe_unused]] static const bool once = registerOptions();
    GPUInfo& gpu = info();
    gpu.maxTextureSize = maxTextureSize;
    if (extensions)
        gpu.extensions = wordsOf(extensions);
    classify(gpu, vendor, renderer);
}

XGGPUType XGGPUInfoGetType(void) {
    return info().type;
}

int32_t XGGPUInfoGetRevision(void) {
    return info().revision;
}

uint32_t XGGPUInfoGetMaxTextureSize(void) {
    return info().maxTextureSize;
}

bool XGGPUInfoHasExtension(CFStringRef name) {
    return knowsExtensions() && name && contains(name);
}

bool XGGPUInfoHasSRGBTextures(void) {
    return usesSRGBTextures && knowsExtensions() &&
           (contains(CFSTR("GL_EXT_sRGB")) || contains(CFSTR("GL_EXT_texture_sRGB")));
}

bool XGGPUInfoHasSRGBFramebuffer(void) {
    return knowsExtensions() && usesSRGBFramebuffers &&
           contains(CFSTR("GL_EXT_sRGB_write_control")) && contains(CFSTR("GL_EXT_sRGB"));
}
