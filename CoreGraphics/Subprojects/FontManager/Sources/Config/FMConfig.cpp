// FMConfig.cpp: the font configuration of this process.

#include <CoreFoundation/CFBundle.h>
#include <Host/Host.h>

#include "Config/FMConfigRecord.h"
#include "Config/FontOverrides.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"

#include <climits>
#include <memory>
#include <new>

namespace {

constexpr CFRuntimeClass kConfigClass = {
    .className = "FMConfig",
    .finalize = cg::finalize<FMConfig>,
};

// A configuration of this size would list tens of thousands of fonts.
constexpr int64_t kMostBytes = 1 << 20;

cf::Ref<CFURLRef> findFile() {
    CFBundleRef const system = _CFBundleGetSystemResources();
    if (!system)
        return nullptr;
    return cf::adopt(
        CFBundleCopyResourceURL(system, CFSTR("FontConfig"), CFSTR("xml"), CFSTR("Fonts")));
}

} // namespace

namespace fm {

cf::Ref<FMConfigRef> makeConfig() {
    auto config = cf::adopt<FMConfigRef>(cg::create<FMConfig>(kConfigClass));
    if (!config)
        return nullptr;
    FMConfig& record = *config.get();
    record.assets = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    record.substitutions = cf::adopt(CFDictionaryCreateMutable(
        nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    record.overrides = makeFontOverrides();
    return record.assets && record.substitutions && record.overrides ? config : nullptr;
}

cf::Ref<FMConfigRef> readConfigFile(CFURLRef file) {
    char path[PATH_MAX];
    if (!CFURLGetFileSystemRepresentation(file, true, reinterpret_cast<UInt8*>(path), sizeof path))
        return nullptr;
    const host::Descriptor descriptor(HostFileOpenForReading(path));
    const int64_t size = HostFileGetSize(descriptor.get());
    if (size < 0 || size > kMostBytes) {
        CG_LOG_ERROR("%s cannot be read, or has more than %lld bytes", path,
                     static_cast<long long>(kMostBytes));
        return nullptr;
    }
    const auto capacity = static_cast<size_t>(size);
    const std::unique_ptr<char[]> bytes(new (std::nothrow) char[capacity + 1]);
    const int64_t count = bytes ? HostFileReadAt(descriptor.get(), bytes.get(), capacity, 0) : -1;
    if (count < 0)
        return nullptr;
    return readConfig({bytes.get(), static_cast<size_t>(count)}, file, path);
}

} // namespace fm

FMConfigRef FMConfigCreateDefault(void) {
    if (const auto file = findFile())
        if (auto config = fm::readConfigFile(file.get()))
            return config.release();
    return fm::readConfig(fm::builtInConfig(), nullptr, "the built-in configuration").release();
}

int32_t FMConfigGetType(FMConfigRef config) {
    return config ? config->type : 0;
}

CFArrayRef FMConfigGetAssetFontURLs(FMConfigRef config) {
    return config ? config->assets.get() : nullptr;
}

CFDictionaryRef FMConfigCopyFontSubstitution(FMConfigRef config) {
    return config ? CFDictionaryCreateCopy(nullptr, config->substitutions.get()) : nullptr;
}

FMFontOverridesRef FMConfigAdoptFontOverrides(FMConfigRef config) {
    return config ? config->overrides.release() : nullptr;
}
