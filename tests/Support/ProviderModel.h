// ProviderModel.h: providers of every kind over the same bytes, driven beside the bytes themselves.
#pragma once

#include "XGDataProvider.h"
#include "XGDataReader.h"
#include <CoreFoundation/CFRef.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace test {

using Bytes = std::vector<std::uint8_t>;
using Provider = cf::Ref<CGDataProviderRef>;

// A caller's stream or random-access bytes, with a note of every call.
struct ByteSource {
    Bytes bytes;
    std::size_t position = 0;
    std::vector<std::string> calls = {};
    std::size_t lie = 0; // Added to what the callbacks report.
    int releases = 0;
    bool notesCalls = false;

    void note(const std::string& call) {
        if (notesCalls)
            calls.push_back(call);
    }
};

inline ByteSource& sourceOf(void* info) {
    return *static_cast<ByteSource*>(info);
}

inline std::size_t getBytes(void* info, void* buffer, std::size_t count) {
    ByteSource& source = sourceOf(info);
    source.note("get " + std::to_string(count));
    const std::size_t got = std::min(count, source.bytes.size() - source.position);
    if (got > 0)
        std::memcpy(buffer, source.bytes.data() + source.position, got);
    source.position += got;
    return got + source.lie;
}

inline off_t skipForward(void* info, off_t count) {
    ByteSource& source = sourceOf(info);
    const auto rest = static_cast<off_t>(source.bytes.size() - source.position);
    const off_t skipped = std::min(count, rest);
    source.position += static_cast<std::size_t>(skipped);
    return skipped + static_cast<off_t>(source.lie);
}

inline void skipBytes(void* info, std::size_t count) {
    ByteSource& source = sourceOf(info);
    source.position += std::min(count, source.bytes.size() - source.position);
}

inline void rewind(void* info) {
    sourceOf(info).note("rewind");
    sourceOf(info).position = 0;
}

inline std::size_t getBytesAt(void* info, void* buffer, off_t position, std::size_t count) {
    sourceOf(info).position =
        std::min(static_cast<std::size_t>(position), sourceOf(info).bytes.size());
    return getBytes(info, buffer, count);
}

inline const void* getPointer(void* info) {
    sourceOf(info).note("lend");
    return sourceOf(info).bytes.data();
}

inline void releasePointer(void* info, const void* pointer) {
    sourceOf(info).note(pointer == sourceOf(info).bytes.data() ? "back" : "back elsewhere");
}

inline void releaseInfo(void* info) {
    ++sourceOf(info).releases;
}

enum class SourceKind : std::uint8_t { Pointer, Positions, Skipping, Reading, Older, Data, CFData };
inline constexpr SourceKind kSourceKinds[] = {
    SourceKind::Pointer, SourceKind::Positions, SourceKind::Skipping, SourceKind::Reading,
    SourceKind::Older,   SourceKind::Data,      SourceKind::CFData};

inline Provider makeProvider(SourceKind kind, ByteSource& source) {
    const auto size = static_cast<off_t>(source.bytes.size());
    const CGDataProviderDirectCallbacks pointer = {0, getPointer, releasePointer, nullptr,
                                                   releaseInfo};
    const CGDataProviderDirectCallbacks positions = {0, nullptr, nullptr, getBytesAt, releaseInfo};
    const CGDataProviderSequentialCallbacks skipping = {0, getBytes, skipForward, rewind,
                                                        releaseInfo};
    const CGDataProviderSequentialCallbacks reading = {0, getBytes, nullptr, rewind, releaseInfo};
    const CGDataProviderCallbacks older = {getBytes, skipBytes, rewind, releaseInfo};
    switch (kind) {
    case SourceKind::Pointer:
        return cf::adopt(CGDataProviderCreateDirect(&source, size, &pointer));
    case SourceKind::Positions:
        return cf::adopt(CGDataProviderCreateDirect(&source, size, &positions));
    case SourceKind::Skipping:
        return cf::adopt(CGDataProviderCreateSequential(&source, &skipping));
    case SourceKind::Reading:
        return cf::adopt(CGDataProviderCreateSequential(&source, &reading));
    case SourceKind::Older:
        return cf::adopt(CGDataProviderCreate(&source, &older));
    case SourceKind::Data:
        return cf::adopt(CGDataProviderCreateWithData(
            &source, source.bytes.data(), source.bytes.size(),
            [](void* info, const void*, std::size_t) { releaseInfo(info); }));
    case SourceKind::CFData:
        break;
    }
    const auto data =
        cf::adopt(CFDataCreate(nullptr, source.bytes.data(), static_cast<CFIndex>(size)));
    return cf::adopt(CGDataProviderCreateWithCFData(data.get()));
}

