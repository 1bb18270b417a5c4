// CFWriteStream.cpp: writing to files and memory.

#include "CFStream.h"
#include "Record.h"
#include "StreamInternal.h"

#include <algorithm>
#include <cerrno>
#include <limits>

namespace {

// Memory that a stream is written to: the caller's, of a fixed size, or our own, which grows.
class Destination {
public:
    Destination() = default;
    ~Destination() {
        if (grows_ && bytes_)
            CFAllocatorDeallocate(allocator_.get(), bytes_);
    }
    Destination(const Destination&) = delete;
    Destination& operator=(const Destination&) = delete;

    void setFixed(UInt8* bytes, CFIndex capacity) {
        bytes_ = bytes;
        capacity_ = capacity;
    }
    void setGrowing(CFAllocatorRef allocator) {
        grows_ = true;
        allocator_ = cf::retain(allocator ? allocator : CFAllocatorGetDefault());
    }

    bool isFull() const { return !grows_ && size_ == capacity_; }
    const UInt8* bytes() const { return bytes_; }
    CFIndex size() const { return size_; }

    // How many bytes were taken; -1 when there is no memory.
    CFIndex append(const UInt8* bytes, CFIndex count) {
        if (grows_ && count > capacity_ - size_ && !grow(count))
            return -1;
        const CFIndex taken = std::min(count, capacity_ - size_);
        std::copy_n(bytes, taken, bytes_ + size_);
        size_ += taken;
        return taken;
    }

private:
    bool grow(CFIndex count) {
        constexpr CFIndex kLargest = std::numeric_limits<CFIndex>::max() / 4;
        if (count > kLargest - size_)
            return false;
        const CFIndex capacity = std::max({size_ + count, capacity_ + capacity_ / 2, CFIndex{256}});
        void* const moved = CFAllocatorReallocate(allocator_.get(), bytes_, capacity, 0);
        if (!moved)
            return false;
        bytes_ = static_cast<UInt8*>(moved);
        capacity_ = capacity;
        return true;
    }

    UInt8* bytes_ = nullptr;
    CFIndex size_ = 0;
    CFIndex capacity_ = 0;
    bool grows_ = false;
    cf::Ref<CFAllocatorRef> allocator_;
};

} // namespace

struct __CFWriteStream {
    CFRuntimeBase base;
    cf::stream::State state;
    Destination memory;
    bool appends = false;

    bool isFile() const { return static_cast<bool>(state.url); }
};

namespace {

constexpr CFRuntimeClass kWriteStreamClass = {
    .className = "CFWriteStream",
    .finalize = cf::destroy<__CFWriteStream>,
};

bool isStream(CFWriteStreamRef stream) {
    return cf::isA(stream, kWriteStreamClass);
}

CFWriteStreamRef createStream(CFAllocatorRef allocator) {
    return cf::construct<__CFWriteStream>(allocator, CFWriteStreamGetTypeID());
}

CFIndex writeFile(CFWriteStreamRef stream, const UInt8* bytes, CFIndex count) {
    errno = 0;
    if (HostFileWrite(stream->state.file.get(), bytes, static_cast<size_t>(count)))
        return count;
    stream->state.fail();
    return -1;
}

CFIndex writeMemory(CFWriteStreamRef stream, const UInt8* bytes, CFIndex count) {
    const CFIndex taken = stream->memory.append(bytes, count);
    if (taken < 0) {
        errno = ENOMEM;
        stream->state.fail();
    } else if (stream->memory.isFull()) {
        stream->state.status = kCFStreamStatusAtEnd;
    }
    return taken;
}

} // namespace

CFTypeID CFWriteStreamGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kWriteStreamClass);
    return id;
}

CFWriteStreamRef CFWriteStreamCreateWithBuffer(CFAllocatorRef allocator, UInt8* buffer,
                                               CFIndex bufferCapacity) {
    if (bufferCapacity < 0 || (bufferCapacity > 0 && !buffer))
        return nullptr;
    const CFWriteStreamRef stream = createStream(allocator);
    if (stream)
        stream->memory.setFixed(buffer, bufferCapacity);
    return stream;
}

