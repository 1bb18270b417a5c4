// CFArrayTest.cpp: arrays against std::vector, sorting, and what happens to values.

#include <CoreFoundation/CFArray.h>

#include "Support/CollectedLog.h"
#include "TestObjects.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace {

using test::integer;
using test::pointer;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Array = cf::Ref<CFMutableArrayRef>;
using Model = std::vector<intptr_t>;

Array makeArray(const Model& values, const CFArrayCallBacks* callBacks = nullptr) {
    Array array = cf::adopt(CFArrayCreateMutable(nullptr, 0, callBacks));
    for (const intptr_t value : values)
        CFArrayAppendValue(array.get(), pointer(value));
    return array;
}

CFRange all(CFArrayRef array) {
    return {0, CFArrayGetCount(array)};
}

Model contents(CFArrayRef array) {
    std::vector<const void*> values(static_cast<size_t>(CFArrayGetCount(array)));
    CFArrayGetValues(array, all(array), values.data());
    Model model;
    for (const void* const value : values)
        model.push_back(integer(value));
    return model;
}

// Makes the same random change in both. Arguments may lie just outside: nothing happens then.
void changeBoth(std::mt19937& random, CFMutableArrayRef array, Model& model) {
    const auto count = CFIndex(model.size());
    const auto value = intptr_t(random() % 50);
    const auto at = CFIndex(random() % (model.size() + 3)) - 1;
    const bool inside = at >= 0 && at < count;
    switch (random() % 8) {
    case 0:
    case 1:
        CFArrayInsertValueAtIndex(array, at, pointer(value));
        if (at >= 0 && at <= count)
            model.insert(model.begin() + at, value);
        break;
    case 2:
        CFArraySetValueAtIndex(array, at, pointer(value));
        if (inside)
            model[size_t(at)] = value;
        else if (at == count)
            model.push_back(value);
        break;
    case 3:
        CFArrayRemoveValueAtIndex(array, at);
        if (inside)
            model.erase(model.begin() + at);
        break;
    case 4:
        CFArrayExchangeValuesAtIndices(array, at, count - 1);
        if (inside)
            std::swap(model[size_t(at)], model.back());
        break;
    case 5: {
        const auto length = CFIndex(random() % 5);
        const void* fresh[] = {pointer(value), pointer(value + 1), pointer(value + 2)};
        CFArrayReplaceValues(array, {at, length}, fresh, 3);
        if (at >= 0 && at + length <= count) {
            const auto first = model.erase(model.begin() + at, model.begin() + at + length);
            model.insert(first, {value, value + 1, value + 2});
        }
        break;
    }
    case 6:
        CFArrayAppendValue(array, pointer(value));
        model.push_back(value);
        break;
    default:
        if (count > 40) {
            CFArrayReplaceValues(array, {10, 20}, nullptr, 0);
            model.erase(model.begin() + 10, model.begin() + 30);
        }
    }
}

TEST(CFArray, AgreesWithAVectorThroughRandomChanges) {
    HostLogSetThreshold(static_cast<HostLogLevel>(0)); // Arguments outside are meant here.
    test::held.clear();
    {
        std::mt19937 random(2);
        const Array array = makeArray({}, &test::kCountedArray);
        Model model;
        for (int round = 0; round < 20000; ++round) {
            changeBoth(random, array.get(), model);
            if (round % 50 == 0)
                ASSERT_EQ(contents(array.get()), model);
            if (round % 5000 == 4999) {
                CFArrayRemoveAllValues(array.get());
                model.clear();
            }
        }
        EXPECT_EQ(contents(array.get()), model);
    }
    EXPECT_THAT(test::held, IsEmpty());
    HostLogSetThreshold(kHostLogError);
}

TEST(CFArray, FindsAndCountsEqualValues) {
    const Array array = makeArray({1, 2, 1001, 3, 1}, &test::kCountedArray);
    const CFRange whole = all(array.get());
    EXPECT_EQ(CFArrayGetCountOfValue(array.get(), whole, pointer(2001)), 3);
    EXPECT_EQ(CFArrayGetFirstIndexOfValue(array.get(), {1, 4}, pointer(1)), 2);
    EXPECT_EQ(CFArrayGetLastIndexOfValue(array.get(), {0, 4}, pointer(1)), 2);
    EXPECT_EQ(CFArrayGetLastIndexOfValue(array.get(), whole, pointer(9)), kCFNotFound);
    EXPECT_TRUE(CFArrayContainsValue(array.get(), {3, 1}, pointer(3)));
    EXPECT_FALSE(CFArrayContainsValue(array.get(), {3, 0}, pointer(3)));
}