// Reads a provider in every way, as a script of bytes says, and compares with what it stands for.
class ProviderDrive {
public:
    ProviderDrive(Provider provider, Bytes expected)
        : provider_(std::move(provider)), expected_(std::move(expected)),
          reader_(cf::adopt(XGDataReaderCreate(provider_.get()))) {}

    // False as soon as something differs; `mismatch` says what.
    bool run(const std::uint8_t* script, std::size_t length) {
        for (std::size_t step = 0; step + 3 <= length && !mismatch_; step += 3)
            perform(script[step] % 9, script[step + 1], script[step + 2]);
        return !mismatch_;
    }
    const char* mismatch() const { return mismatch_; }

private:
    void require(bool condition, const char* what) {
        if (!condition && !mismatch_)
            mismatch_ = what;
    }

    bool matches(const void* bytes, std::int64_t offset, std::size_t count) const {
        return count == 0 || std::memcmp(bytes, expected_.data() + offset, count) == 0;
    }

    std::size_t available(std::int64_t offset, std::size_t count) const {
        const auto size = static_cast<std::int64_t>(expected_.size());
        return offset >= size ? 0 : std::min(count, static_cast<std::size_t>(size - offset));
    }

    void perform(int operation, std::uint8_t a, std::uint8_t b) {
        Bytes buffer(b);
        std::size_t read = 0;
        const std::int64_t before = XGDataReaderTell(reader_.get());
        switch (operation) {
        case 0:
            XGDataProviderReadBytes(provider_.get(), buffer.data(), a, b, &read);
            require(read == available(a, b) && matches(buffer.data(), a, read), "range");
            break;
        case 1:
            require(XGDataReaderRead(reader_.get(), buffer.data(), b, &read) == (read > 0), "flag");
            require(read == available(before, b) && matches(buffer.data(), before, read), "read");
            require(XGDataReaderTell(reader_.get()) == before + std::int64_t(read), "tell");
            break;
        case 2:
            // The end of a stream that cannot be measured is the last position there is.
            require(XGDataReaderSkip(reader_.get(), b) ||
                        before > std::numeric_limits<std::int64_t>::max() - b,
                    "skip");
            require(XGDataReaderTell(reader_.get()) - before <= b, "skipped");
            break;
        case 3:
            require(XGDataReaderRewind(reader_.get()) && XGDataReaderTell(reader_.get()) == 0,
                    "rewind");
            break;
        case 4:
            seek(a % 4, static_cast<std::int8_t>(b));
            break;
        case 5:
            lock();
            break;
        case 6:
            require(XGDataProviderRewind(provider_.get()), "provider rewind");
            break;
        case 7:
            require(XGDataProviderSkip(provider_.get(), b, nullptr), "provider skip");
            break;
        default:
            copy();
        }
    }

    void seek(int whence, std::int64_t offset) {
        const std::int64_t before = XGDataReaderTell(reader_.get());
        const std::int64_t at = XGDataReaderSeek(reader_.get(), offset, whence);
        require(at == -1 || at == XGDataReaderTell(reader_.get()), "seek");
        if (whence == kXGDataReaderFromStart && offset >= 0)
            require(at >= 0 && at <= std::max(before, offset), "seek from the start");
        if (whence == 3 || (whence != kXGDataReaderFromEnd && offset < 0))
            require(at == -1, "seek to nowhere");
    }

    void lock() {
        const void* const bytes = XGDataProviderLockData(provider_.get());
        if (!bytes)
            return;
        require(XGDataProviderGetSize(provider_.get()) == std::int64_t(expected_.size()), "size");
        require(XGDataProviderIsDirect(provider_.get()), "direct");
        require(matches(bytes, 0, expected_.size()), "locked bytes");
        XGDataProviderUnlockData(provider_.get());
    }

    void copy() {
        const auto data = cf::adopt(CGDataProviderCopyData(provider_.get()));
        if (data)
            require(CFDataGetLength(data.get()) == CFIndex(expected_.size()) &&
                        matches(CFDataGetBytePtr(data.get()), 0, expected_.size()),
                    "copied data");
    }

    Provider provider_;
    Bytes expected_;
    cf::Ref<XGDataReaderRef> reader_;
    const char* mismatch_ = nullptr;
};

} // namespace test
