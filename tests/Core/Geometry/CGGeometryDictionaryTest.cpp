// CGGeometryDictionaryTest.cpp: geometry as dictionaries, and numbers in either byte order.

#include "XGNumber.h"
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include "GeometryValues.h"
#include "Support/FailingAllocator.h"

namespace {

using Dictionary = cf::Ref<CFDictionaryRef>;
using Number = cf::Ref<CFNumberRef>;

Number makeNumber(double value) {
    return cf::adopt(CFNumberCreate(nullptr, kCFNumberDoubleType, &value));
}

// A dictionary with one of its values replaced, or taken out.
cf::Ref<CFMutableDictionaryRef> changed(const Dictionary& dictionary, CFStringRef key,
                                        CFTypeRef value) {
    auto copy = cf::adopt(CFDictionaryCreateMutableCopy(nullptr, 0, dictionary.get()));
    if (value)
        CFDictionarySetValue(copy.get(), key, value);
    else
        CFDictionaryRemoveValue(copy.get(), key);
    return copy;
}

TEST(CGGeometryDictionary, RoundTripsEveryBit) {
    const CGRect rect = {{0.1f, -0.0f}, {CGFLOAT_MAX, 1e-45f}};
    CGRect readRect = CGRectZero;
    const Dictionary ofRect = cf::adopt(CGRectCreateDictionaryRepresentation(rect));
    EXPECT_EQ(CFDictionaryGetCount(ofRect.get()), 4);
    EXPECT_TRUE(CGRectMakeWithDictionaryRepresentation(ofRect.get(), &readRect));
    EXPECT_SAME_BITS(readRect, rect);

    CGPoint point = CGPointZero;
    const Dictionary ofPoint = cf::adopt(CGPointCreateDictionaryRepresentation({kInf, 2}));
    EXPECT_EQ(CFDictionaryGetCount(ofPoint.get()), 2);
    EXPECT_TRUE(CGPointMakeWithDictionaryRepresentation(ofPoint.get(), &point));
    EXPECT_SAME_BITS(point, (CGPoint{kInf, 2}));
    EXPECT_TRUE(CFDictionaryContainsKey(ofPoint.get(), CFSTR("Y")));

    CGSize size = CGSizeZero;
    const Dictionary ofSize = cf::adopt(CGSizeCreateDictionaryRepresentation({3, 4}));
    EXPECT_TRUE(CGSizeMakeWithDictionaryRepresentation(ofSize.get(), &size));
    EXPECT_SAME_BITS(size, (CGSize{3, 4}));
    EXPECT_FALSE(CGPointMakeWithDictionaryRepresentation(ofSize.get(), &point));
}

TEST(CGGeometryDictionary, AFailureLeavesTheFieldsReadSoFar) {
    const CGRect untouched = {{-1, -1}, {-1, -1}};
    const Dictionary whole = cf::adopt(CGRectCreateDictionaryRepresentation({{1, 2}, {3, 4}}));
    const Number tenth = makeNumber(0.1); // Not exactly a float.
    const struct {
        const char* what;
        CFStringRef key;
        CFTypeRef value;
        CGRect expected;
        bool inFull;
    } cases[] = {
        {"no width", CFSTR("Width"), nullptr, untouched, false},
        {"no height", CFSTR("Height"), nullptr, {{-1, -1}, {3, -1}}, false},
        {"no x", CFSTR("X"), nullptr, {{-1, -1}, {3, 4}}, false},
        {"y is a string", CFSTR("Y"), CFSTR("2"), {{1, -1}, {3, 4}}, false},
        {"one key more", CFSTR("Z"), tenth.get(), {{1, 2}, {3, 4}}, true},
    };
    for (const auto& [what, key, value, expected, inFull] : cases) {
        CGRect rect = untouched;
        const auto dictionary = changed(whole, key, value);
        EXPECT_EQ(CGRectMakeWithDictionaryRepresentation(dictionary.get(), &rect), inFull) << what;
        EXPECT_SAME_BITS(rect, expected) << what;
    }
    CGRect rect = untouched;
    const auto lossy = changed(whole, CFSTR("Width"), tenth.get());
    EXPECT_FALSE(CGRectMakeWithDictionaryRepresentation(lossy.get(), &rect));
    EXPECT_FALSE(CGRectMakeWithDictionaryRepresentation(nullptr, &rect));
    EXPECT_FALSE(CGRectMakeWithDictionaryRepresentation(whole.get(), nullptr));
}

TEST(CGGeometryDictionary, WithoutMemoryThereIsNoDictionaryAndNoLeak) {
    bool isWhole = true;
    const auto sweep = test::failEachAllocation([&isWhole] {
        const Dictionary made =
            cf::adopt(CGRectCreateDictionaryRepresentation({{0.1f, 2}, {3.5f, 4}}));
        isWhole = isWhole && (!made || CFDictionaryGetCount(made.get()) == 4);
    });
    EXPECT_GE(sweep.failures, 1u);
    EXPECT_EQ(sweep.leakedBytes, 0);
    EXPECT_TRUE(isWhole);
}

TEST(XGNumber, ReversesByTheWidthOfTheType) {
    const unsigned char bytes[8] = {0x40, 0x49, 0x0F, 0xDB, 0x54, 0x44, 0x2D, 0x18};
    const struct {
        CFNumberType type;
        double expected;
    } cases[] = {
        {kCFNumberSInt8Type, 0x40},
        {kCFNumberSInt16Type, 0x4049},
        {kCFNumberSInt32Type, 0x40490FDB},
        {kCFNumberSInt64Type, double(0x40490FDB54442D18)},
        {kCFNumberFloat32Type, 3.14159274101257324}, // 0x40490FDB is pi.
        {kCFNumberFloat64Type, std::bit_cast<double>(std::uint64_t{0x40490FDB54442D18})},
        {kCFNumberCharType, 0x40},
        {kCFNumberShortType, 0x4049},
        {kCFNumberIntType, 0x40490FDB},
        {kCFNumberLongType, 0x40490FDB},
        {kCFNumberLongLongType, double(0x40490FDB54442D18)},
        {kCFNumberFloatType, 3.14159274101257324},
        {kCFNumberDoubleType, std::bit_cast<double>(std::uint64_t{0x40490FDB54442D18})},
        {kCFNumberCFIndexType, 0x40490FDB},
    };
    for (const auto& [type, expected] : cases) {
        const Number number = cf::adopt(XGNumberCreateWithEndian(nullptr, type, bytes, 1234));
        double value = 0;
        CFNumberGetValue(number.get(), kCFNumberDoubleType, &value);
        EXPECT_EQ(value, expected) << "type " << type;
    }
}

TEST(XGNumber, TakesTheHostsOrderAsItStands) {
    const std::int16_t stored = 0x1234;
    std::int32_t value = 0;
    const Number number =
        cf::adopt(XGNumberCreateWithEndian(nullptr, kCFNumberSInt16Type, &stored, 4321));
    EXPECT_TRUE(CFNumberGetValue(number.get(), kCFNumberSInt32Type, &value));
    EXPECT_EQ(value, 0x1234);
    const CGFloat third = 1 / 3.0f;
    const Number ofFloat =
        cf::adopt(XGNumberCreateWithEndian(nullptr, kCFNumberCGFloatType, &third, 4321));
    EXPECT_TRUE(ofFloat);
}

TEST(XGNumber, RefusesTypesWithoutAWidth) {
    const double value = 1;
    for (const CFIndex type : {0, 15, 16, -1})
        EXPECT_EQ(XGNumberCreateWithEndian(nullptr, CFNumberType(type), &value, 1234), nullptr);
    EXPECT_EQ(XGNumberCreateWithEndian(nullptr, kCFNumberSInt8Type, nullptr, 1234), nullptr);
    EXPECT_EQ(XGNumberCreateWithEndian(nullptr, kCFNumberSInt8Type, nullptr, 4321), nullptr);
}

} // namespace