CFComparisonResult compareIntegers(const void* a, const void* b, void*) {
    return integer(a) < integer(b)   ? kCFCompareLessThan
           : integer(a) > integer(b) ? kCFCompareGreaterThan
                                     : kCFCompareEqualTo;
}

CFComparisonResult compareTens(const void* a, const void* b, void*) {
    return compareIntegers(pointer(integer(a) / 10), pointer(integer(b) / 10), nullptr);
}

TEST(CFArray, SortsStablyWhateverTheLength) {
    std::mt19937 random(3);
    for (const size_t count : {0u, 1u, 2u, 3u, 7u, 8u, 9u, 100u, 1000u}) {
        Model model(count);
        for (intptr_t& value : model)
            value = intptr_t(random() % 200);
        const Array array = makeArray(model);
        CFArraySortValues(array.get(), all(array.get()), compareTens, nullptr);
        std::stable_sort(model.begin(), model.end(),
                         [](intptr_t a, intptr_t b) { return a / 10 < b / 10; });
        EXPECT_EQ(contents(array.get()), model) << count << " values";
    }
}

TEST(CFArray, SortsNoFurtherThanTheRange) {
    const Array array = makeArray({9, 8, 7, 6, 5, 4});
    CFArraySortValues(array.get(), {1, 3}, compareIntegers, nullptr);
    EXPECT_THAT(contents(array.get()), ElementsAre(9, 6, 7, 8, 5, 4));
}

TEST(CFArray, KeepsItsValuesWhenTheComparatorContradictsItself) {
    Model model(777);
    for (size_t i = 0; i < model.size(); ++i)
        model[i] = intptr_t(i);
    const Array array = makeArray(model);
    std::mt19937 random(4);
    CFArraySortValues(
        array.get(), all(array.get()),
        [](const void*, const void*, void* random) {
            return CFComparisonResult(CFIndex((*static_cast<std::mt19937*>(random))() % 3) - 1);
        },
        &random);
    Model sorted = contents(array.get());
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(sorted, model);
}

TEST(CFArray, SearchesBySortedOrder) {
    const Array array = makeArray({10, 20, 20, 30});
    const struct {
        const char* what;
        intptr_t value;
        CFIndex expected;
    } cases[] = {{"before all", 5, 0}, {"the first", 10, 0}, {"the first of equal ones", 20, 1},
                 {"between", 25, 3},   {"the last", 30, 3},  {"behind all", 99, 4}};
    for (const auto& [what, value, expected] : cases)
        EXPECT_EQ(
            CFArrayBSearchValues(array.get(), {0, 4}, pointer(value), compareIntegers, nullptr),
            expected)
            << what;
}

TEST(CFArray, AppendsAPartOfAnotherArrayOrOfItself) {
    const Array array = makeArray({1, 2, 3}, &test::kCountedArray);
    const Array other = makeArray({7, 8, 9});
    CFArrayAppendArray(array.get(), other.get(), {1, 2});
    EXPECT_THAT(contents(array.get()), ElementsAre(1, 2, 3, 8, 9));
    CFArrayAppendArray(array.get(), array.get(), {0, 5});
    EXPECT_THAT(contents(array.get()), ElementsAre(1, 2, 3, 8, 9, 1, 2, 3, 8, 9));
}

TEST(CFArray, CopiesHoldTheSameValuesAndAreEqual) {
    test::held.clear();
    {
        const void* values[] = {pointer(1), pointer(2)};
        const auto array = cf::adopt(CFArrayCreate(nullptr, values, 2, &test::kCountedArray));
        const auto copy = cf::adopt(CFArrayCreateCopy(nullptr, array.get()));
        const Array changed = cf::adopt(CFArrayCreateMutableCopy(nullptr, 0, array.get()));
        EXPECT_TRUE(CFEqual(array.get(), copy.get()));
        EXPECT_TRUE(CFEqual(array.get(), changed.get()));
        EXPECT_EQ(CFHash(array.get()), CFHash(changed.get()));
        CFArraySetValueAtIndex(changed.get(), 1, pointer(1002));
        EXPECT_TRUE(CFEqual(array.get(), changed.get())) << "another form of the value";
        CFArraySetValueAtIndex(changed.get(), 1, pointer(3));
        EXPECT_FALSE(CFEqual(array.get(), changed.get()));
        EXPECT_FALSE(CFEqual(array.get(), makeArray({1, 2}).get())) << "another rule";
        EXPECT_EQ(test::held[pointer(1)], 3);
    }
    EXPECT_THAT(test::held, IsEmpty());
}

