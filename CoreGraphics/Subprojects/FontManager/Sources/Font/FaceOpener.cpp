// FaceOpener.cpp: faces from files and providers.

#include "Font/FaceOpener.h"

#include <Host/Host.h>

#include "Font/Locks.h"

#include <cstddef>
#include <limits>
#include <mutex>
#include <new>

namespace fm {

namespace {

// FreeType's library object and the lock that its users share: opening and closing a face changes
// the library's lists. Both live as long as the process, for faces may be closed at its very end.
struct FreeType {
    host::Mutex mutex;

    // With the lock held. Made when first asked for, and again when memory did not suffice.
    FT_Library library() {
        if (!library_ && FT_Init_FreeType(&library_) != 0)
            library_ = nullptr;
        return library_;
    }

private:
    FT_Library library_ = nullptr;
};

FreeType& freeType() {
    alignas(FreeType) static std::byte storage[sizeof(FreeType)];
    static FreeType& shared = *new (storage) FreeType;
    return shared;
}

// FreeType takes a negative index as a question about the file; what is past 31 bits is no index.
bool isFaceIndex(std::int64_t index) {
    return index >= 0 && index <= std::numeric_limits<std::int32_t>::max();
}

FT_Face open(const FT_Open_Args& arguments, std::int64_t faceIndex) {
    if (!isFaceIndex(faceIndex))
        return nullptr;
    FreeType& shared = freeType();
    const std::lock_guard hold(shared.mutex);
    const FT_Library library = shared.library();
    FT_Face face = nullptr;
    if (!library || FT_Open_Face(library, &arguments, static_cast<FT_Long>(faceIndex), &face) != 0)
        return nullptr;
    return face;
}

} // namespace

// ---- Streams

std::unique_ptr<FaceStream> FaceStream::create(CGDataProviderRef provider) {
    std::unique_ptr<FaceStream> stream(new (std::nothrow) FaceStream);
    if (!stream)
        return nullptr;
    stream->reader_ = cf::adopt(XGDataReaderCreate(provider));
    return stream->reader_ && stream->prepare() ? std::move(stream) : nullptr;
}

FaceStream::~FaceStream() {
    unlock();
}

// Contents that are in memory are used there; others are read piece by piece, unless their size is
// not known beforehand, without which FreeType cannot find its way.
bool FaceStream::prepare() {
    constexpr auto unmeasured = std::numeric_limits<std::int64_t>::max();
    std::int64_t size = XGDataReaderGetSize(reader_.get());
    const bool isMeasured = size >= 0 && size < unmeasured;

    if (XGDataReaderIsDirect(reader_.get()) || !isMeasured) {
        native_.base =
            static_cast<unsigned char*>(const_cast<void*>(XGDataReaderLockBytePtr(reader_.get())));
        locked_ = native_.base != nullptr;
        if (locked_)
            size = XGDataReaderGetSize(reader_.get());
        else if (!isMeasured)
            return false;
    }
    if (static_cast<std::uint64_t>(size) > std::numeric_limits<unsigned long>::max())
        return false;

    native_.size = static_cast<unsigned long>(size);
    native_.descriptor.pointer = this;
    native_.read = locked_ ? nullptr : read;
    native_.close = close;
    return size > 0;
}

void FaceStream::unlock() {
    if (locked_)
        XGDataReaderUnlockBytePtr(reader_.get());
    locked_ = false;
}

// A count of 0 asks for a move only, which every later read does for itself; not 0 says "failed".
unsigned long FaceStream::read(FT_Stream native, unsigned long offset, unsigned char* buffer,
                               unsigned long count) {
    if (offset > native->size)
        return 1;
    if (count == 0)
        return 0;
    XGDataReaderRef reader = static_cast<FaceStream*>(native->descriptor.pointer)->reader_.get();
    const auto target = static_cast<std::int64_t>(offset);
    std::size_t done = 0;
    if (XGDataReaderTell(reader) != target &&
        XGDataReaderSeek(reader, target, kXGDataReaderFromStart) != target)
        return 0;
    while (done < count) {
        std::size_t read = 0;
        if (!XGDataReaderRead(reader, buffer + done, count - done, &read))
            break;
        done += read;
    }
    return static_cast<unsigned long>(done);
}

void FaceStream::close(FT_Stream native) {
    static_cast<FaceStream*>(native->descriptor.pointer)->unlock();
}

// ---- Faces

FT_Face openFaceOfFile(const char* path, std::int64_t faceIndex) {
    FT_Open_Args arguments{};
    arguments.flags = FT_OPEN_PATHNAME;
    arguments.pathname = const_cast<char*>(path);
    return path ? open(arguments, faceIndex) : nullptr;
}

FT_Face openFaceOfStream(FaceStream& stream, std::int64_t faceIndex) {
    FT_Open_Args arguments{};
    arguments.flags = FT_OPEN_STREAM;
    arguments.stream = stream.native();
    return open(arguments, faceIndex);
}

void closeFace(FT_Face face) {
    if (!face)
        return;
    const std::lock_guard hold(freeType().mutex);
    FT_Done_Face(face);
}

} // namespace fm
