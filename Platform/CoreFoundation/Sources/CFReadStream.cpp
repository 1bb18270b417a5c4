// CFReadStream.cpp: reading from files and memory.

#include "CFStream.h"
#include "Record.h"
#include "StreamInternal.h"

#include <algorithm>
#include <cerrno>

namespace {

// The caller's bytes, freed as the caller asked.
class LentBytes {
public:
    LentBytes() = default;
    ~LentBytes() {
        if (bytes_)
            CFAllocatorDeallocate(deallocator_.get(), const_cast<UInt8*>(bytes_));
    }
    LentBytes(const LentBytes&) = delete;
    LentBytes& operator=(const LentBytes&) = delete;

    void set(const UInt8* bytes, CFIndex length, CFAllocatorRef deallocator) {
        bytes_ = bytes;
        length_ = length;
        deallocator_ = cf::retain(deallocator ? deallocator : CFAllocatorGetDefault());
    }
    const UInt8* get() const { return bytes_; }
    CFIndex length() const { return length_; }

private:
    const UInt8* bytes_ = nullptr;
    CFIndex length_ = 0;
    cf::Ref<CFAllocatorRef> deallocator_;
};

} // namespace

struct __CFReadStream {
    CFRuntimeBase base;
    cf::stream::State state;
    LentBytes memory;
    CFIndex position = 0; // In memory.

    bool isFile() const { return static_cast<bool>(state.url); }
    CFIndex available() const { return memory.length() - position; }
};

namespace {

constexpr CFRuntimeClass kReadStreamClass = {
    .className = "CFReadStream",
    .finalize = cf::destroy<__CFReadStream>,
};

bool isStream(CFReadStreamRef stream) {
    return cf::isA(stream, kReadStreamClass);
}

// Less than was asked for means that the file ends.
CFIndex readFile(CFReadStreamRef stream, UInt8* buffer, CFIndex length) {
    errno = 0;
    const int64_t count =
        HostFileRead(stream->state.file.get(), buffer, static_cast<size_t>(length));
    if (count < 0) {
        stream->state.fail();
        return -1;
    }
    if (count < length)
        stream->state.status = kCFStreamStatusAtEnd;
    return static_cast<CFIndex>(count);
}

const UInt8* takeFromMemory(CFReadStreamRef stream, CFIndex length, CFIndex* count) {
    const UInt8* const bytes = stream->memory.get() + stream->position;
    *count = std::min(length, stream->available());
    stream->position += *count;
    if (stream->available() == 0)
        stream->state.status = kCFStreamStatusAtEnd;
    return bytes;
}

} // namespace

CFTypeID CFReadStreamGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kReadStreamClass);
    return id;
}

CFReadStreamRef CFReadStreamCreateWithBytesNoCopy(CFAllocatorRef allocator, const UInt8* bytes,
                                                  CFIndex length, CFAllocatorRef bytesDeallocator) {
    if (length < 0 || (length > 0 && !bytes))
        return nullptr;
    auto* const stream = cf::construct<__CFReadStream>(allocator, CFReadStreamGetTypeID());
    if (stream)
        stream->memory.set(bytes, length, bytesDeallocator);
    return stream;
}

CFReadStreamRef CFReadStreamCreateWithFile(CFAllocatorRef allocator, CFURLRef fileURL) {
    auto url = cf::stream::fileURL(fileURL);
    auto* const stream =
        url ? cf::construct<__CFReadStream>(allocator, CFReadStreamGetTypeID()) : nullptr;
    if (stream)
        stream->state.url = std::move(url);
    return stream;
}

CFStreamStatus CFReadStreamGetStatus(CFReadStreamRef stream) {
    return isStream(stream) ? stream->state.status : kCFStreamStatusNotOpen;
}

CFErrorRef CFReadStreamCopyError(CFReadStreamRef stream) {
    const bool hasFailed = CFReadStreamGetStatus(stream) == kCFStreamStatusError;
    return hasFailed ? cf::Ref(stream->state.error).release() : nullptr;
}

Boolean CFReadStreamOpen(CFReadStreamRef stream) {
    if (!isStream(stream) || stream->state.status != kCFStreamStatusNotOpen)
        return false;
    if (stream->isFile()) {
        cf::url::HostPath path;
        errno = 0;
        return cf::url::getHostPath(stream->state.url.get(), path) &&
               stream->state.openFile(HostFileOpenForReading(path.text));
    }
    stream->state.status = kCFStreamStatusOpen;
    return true;
}

void CFReadStreamClose(CFReadStreamRef stream) {
    if (isStream(stream))
        stream->state.close();
}

Boolean CFReadStreamHasBytesAvailable(CFReadStreamRef stream) {
    if (!isStream(stream) || stream->state.status != kCFStreamStatusOpen)
        return false;
    if (!stream->isFile())
        return stream->available() > 0;
    // What is not a regular file tells its end only when it is read.
    const int64_t size = HostFileGetSize(stream->state.file.get());
    return size < 0 || HostFileGetPosition(stream->state.file.get()) < size;
}

CFIndex CFReadStreamRead(CFReadStreamRef stream, UInt8* buffer, CFIndex bufferLength) {
    if (!isStream(stream) || !stream->state.isOpen() || !buffer || bufferLength < 0)
        return -1;
    if (bufferLength == 0 || stream->state.status == kCFStreamStatusAtEnd)
        return 0;
    if (stream->isFile())
        return readFile(stream, buffer, bufferLength);
    CFIndex count = 0;
    const UInt8* const bytes = takeFromMemory(stream, bufferLength, &count);
    std::copy_n(bytes, count, buffer);
    return count;
}

const UInt8* CFReadStreamGetBuffer(CFReadStreamRef stream, CFIndex maxBytesToRead,
                                   CFIndex* numBytesRead) {
    CFIndex ignored = 0;
    CFIndex& count = numBytesRead ? *numBytesRead : ignored;
    const bool isReadable = isStream(stream) && stream->state.isOpen() && maxBytesToRead >= 0;
    count = isReadable ? 0 : -1;
    if (!isReadable || stream->isFile() || stream->available() == 0)
        return nullptr;
    return takeFromMemory(stream, maxBytesToRead > 0 ? maxBytesToRead : stream->available(),
                          &count);
}

CFTypeRef CFReadStreamCopyProperty(CFReadStreamRef stream, CFStringRef propertyName) {
    const bool isOffset = isStream(stream) && propertyName &&
                          CFEqual(propertyName, kCFStreamPropertyFileCurrentOffset);
    return isOffset ? stream->state.copyOffset().release() : nullptr;
}

Boolean CFReadStreamSetProperty(CFReadStreamRef stream, CFStringRef propertyName,
                                CFTypeRef propertyValue) {
    return isStream(stream) && propertyName &&
           CFEqual(propertyName, kCFStreamPropertyFileCurrentOffset) &&
           stream->state.setOffset(propertyValue);
}
