// CFNumberTest.cpp: numbers of every type, their conversions and their order.

#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace {

using Number = cf::Ref<CFNumberRef>;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int64_t kMost = std::numeric_limits<int64_t>::max();
constexpr int64_t kLeast = std::numeric_limits<int64_t>::min();

Number make(int64_t value) {
    return cf::adopt(CFNumberCreate(nullptr, kCFNumberSInt64Type, &value));
}
Number make(int value) {
    return make(int64_t(value));
}
Number make(double value) {
    return cf::adopt(CFNumberCreate(nullptr, kCFNumberFloat64Type, &value));
}

// What reading `number` as a type gave, and whether it lost nothing.
template <typename Value>
struct Read {
    Value value;
    bool exact;
    bool operator==(const Read&) const = default;
};

template <typename Value>
Read<Value> read(const Number& number, CFNumberType type) {
    Value value = {};
    const bool exact = CFNumberGetValue(number.get(), type, &value);
    return {value, exact};
}

TEST(CFNumber, EveryTypeHasAFixedWidthFormAndComesBackWhole) {
    const struct {
        const char* what;
        CFNumberType type;
        CFNumberType fixed;
        size_t size;
    } cases[] = {
        {"SInt8", kCFNumberSInt8Type, kCFNumberSInt8Type, 1},
        {"SInt16", kCFNumberSInt16Type, kCFNumberSInt16Type, 2},
        {"SInt32", kCFNumberSInt32Type, kCFNumberSInt32Type, 4},
        {"SInt64", kCFNumberSInt64Type, kCFNumberSInt64Type, 8},
        {"Float32", kCFNumberFloat32Type, kCFNumberFloat32Type, 4},
        {"Float64", kCFNumberFloat64Type, kCFNumberFloat64Type, 8},
        {"Char", kCFNumberCharType, kCFNumberSInt8Type, sizeof(char)},
        {"Short", kCFNumberShortType, kCFNumberSInt16Type, sizeof(short)},
        {"Int", kCFNumberIntType, kCFNumberSInt32Type, sizeof(int)},
        {"Long", kCFNumberLongType, kCFNumberSInt64Type, sizeof(long)},
        {"LongLong", kCFNumberLongLongType, kCFNumberSInt64Type, sizeof(long long)},
        {"Float", kCFNumberFloatType, kCFNumberFloat32Type, sizeof(float)},
        {"Double", kCFNumberDoubleType, kCFNumberFloat64Type, sizeof(double)},
        {"CFIndex", kCFNumberCFIndexType, kCFNumberSInt64Type, sizeof(CFIndex)},
        {"NSInteger", kCFNumberNSIntegerType, kCFNumberSInt64Type, sizeof(CFIndex)},
        {"CGFloat", kCFNumberCGFloatType, kCFNumberFloat32Type, sizeof(float)},
    };
    // Bytes that make an ordinary value in every type.
    const std::array<unsigned char, 8> bytes = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x17, 0x40};
    for (const auto& [what, type, fixed, size] : cases) {
        const Number number = cf::adopt(CFNumberCreate(nullptr, type, bytes.data()));
        EXPECT_EQ(CFNumberGetType(number.get()), fixed) << what;
        EXPECT_EQ(CFNumberGetByteSize(number.get()), CFIndex(size)) << what;
        std::array<unsigned char, 9> back;
        back.fill(0xEE);
        EXPECT_TRUE(CFNumberGetValue(number.get(), type, back.data())) << what;
        EXPECT_TRUE(std::equal(bytes.begin(), bytes.begin() + size, back.begin())) << what;
        EXPECT_EQ(back[size], 0xEE) << what << " writes no further";
    }
}

TEST(CFNumber, ConversionsSayWhatTheyLose) {
    EXPECT_EQ(read<int8_t>(make(100), kCFNumberSInt8Type), (Read<int8_t>{100, true}));
    EXPECT_EQ(read<int8_t>(make(300), kCFNumberSInt8Type), (Read<int8_t>{44, false}));
    EXPECT_EQ(read<int32_t>(make(int64_t{0xFFFFFFFF}), kCFNumberSInt32Type),
              (Read<int32_t>{-1, false}));
    EXPECT_EQ(read<int32_t>(make(2.0), kCFNumberIntType), (Read<int32_t>{2, true}));
    EXPECT_EQ(read<int32_t>(make(-2.9), kCFNumberIntType), (Read<int32_t>{-2, false}));
    EXPECT_EQ(read<int32_t>(make(1e20), kCFNumberIntType), (Read<int32_t>{INT32_MAX, false}));
    EXPECT_EQ(read<int16_t>(make(-kInfinity), kCFNumberShortType),
              (Read<int16_t>{INT16_MIN, false}));
    EXPECT_EQ(read<int64_t>(make(9223372036854775808.0), kCFNumberSInt64Type),
              (Read<int64_t>{kMost, false}));
    EXPECT_EQ(read<int64_t>(make(-9223372036854775808.0), kCFNumberSInt64Type),
              (Read<int64_t>{kLeast, true}));
    EXPECT_EQ(read<int32_t>(make(kNaN), kCFNumberIntType), (Read<int32_t>{0, false}));

    EXPECT_EQ(read<float>(make(0.5), kCFNumberCGFloatType), (Read<float>{0.5f, true}));
    EXPECT_EQ(read<float>(make(0.1), kCFNumberFloat32Type), (Read<float>{0.1f, false}));
    EXPECT_EQ(read<float>(make(1e300), kCFNumberFloatType),
              (Read<float>{std::numeric_limits<float>::infinity(), false}));
    EXPECT_EQ(read<float>(make(-kInfinity), kCFNumberFloatType),
              (Read<float>{-std::numeric_limits<float>::infinity(), true}));
    EXPECT_EQ(read<double>(make(int64_t{1} << 53), kCFNumberDoubleType),
              (Read<double>{9007199254740992.0, true}));
    EXPECT_EQ(read<double>(make((int64_t{1} << 53) + 1), kCFNumberDoubleType),
              (Read<double>{9007199254740992.0, false}));
    EXPECT_EQ(read<double>(make(kMost), kCFNumberDoubleType),
              (Read<double>{9223372036854775808.0, false}));
    EXPECT_TRUE(read<float>(make(kNaN), kCFNumberFloatType).exact);
}

