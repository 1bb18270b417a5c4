// CGDataProviderFile.cpp: providers over files, by mapping or by descriptor, and over URLs.

#include <CoreFoundation/CFURLAccess.h>

#include "Core/Data/CGDataProviderRecord.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace {

using Provider = cf::Ref<CGDataProviderRef>;

// The longest path of a URL, without its end mark.
constexpr std::size_t kLongestPath = 1024;

void unmap(void*, const void* bytes, size_t size) {
    HostMapping mapping = {bytes, size};
    HostFileUnmap(&mapping);
}

// Empty also for an empty file, of which there is nothing to map.
Provider makeMapped(int descriptor) {
    HostMapping mapping;
    if (!HostFileMap(descriptor, &mapping) || !mapping.bytes)
        return nullptr;
    auto provider = cf::adopt(CGDataProviderCreateWithData(const_cast<void*>(mapping.bytes),
                                                           mapping.bytes, mapping.size, unmap));
    if (!provider)
        HostFileUnmap(&mapping);
    return provider;
}

// An open file as the info of a provider: the descriptor itself.
int descriptorIn(void* info) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(info));
}

size_t readFile(void* info, void* buffer, off_t position, size_t count) {
    return static_cast<size_t>(
        std::max<int64_t>(HostFileReadAt(descriptorIn(info), buffer, count, position), 0));
}

// Takes the descriptor over unless the result is empty.
Provider makeOverDescriptor(int descriptor, int64_t size) {
    constexpr CGDataProviderDirectCallbacks callbacks = {
        .version = 0,
        .getBytePointer = nullptr,
        .releaseBytePointer = nullptr,
        .getBytesAtPosition = readFile,
        .releaseInfo = [](void* info) { HostFileClose(descriptorIn(info)); },
    };
    void* const info = reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor));
    return cf::adopt(CGDataProviderCreateDirect(info, static_cast<off_t>(size), &callbacks));
}

Provider makeOverFile(const char* path, bool map) {
    const int descriptor = HostFileOpenForReading(path);
    Provider provider = map ? makeMapped(descriptor) : nullptr;
    if (provider) {
        HostFileClose(descriptor);
        return provider;
    }
    provider = makeOverDescriptor(descriptor, HostFileGetSize(descriptor));
    if (!provider)
        HostFileClose(descriptor);
    return provider;
}

Provider makeOverFileURL(CFURLRef url, int map) {
    std::array<UInt8, kLongestPath + 1> path;
    if (!CFURLGetFileSystemRepresentation(url, true, path.data(),
                                          static_cast<CFIndex>(path.size())))
        return nullptr;
    return cf::adopt(
        XGDataProviderCreateWithFilename2(reinterpret_cast<const char*>(path.data()), map));
}

// What cannot be loaded is told in the log by the loader.
Provider loadWhole(CFURLRef url) {
    CFDataRef loaded = nullptr;
    CFURLCreateDataAndPropertiesFromResource(nullptr, url, &loaded, nullptr, nullptr, nullptr);
    const auto data = cf::adopt(loaded);
    return cf::adopt(CGDataProviderCreateWithCFData(data.get()));
}

bool isFileScheme(CFStringRef scheme) {
    return CFStringCompare(scheme, CFSTR("file"), kCFCompareCaseInsensitive) == kCFCompareEqualTo;
}

} // namespace

CGDataProviderRef CGDataProviderCreateWithFilename(const char* path) {
    return XGDataProviderCreateWithFilename2(path, 1);
}

CGDataProviderRef XGDataProviderCreateWithFilename2(const char* path, int map) {
    if (!path || !*path)
        return nullptr;
    Provider provider = makeOverFile(path, map != 0);
    if (!provider)
        return nullptr;
    auto url = cf::adopt(
        CFURLCreateFromFileSystemRepresentation(nullptr, reinterpret_cast<const UInt8*>(path),
                                                static_cast<CFIndex>(std::strlen(path)), false));
    if (!url)
        return nullptr;
    provider.get()->url = std::move(url);
    return provider.release();
}

CGDataProviderRef CGDataProviderCreateWithURL(CFURLRef url) {
    return XGDataProviderCreateWithURL2(url, 1);
}

CGDataProviderRef XGDataProviderCreateWithURL2(CFURLRef url, int map) {
    const auto scheme = cf::adopt(url ? CFURLCopyScheme(url) : nullptr);
    if (!scheme)
        return nullptr;
    Provider provider = isFileScheme(scheme.get()) ? makeOverFileURL(url, map) : loadWhole(url);
    if (provider)
        provider.get()->url = cf::retain(url);
    return provider.release();
}
