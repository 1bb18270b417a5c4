// FileData.cpp: reading whole files.

#include "FileData.h"

#include <CoreFoundation/CFPropertyList.h>

#include "CFRuntimeInternal.h"
#include "GrowableArray.h"

namespace cf {

Ref<CFDataRef> readFile(const char* path, FileState& state) {
    state = FileState::Missing;
    if (!HostFileExists(path))
        return nullptr;
    state = FileState::Unreadable;
    const host::Descriptor file(HostFileOpenForReading(path));
    const int64_t size = file ? HostFileGetSize(file.get()) : -1;
    if (size < 0)
        return nullptr;
    GrowableArray<UInt8> bytes;
    UInt8* const room = bytes.extend(static_cast<size_t>(size) + 1);
    const int64_t count =
        room ? HostFileRead(file.get(), room, static_cast<size_t>(size)) : int64_t{-1};
    if (count < 0)
        return nullptr;
    auto data = adopt(CFDataCreate(nullptr, room, static_cast<CFIndex>(count)));
    if (data)
        state = FileState::Read;
    return data;
}

Ref<CFDictionaryRef> readDictionary(const char* path, FileState& state) {
    const auto data = readFile(path, state);
    if (!data)
        return nullptr;
    CFErrorRef stored = nullptr;
    const auto list = adopt<CFTypeRef>(CFPropertyListCreateWithData(
        nullptr, data.get(), kCFPropertyListImmutable, nullptr, &stored));
    const auto error = adopt(stored);
    if (list && CFGetTypeID(list.get()) == CFDictionaryGetTypeID())
        return retain(static_cast<CFDictionaryRef>(list.get()));
    state = FileState::Corrupt;
    CF_LOG_WARNING("\"%s\" is no dictionary in a property list (code %ld)", path,
                   long{CFErrorGetCode(error.get())});
    return nullptr;
}

} // namespace cf