TEST(CFNumber, ComparesExactlyAcrossRepresentations) {
    // In ascending order, each pair of neighbours different.
    const Number ascending[] = {
        make(-kInfinity),
        make(-1e19),
        make(kLeast),
        make(-9223372036854774784.0),
        make(-2),
        make(-1.5),
        make(kNaN),
        make(0),
        make(0.5),
        make(1),
        make(int64_t{1} << 53),
        make((int64_t{1} << 53) + 1),
        make(9007199254740994.0),
        make(kMost),
        make(9223372036854775808.0),
        make(kInfinity),
    };
    const size_t count = std::size(ascending);
    for (size_t i = 0; i < count; ++i) {
        for (size_t j = 0; j < count; ++j) {
            const CFIndex expected = i < j ? -1 : i > j ? 1 : 0;
            EXPECT_EQ(CFNumberCompare(ascending[i].get(), ascending[j].get(), nullptr), expected)
                << i << " with " << j;
            EXPECT_EQ(CFEqual(ascending[i].get(), ascending[j].get()), i == j);
        }
    }
    EXPECT_EQ(CFNumberCompare(nullptr, make(-5).get(), nullptr), kCFCompareLessThan);
    EXPECT_EQ(CFNumberCompare(nullptr, nullptr, nullptr), kCFCompareEqualTo);
}

TEST(CFNumber, EqualValuesHashAlikeInEveryRepresentation) {
    const float quarter = 0.25f;
    const std::pair<Number, Number> pairs[] = {
        {make(5), make(5.0)},
        {make(0), make(-0.0)},
        {make(kLeast), make(-9223372036854775808.0)},
        {make(0.25), cf::adopt(CFNumberCreate(nullptr, kCFNumberFloatType, &quarter))},
        {make(kNaN), cf::retain(kCFNumberNaN)},
        {make(kInfinity), cf::retain(kCFNumberPositiveInfinity)},
        {make(-kInfinity), cf::retain(kCFNumberNegativeInfinity)},
    };
    for (const auto& [a, b] : pairs) {
        EXPECT_TRUE(CFEqual(a.get(), b.get()));
        EXPECT_EQ(CFHash(a.get()), CFHash(b.get()));
    }
    EXPECT_FALSE(CFEqual(make(1).get(), kCFBooleanTrue)) << "a truth value is no number";
}

TEST(CFNumber, RefusesUnknownTypesAndMissingArguments) {
    int64_t value = 77;
    EXPECT_EQ(CFNumberCreate(nullptr, CFNumberType(0), &value), nullptr);
    EXPECT_EQ(CFNumberCreate(nullptr, CFNumberType(17), &value), nullptr);
    EXPECT_EQ(CFNumberCreate(nullptr, kCFNumberIntType, nullptr), nullptr);
    EXPECT_FALSE(CFNumberGetValue(make(1).get(), CFNumberType(-1), &value));
    EXPECT_FALSE(CFNumberGetValue(make(1).get(), kCFNumberIntType, nullptr));
    EXPECT_EQ(value, 77);
    EXPECT_TRUE(CFNumberIsFloatType(kCFNumberNaN));
}

// Copies made while the program starts, before any code of ours has run.
const CFBooleanRef trueAtStart = kCFBooleanTrue;
const Boolean valueAtStart = CFBooleanGetValue(kCFBooleanTrue);
const CFTypeID typeAtStart = CFGetTypeID(kCFNumberNaN);

TEST(CFBoolean, TwoImmortalInstancesAreThereBeforeMain) {
    EXPECT_EQ(trueAtStart, kCFBooleanTrue);
    EXPECT_TRUE(valueAtStart);
    EXPECT_EQ(typeAtStart, CFNumberGetTypeID());
    EXPECT_FALSE(CFBooleanGetValue(kCFBooleanFalse));
    EXPECT_FALSE(CFBooleanGetValue(nullptr));
    EXPECT_FALSE(CFEqual(kCFBooleanTrue, kCFBooleanFalse));
    EXPECT_NE(CFHash(kCFBooleanTrue), CFHash(kCFBooleanFalse));
    EXPECT_EQ(CFGetTypeID(kCFBooleanTrue), CFBooleanGetTypeID());
    CFRelease(kCFBooleanTrue);
    EXPECT_TRUE(_CFRuntimeIsImmortal(kCFBooleanTrue));
}

} // namespace
