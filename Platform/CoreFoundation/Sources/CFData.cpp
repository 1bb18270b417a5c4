// CFData.cpp: runs of bytes.

#include "CFData.h"

#include "Buffer.h"
#include "CFDescription.h"
#include "Collections.h"

#include <algorithm>
#include <functional>
#include <span>

struct __CFData {
    CFRuntimeBase base;
    cf::Buffer<UInt8> storage;
    // The caller's bytes that immutable data may stand around instead, and what frees them.
    const UInt8* external = nullptr;
    CFIndex externalLength = 0;
    cf::Ref<CFAllocatorRef> deallocator;

    explicit __CFData(CFAllocatorRef allocator) : storage(allocator) {}
    ~__CFData() {
        if (deallocator)
            CFAllocatorDeallocate(deallocator.get(), const_cast<UInt8*>(external));
    }

    CFIndex length() const { return deallocator ? externalLength : storage.size(); }
    const UInt8* bytes() const { return deallocator ? external : storage.data(); }
    std::span<const UInt8> all() const { return {bytes(), static_cast<std::size_t>(length())}; }
};

namespace {

using Data = cf::Ref<CFMutableDataRef>;

CFDataRef dataOf(CFTypeRef object) {
    return static_cast<CFDataRef>(object);
}

// The hash looks at no more bytes than these, as hashing must stay cheap for large data.
constexpr std::size_t kMostHashedBytes = 80;

CFHashCode hashData(CFTypeRef object) {
    const auto all = dataOf(object)->all();
    // FNV-1a.
    uint64_t hash = UINT64_C(14695981039346656037);
    for (const UInt8 byte : all.first(std::min(all.size(), kMostHashedBytes)))
        hash = (hash ^ byte) * UINT64_C(1099511628211);
    return static_cast<CFHashCode>(hash ^ all.size());
}

// Long data shows its beginning and its end.
CFStringRef describeData(CFTypeRef object) {
    constexpr std::size_t kMostShown = 24;
    constexpr std::size_t kShownOfEnd = 8;
    const auto all = dataOf(object)->all();
    const bool whole = all.size() <= kMostShown;
    cf::Description text(object);
    text.append(CFSTR("length = %ld, bytes = 0x"), static_cast<long>(all.size()));
    for (const UInt8 byte : all.first(whole ? all.size() : kMostShown - kShownOfEnd))
        text.append(CFSTR("%02x"), static_cast<unsigned>(byte));
    if (!whole) {
        text.append(CFSTR(" … "));
        for (const UInt8 byte : all.last(kShownOfEnd))
            text.append(CFSTR("%02x"), static_cast<unsigned>(byte));
    }
    return text.finish();
}

constexpr CFRuntimeClass kDataClass = {
    .className = "CFData",
    .finalize = cf::finalize<__CFData>,
    .equal = [](CFTypeRef a, CFTypeRef b) -> Boolean {
        return std::ranges::equal(dataOf(a)->all(), dataOf(b)->all());
    },
    .hash = hashData,
    .copyDebugDescription = describeData,
};

bool isData(CFDataRef data) {
    return cf::isA(data, kDataClass);
}

bool isInside(CFRange range, CFIndex length) {
    return range.location >= 0 && range.length >= 0 && range.location <= length &&
           range.length <= length - range.location;
}

void logRange(CFRange range, CFIndex length, const char* function) {
    HostLog(kHostLogError, cf::kLogCategory, function, "range {%ld, %ld} of %ld bytes",
            range.location, range.length, length);
}

Data createEmpty(CFAllocatorRef allocator, CFIndex capacity) {
    if (capacity < 0)
        return nullptr;
    auto data = cf::create<__CFData>(allocator, CFDataGetTypeID());
    return data && data.get()->storage.reserveExactly(capacity) ? data : nullptr;
}

Data createFilled(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length) {
    if (!bytes && length > 0)
        return nullptr;
    auto data = createEmpty(allocator, length);
    return data && data.get()->storage.append(bytes, length) ? data : nullptr;
}

// Where `sought` lies in `bytes`, as a position or kCFNotFound.
CFIndex find(std::span<const UInt8> bytes, std::span<const UInt8> sought,
             CFDataSearchFlags options) {
    if (sought.empty() || sought.size() > bytes.size())
        return kCFNotFound;
    const UInt8* const whole = bytes.data();
    const bool backwards = (options & kCFDataSearchBackwards) != 0;
    if ((options & kCFDataSearchAnchored) != 0)
        bytes = backwards ? bytes.last(sought.size()) : bytes.first(sought.size());

    const UInt8* const first = bytes.data();
    const UInt8* const end = first + bytes.size();
    const UInt8* const found =
        backwards ? std::find_end(first, end, sought.data(), sought.data() + sought.size())
                  : std::search(first, end, sought.data(), sought.data() + sought.size());
    return found == end ? CFIndex{kCFNotFound} : static_cast<CFIndex>(found - whole);
}

bool isWithin(const UInt8* bytes, const cf::Buffer<UInt8>& storage) {
    return std::less_equal<>()(storage.begin(), bytes) && std::less<>()(bytes, storage.end());
}

bool replace(CFMutableDataRef data, CFRange range, const UInt8* newBytes, CFIndex newLength) {
    // Bytes of the data itself would move away under the copy.
    cf::Buffer<UInt8> aside(CFGetAllocator(data));
    if (isWithin(newBytes, data->storage)) {
        if (!aside.append(newBytes, newLength))
            return false;
        newBytes = aside.data();
    }
    const CFIndex kept = std::min(range.length, newLength);
    if (newLength > kept) {
        if (!data->storage.open(range.location + kept, newLength - kept))
            return false;
    } else {
        data->storage.close(range.location + kept, range.length - kept);
    }
    data->storage.copyIn(range.location, newBytes, newLength);
    return true;
}

bool appendZeroes(CFMutableDataRef data, CFIndex count) {
    const CFIndex end = data->storage.size();
    if (!data->storage.open(end, count))
        return false;
    std::fill_n(data->storage.data() + end, count, UInt8{0});
    return true;
}

} // namespace