CFWriteStreamRef CFWriteStreamCreateWithAllocatedBuffers(CFAllocatorRef allocator,
                                                         CFAllocatorRef bufferAllocator) {
    const CFWriteStreamRef stream = createStream(allocator);
    if (stream)
        stream->memory.setGrowing(bufferAllocator);
    return stream;
}

CFWriteStreamRef CFWriteStreamCreateWithFile(CFAllocatorRef allocator, CFURLRef fileURL) {
    auto url = cf::stream::fileURL(fileURL);
    const CFWriteStreamRef stream = url ? createStream(allocator) : nullptr;
    if (stream)
        stream->state.url = std::move(url);
    return stream;
}

CFStreamStatus CFWriteStreamGetStatus(CFWriteStreamRef stream) {
    return isStream(stream) ? stream->state.status : kCFStreamStatusNotOpen;
}

CFErrorRef CFWriteStreamCopyError(CFWriteStreamRef stream) {
    const bool hasFailed = CFWriteStreamGetStatus(stream) == kCFStreamStatusError;
    return hasFailed ? cf::Ref(stream->state.error).release() : nullptr;
}

Boolean CFWriteStreamOpen(CFWriteStreamRef stream) {
    if (!isStream(stream) || stream->state.status != kCFStreamStatusNotOpen)
        return false;
    if (stream->isFile()) {
        cf::url::HostPath path;
        errno = 0;
        return cf::url::getHostPath(stream->state.url.get(), path) &&
               stream->state.openFile(stream->appends ? HostFileOpenForAppending(path.text)
                                                      : HostFileOpenForWriting(path.text));
    }
    stream->state.status = stream->memory.isFull() ? kCFStreamStatusAtEnd : kCFStreamStatusOpen;
    return true;
}

void CFWriteStreamClose(CFWriteStreamRef stream) {
    if (isStream(stream))
        stream->state.close();
}

Boolean CFWriteStreamCanAcceptBytes(CFWriteStreamRef stream) {
    return isStream(stream) && stream->state.status == kCFStreamStatusOpen;
}

CFIndex CFWriteStreamWrite(CFWriteStreamRef stream, const UInt8* buffer, CFIndex bufferLength) {
    if (!isStream(stream) || !stream->state.isOpen() || !buffer || bufferLength < 0)
        return -1;
    if (bufferLength == 0 || stream->state.status == kCFStreamStatusAtEnd)
        return 0;
    return stream->isFile() ? writeFile(stream, buffer, bufferLength)
                            : writeMemory(stream, buffer, bufferLength);
}

CFTypeRef CFWriteStreamCopyProperty(CFWriteStreamRef stream, CFStringRef propertyName) {
    if (!isStream(stream) || !propertyName)
        return nullptr;
    if (CFEqual(propertyName, kCFStreamPropertyFileCurrentOffset))
        return stream->state.copyOffset().release();
    if (CFEqual(propertyName, kCFStreamPropertyDataWritten) && !stream->isFile())
        return CFDataCreate(nullptr, stream->memory.bytes(), stream->memory.size());
    if (CFEqual(propertyName, kCFStreamPropertyAppendToFile) && stream->isFile())
        return cf::retain(stream->appends ? kCFBooleanTrue : kCFBooleanFalse).release();
    return nullptr;
}

Boolean CFWriteStreamSetProperty(CFWriteStreamRef stream, CFStringRef propertyName,
                                 CFTypeRef propertyValue) {
    if (!isStream(stream) || !propertyName)
        return false;
    if (CFEqual(propertyName, kCFStreamPropertyFileCurrentOffset))
        return stream->state.setOffset(propertyValue);
    const bool takesAppend = CFEqual(propertyName, kCFStreamPropertyAppendToFile) &&
                             stream->isFile() && propertyValue &&
                             stream->state.status == kCFStreamStatusNotOpen;
    if (takesAppend)
        stream->appends = propertyValue == kCFBooleanTrue;
    return takesAppend;
}
