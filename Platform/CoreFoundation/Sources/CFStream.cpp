// CFStream.cpp: the states of a stream and the position in its file.

#include "CFStream.h"

#include <CoreFoundation/CFConstantString.h>

#include "StreamInternal.h"

#include <cerrno>

CF_CONST_STRING_DECL(kCFStreamPropertyDataWritten, "kCFStreamPropertyDataWritten");
CF_CONST_STRING_DECL(kCFStreamPropertyFileCurrentOffset, "kCFStreamPropertyFileCurrentOffset");
CF_CONST_STRING_DECL(kCFStreamPropertyAppendToFile, "kCFStreamPropertyAppendToFile");

namespace cf::stream {

bool State::fail() {
    const int reason = errno != 0 ? errno : EIO;
    status = kCFStreamStatusError;
    error = adopt(CFErrorCreate(nullptr, kCFErrorDomainPOSIX, reason, nullptr));
    return false;
}

void State::close() {
    if (status == kCFStreamStatusNotOpen)
        return;
    status = kCFStreamStatusClosed;
    file = host::Descriptor();
}

bool State::openFile(int descriptor) {
    file = host::Descriptor(descriptor);
    if (!file || (offsetToSet >= 0 && !HostFileSetPosition(file.get(), offsetToSet)))
        return fail();
    status = kCFStreamStatusOpen;
    return true;
}

Ref<CFTypeRef> State::copyOffset() const {
    if (!url)
        return nullptr;
    const int64_t offset = file ? HostFileGetPosition(file.get()) : offsetToSet;
    if (offset < 0)
        return nullptr;
    return adopt<CFTypeRef>(CFNumberCreate(nullptr, kCFNumberSInt64Type, &offset));
}

bool State::setOffset(CFTypeRef value) {
    int64_t offset = -1;
    if (!url || !value || CFGetTypeID(value) != CFNumberGetTypeID() ||
        !CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &offset) ||
        offset < 0)
        return false;
    if (status == kCFStreamStatusNotOpen) {
        offsetToSet = offset;
        return true;
    }
    if (!isOpen() || !HostFileSetPosition(file.get(), offset))
        return false;
    status = kCFStreamStatusOpen;
    return true;
}

Ref<CFURLRef> fileURL(CFURLRef url) {
    url::HostPath path;
    return url::getHostPath(url, path) ? retain(url) : nullptr;
}

} // namespace cf::stream
