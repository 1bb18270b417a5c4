// FontConfigurationFuzz.cpp: font configurations of any bytes, and what is made of them.

#include <FontManager/FontManager.h>

#include "Config/FMConfigRecord.h"
#include "Config/FontOverrides.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const std::string_view document(reinterpret_cast<const char*>(bytes), size);
    const auto config = fm::readConfig(document, nullptr, "input");
    if (!config)
        return 0;
    FMConfigGetType(config.get());
    const CFArrayRef assets = FMConfigGetAssetFontURLs(config.get());
    for (CFIndex i = 0; i < CFArrayGetCount(assets); ++i)
        require(CFURLGetString(static_cast<CFURLRef>(CFArrayGetValueAtIndex(assets, i))));
    const auto substitutions = cf::adopt(FMConfigCopyFontSubstitution(config.get()));
    require(CFDictionaryGetCount(substitutions.get()) <= static_cast<CFIndex>(size));
    FMFontMetrics metrics = {.heightMultiple = 1, .heightMultipleForUIKit = 1};
    const auto overrides = cf::adopt(FMConfigAdoptFontOverrides(config.get()));
    fm::applyOverrides(overrides.get(), CFSTR("face"), metrics);
    require(std::isfinite(metrics.heightMultiple) && metrics.heightMultiple > 0);
    require(std::isfinite(metrics.heightMultipleForUIKit) && metrics.heightMultipleForUIKit > 0);
    return 0;
}