CFTypeID CFDataGetTypeID(void) {
    static const CFTypeID type = _CFRuntimeRegisterClass(&kDataClass);
    return type;
}

CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length) {
    return createFilled(allocator, bytes, length).release();
}

CFDataRef CFDataCreateWithBytesNoCopy(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length,
                                      CFAllocatorRef bytesDeallocator) {
    if (length < 0 || (!bytes && length > 0))
        return nullptr;
    Data data = createEmpty(allocator, 0);
    if (!data)
        return nullptr;
    data.get()->external = bytes;
    data.get()->externalLength = length;
    data.get()->deallocator =
        cf::retain(bytesDeallocator ? bytesDeallocator : CFAllocatorGetDefault());
    return data.release();
}

CFDataRef CFDataCreateCopy(CFAllocatorRef allocator, CFDataRef data) {
    return isData(data) ? createFilled(allocator, data->bytes(), data->length()).release()
                        : nullptr;
}

CFMutableDataRef CFDataCreateMutable(CFAllocatorRef allocator, CFIndex capacity) {
    const CFIndex hint = std::min(capacity, cf::kMostTakenFromHint);
    return cf::makeMutable(createEmpty(allocator, hint)).release();
}

CFMutableDataRef CFDataCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                         CFDataRef data) {
    if (!isData(data) || capacity < 0)
        return nullptr;
    return cf::makeMutable(createFilled(allocator, data->bytes(), data->length())).release();
}

CFIndex CFDataGetLength(CFDataRef data) {
    return isData(data) ? data->length() : 0;
}

const UInt8* CFDataGetBytePtr(CFDataRef data) {
    return isData(data) ? data->bytes() : nullptr;
}

Boolean _CFDataOwnsBytes(CFDataRef data) {
    return isData(data) && !(data->base.flags & cf::kMutableFlag) &&
           data->deallocator.get() != kCFAllocatorNull;
}

UInt8* CFDataGetMutableBytePtr(CFMutableDataRef data) {
    return cf::mayChange(data, kDataClass, __func__) ? data->storage.data() : nullptr;
}

void CFDataGetBytes(CFDataRef data, CFRange range, UInt8* buffer) {
    if (!isData(data) || !buffer)
        return;
    if (!isInside(range, data->length())) {
        logRange(range, data->length(), __func__);
        if (range.location < 0 || range.location > data->length() || range.length < 0)
            return;
        range.length = data->length() - range.location;
    }
    std::copy_n(data->bytes() + range.location, range.length, buffer);
}

CFRange CFDataFind(CFDataRef data, CFDataRef dataToFind, CFRange searchRange,
                   CFDataSearchFlags options) {
    if (!isData(data) || !isData(dataToFind))
        return {kCFNotFound, 0};
    if (!isInside(searchRange, data->length())) {
        logRange(searchRange, data->length(), __func__);
        return {kCFNotFound, 0};
    }
    const auto range = data->all().subspan(static_cast<std::size_t>(searchRange.location),
                                           static_cast<std::size_t>(searchRange.length));
    const CFIndex found = find(range, dataToFind->all(), options);
    if (found == kCFNotFound)
        return {kCFNotFound, 0};
    return {searchRange.location + found, dataToFind->length()};
}

void CFDataSetLength(CFMutableDataRef data, CFIndex length) {
    if (length < 0 || !cf::mayChange(data, kDataClass, __func__))
        return;
    const CFIndex now = data->storage.size();
    if (length < now)
        data->storage.close(length, now - length);
    else
        cf::logUnlessDone(appendZeroes(data, length - now), __func__);
}

void CFDataIncreaseLength(CFMutableDataRef data, CFIndex extraLength) {
    if (extraLength >= 0 && cf::mayChange(data, kDataClass, __func__))
        cf::logUnlessDone(appendZeroes(data, extraLength), __func__);
}

void CFDataAppendBytes(CFMutableDataRef data, const UInt8* bytes, CFIndex length) {
    CFDataReplaceBytes(data, {CFDataGetLength(data), 0}, bytes, length);
}

void CFDataReplaceBytes(CFMutableDataRef data, CFRange range, const UInt8* newBytes,
                        CFIndex newLength) {
    if (newLength < 0 || (!newBytes && newLength > 0) || !cf::mayChange(data, kDataClass, __func__))
        return;
    if (!isInside(range, data->length()))
        logRange(range, data->length(), __func__);
    else
        cf::logUnlessDone(replace(data, range, newBytes, newLength), __func__);
}

void CFDataDeleteBytes(CFMutableDataRef data, CFRange range) {
    CFDataReplaceBytes(data, range, nullptr, 0);
}
