// PropertyListFuzz.cpp: property lists of any bytes, in each format; what was read must work.

#include <CoreFoundation/CFPropertyList.h>
#include <CoreFoundation/CFRef.h>

#include <cstdint>
#include <cstdlib>

namespace {

using List = cf::Ref<CFTypeRef>;

List read(CFDataRef data, CFOptionFlags options) {
    return cf::adopt<CFTypeRef>(
        CFPropertyListCreateWithData(nullptr, data, options, nullptr, nullptr));
}

void require(bool condition) {
    if (!condition)
        std::abort();
}

// The binary format holds every list, so that it comes back as it was.
void roundTrip(const List& list) {
    const auto binary = cf::adopt(CFPropertyListCreateData(
        nullptr, list.get(), kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
    require(static_cast<bool>(binary));
    const List back = read(binary.get(), kCFPropertyListImmutable);
    require(back && CFEqual(back.get(), list.get()));
    const auto xml = cf::adopt(
        CFPropertyListCreateData(nullptr, list.get(), kCFPropertyListXMLFormat_v1_0, 0, nullptr));
    require(!xml || read(xml.get(), kCFPropertyListImmutable));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    // Small inputs may unfold to millions of values; those are for the tests' table, not for here.
    constexpr size_t kLargestSize = 65536;
    if (size > kLargestSize)
        return 0;
    const auto data = cf::adopt(CFDataCreate(nullptr, bytes, static_cast<CFIndex>(size)));
    const List list = read(data.get(), kCFPropertyListImmutable);
    const List changeable = read(data.get(), kCFPropertyListMutableContainersAndLeaves);
    require(static_cast<bool>(list) == static_cast<bool>(changeable));
    if (list)
        roundTrip(list);
    return 0;
}