TEST(CFArray, MayBeChangedWhileAFunctionIsApplied) {
    const Array array = makeArray(Model(100, 1));
    CFArrayApplyFunction(
        array.get(), all(array.get()),
        [](const void*, void* array) { CFArrayRemoveValueAtIndex(CFMutableArrayRef(array), 0); },
        array.get());
    EXPECT_EQ(CFArrayGetCount(array.get()), 50);
}

// The release callback of this test changes the array that calls it.
CFMutableArrayRef grown = nullptr;

TEST(CFArray, ReleaseCallBacksMayChangeIt) {
    CFArrayCallBacks callBacks = {};
    callBacks.release = [](CFAllocatorRef, const void*) {
        if (CFArrayGetCount(grown) < 1000)
            CFArrayAppendValue(grown, pointer(5));
    };
    const Array array = makeArray({1, 2, 3}, &callBacks);
    grown = array.get();
    const void* fresh = pointer(4);
    CFArrayReplaceValues(array.get(), {0, 2}, &fresh, 1);
    EXPECT_THAT(contents(array.get()), ElementsAre(4, 3, 5, 5));
    CFArrayRemoveAllValues(array.get());
    EXPECT_THAT(contents(array.get()), ElementsAre(5, 5, 5, 5));
    CFArraySetValueAtIndex(array.get(), 0, pointer(6));
    CFArrayRemoveValueAtIndex(array.get(), 0);
    EXPECT_EQ(CFArrayGetCount(array.get()), 5);
    grown = nullptr;
    CFArrayReplaceValues(array.get(), {0, 0}, nullptr, 0);
}

TEST(CFArray, LogsPositionsOutsideAndAnswersNeutrally) {
    const CollectedLog log;
    const Array array = makeArray({1, 2});
    const void* values[4] = {};
    constexpr CFIndex most = std::numeric_limits<CFIndex>::max();
    EXPECT_EQ(CFArrayGetValueAtIndex(array.get(), 2), nullptr);
    EXPECT_EQ(CFArrayGetValueAtIndex(array.get(), -1), nullptr);
    CFArrayGetValues(array.get(), {1, 2}, values);
    EXPECT_EQ(values[0], nullptr);
    EXPECT_EQ(CFArrayGetFirstIndexOfValue(array.get(), {most, most}, pointer(1)), kCFNotFound);
    EXPECT_EQ(CFArrayGetCountOfValue(array.get(), {0, -1}, pointer(1)), 0);
    CFArrayInsertValueAtIndex(array.get(), 3, pointer(9));
    CFArrayRemoveValueAtIndex(array.get(), 2);
    CFArrayReplaceValues(array.get(), {1, most}, nullptr, 0);
    CFArrayExchangeValuesAtIndices(array.get(), 0, 2);
    EXPECT_THAT(contents(array.get()), ElementsAre(1, 2));
    EXPECT_EQ(log.lines().size(), 9u);
}

TEST(CFArray, ImmutableOnesStayAsTheyAre) {
    const CollectedLog log;
    const void* values[] = {pointer(2), pointer(1)};
    const auto array =
        cf::adopt(const_cast<CFMutableArrayRef>(CFArrayCreate(nullptr, values, 2, nullptr)));
    CFArrayAppendValue(array.get(), pointer(3));
    CFArrayRemoveAllValues(array.get());
    CFArraySortValues(array.get(), {0, 2}, compareIntegers, nullptr);
    EXPECT_THAT(contents(array.get()), ElementsAre(2, 1));
    EXPECT_EQ(log.lines().size(), 3u);
}

TEST(CFArray, RefusesMissingArguments) {
    EXPECT_EQ(CFArrayCreate(nullptr, nullptr, 1, nullptr), nullptr);
    EXPECT_EQ(CFArrayCreateMutable(nullptr, -1, nullptr), nullptr);
    const Array array = makeArray({1});
    CFArrayAppendArray(array.get(), nullptr, {0, 0});
    CFArrayGetValues(array.get(), {0, 1}, nullptr);
    CFArraySortValues(array.get(), {0, 1}, nullptr, nullptr);
    CFArrayReplaceValues(array.get(), {0, 1}, nullptr, 2);
    EXPECT_THAT(contents(array.get()), ElementsAre(1));
    const Array objects = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    CFArrayAppendValue(objects.get(), nullptr);
    EXPECT_EQ(CFArrayGetCount(objects.get()), 1) << "a null object is kept as one";
}

} // namespace
