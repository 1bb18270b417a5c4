// CFDictionaryTest.cpp: dictionaries against std::map, and what happens to keys and values.

#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFNull.h>
#include <CoreFoundation/CFNumber.h>

#include "TestObjects.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <vector>

namespace {

using test::integer;
using test::pointer;
using ::testing::IsEmpty;
using Dictionary = cf::Ref<CFMutableDictionaryRef>;
using Model = std::map<intptr_t, intptr_t>;

Dictionary makeDictionary(const CFDictionaryKeyCallBacks* keys = nullptr,
                          const CFDictionaryValueCallBacks* values = nullptr) {
    return cf::adopt(CFDictionaryCreateMutable(nullptr, 0, keys, values));
}

Model contents(CFDictionaryRef dictionary) {
    const auto count = static_cast<size_t>(CFDictionaryGetCount(dictionary));
    std::vector<const void*> keys(count), values(count);
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
    Model model;
    for (size_t i = 0; i < count; ++i)
        model[integer(keys[i])] = integer(values[i]);
    return model;
}

// Makes the same random change in both.
void changeBoth(std::mt19937& random, CFMutableDictionaryRef dictionary, Model& model) {
    const auto key = intptr_t(random() % 300);
    const auto value = intptr_t(random() % 100);
    switch (random() % 10) {
    case 0:
    case 1:
    case 2:
        CFDictionaryAddValue(dictionary, pointer(key), pointer(value));
        model.emplace(key, value);
        break;
    case 3:
    case 4:
        CFDictionarySetValue(dictionary, pointer(key), pointer(value));
        model[key] = value;
        break;
    case 5:
        CFDictionaryReplaceValue(dictionary, pointer(key), pointer(value));
        if (model.contains(key))
            model[key] = value;
        break;
    default:
        CFDictionaryRemoveValue(dictionary, pointer(key));
        model.erase(key);
    }
}

TEST(CFDictionary, AgreesWithAMapThroughRandomChanges) {
    test::held.clear();
    const struct {
        const char* what;
        const CFDictionaryKeyCallBacks* keys;
        const CFDictionaryValueCallBacks* values;
    } cases[] = {{"pointers", nullptr, nullptr},
                 {"counted values", &test::kCountedKeys, &test::kCountedValues}};
    for (const auto& [what, keys, values] : cases) {
        SCOPED_TRACE(what);
        std::mt19937 random(1);
        const Dictionary dictionary = makeDictionary(keys, values);
        Model model;
        for (int round = 0; round < 20000; ++round) {
            changeBoth(random, dictionary.get(), model);
            if (round % 7000 == 6999) {
                CFDictionaryRemoveAllValues(dictionary.get());
                model.clear();
            }
            const auto key = intptr_t(random() % 300);
            const auto found = model.find(key);
            ASSERT_EQ(CFDictionaryContainsKey(dictionary.get(), pointer(key)),
                      found != model.end());
            ASSERT_EQ(integer(CFDictionaryGetValue(dictionary.get(), pointer(key))),
                      found == model.end() ? 0 : found->second);
            if (round % 100 == 0)
                ASSERT_EQ(contents(dictionary.get()), model);
        }
        EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), CFIndex(model.size()));
    }
    EXPECT_THAT(test::held, IsEmpty());
}

TEST(CFDictionary, HoldsManyKeysThatHashAlike) {
    CFDictionaryKeyCallBacks keys = {};
    keys.hash = [](const void*) -> CFHashCode { return 42; };
    const Dictionary dictionary = makeDictionary(&keys);
    Model model;
    for (intptr_t key = 1; key <= 200; ++key)
        CFDictionarySetValue(dictionary.get(), pointer(key), pointer(model[key] = key * 3));
    for (intptr_t key = 1; key <= 200; key += 2) {
        CFDictionaryRemoveValue(dictionary.get(), pointer(key));
        model.erase(key);
    }
    EXPECT_EQ(contents(dictionary.get()), model);
    for (const auto& [key, value] : model)
        EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), pointer(key)), pointer(value));
}

TEST(CFDictionary, AddingKeepsTheFirstKeyAndValueAndSettingReplacesTheValue) {
    const Dictionary dictionary = makeDictionary(&test::kCountedKeys, &test::kCountedValues);
    CFDictionaryAddValue(dictionary.get(), pointer(7), pointer(1));
    CFDictionaryAddValue(dictionary.get(), pointer(1007), pointer(2));
    EXPECT_EQ(contents(dictionary.get()), (Model{{7, 1}}));
    CFDictionarySetValue(dictionary.get(), pointer(1007), pointer(3));
    EXPECT_EQ(contents(dictionary.get()), (Model{{7, 3}}));
    CFDictionaryReplaceValue(dictionary.get(), pointer(8), pointer(4));
    EXPECT_EQ(contents(dictionary.get()), (Model{{7, 3}})) << "nothing to replace";
}

TEST(CFDictionary, ReferencesAreCountedAndAllGivenBack) {
    test::held.clear();
    {
        const void* keys[] = {pointer(1), pointer(2), pointer(1001)};
        const void* values[] = {pointer(11), pointer(12), pointer(13)};
        const auto dictionary = cf::adopt(CFDictionaryCreate(
            nullptr, keys, values, 3, &test::kCountedKeys, &test::kCountedValues));
        EXPECT_EQ(contents(dictionary.get()), (Model{{1, 11}, {2, 12}})) << "the first stays";
        const auto copy = cf::adopt(CFDictionaryCreateCopy(nullptr, dictionary.get()));
        EXPECT_EQ(test::held[pointer(1)], 2);
        EXPECT_EQ(test::held[pointer(12)], 2);
        EXPECT_TRUE(CFEqual(dictionary.get(), copy.get()));
    }
    EXPECT_THAT(test::held, IsEmpty());
}

TEST(CFDictionary, EqualityGoesByKeysAndValuesWhateverTheOrder) {
    const auto make = [](std::vector<std::pair<intptr_t, intptr_t>> pairs,
                         const CFDictionaryValueCallBacks* values) {
        Dictionary made = makeDictionary(&test::kCountedKeys, values);
        for (const auto& [key, value] : pairs)
            CFDictionaryAddValue(made.get(), pointer(key), pointer(value));
        return made;
    };
    const auto dictionary = make({{1, 10}, {2, 20}}, &test::kCountedValues);
    const struct {
        const char* what;
        Dictionary other;
        bool equal;
    } cases[] = {
        {"same pairs, other order", make({{2, 20}, {1, 10}}, &test::kCountedValues), true},
        {"equal forms", make({{1001, 2010}, {2, 20}}, &test::kCountedValues), true},
        {"another value", make({{1, 10}, {2, 21}}, &test::kCountedValues), false},
        {"another key", make({{1, 10}, {3, 20}}, &test::kCountedValues), false},
        {"fewer pairs", make({{1, 10}}, &test::kCountedValues), false},
        {"another rule for values", make({{1, 10}, {2, 20}}, nullptr), false},
    };
    for (const auto& [what, other, equal] : cases) {
        EXPECT_EQ(CFEqual(dictionary.get(), other.get()), equal) << what;
        if (equal)
            EXPECT_EQ(CFHash(dictionary.get()), CFHash(other.get())) << what;
    }
}

TEST(CFDictionary, CountsEqualValues) {
    const Dictionary dictionary = makeDictionary(nullptr, &test::kCountedValues);
    for (intptr_t key = 0; key < 5; ++key)
        CFDictionarySetValue(dictionary.get(), pointer(key), pointer(key % 2 ? 9 : 1009));
    EXPECT_EQ(CFDictionaryGetCountOfValue(dictionary.get(), pointer(9)), 5);
    EXPECT_EQ(CFDictionaryGetCountOfValue(dictionary.get(), pointer(8)), 0);
    EXPECT_TRUE(CFDictionaryContainsValue(dictionary.get(), pointer(2009)));
    EXPECT_EQ(CFDictionaryGetCountOfKey(dictionary.get(), pointer(4)), 1);
}

TEST(CFDictionary, PresentNullValuesDifferFromMissingOnes) {
    const Dictionary dictionary = makeDictionary();
    CFDictionarySetValue(dictionary.get(), nullptr, nullptr);
    const void* value = &dictionary;
    EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary.get(), nullptr, &value));
    EXPECT_EQ(value, nullptr);
    value = &dictionary;
    EXPECT_FALSE(CFDictionaryGetValueIfPresent(dictionary.get(), pointer(1), &value));
    EXPECT_EQ(value, &dictionary) << "a miss leaves it";
}

TEST(CFDictionary, MayBeChangedWhileAFunctionIsApplied) {
    const struct {
        const char* what;
        CFDictionaryApplierFunction applier;
    } cases[] = {
        {"emptied", [](const void*, const void*,
                       void* d) { CFDictionaryRemoveAllValues(CFMutableDictionaryRef(d)); }},
        {"entry removed", [](const void* key, const void*,
                             void* d) { CFDictionaryRemoveValue(CFMutableDictionaryRef(d), key); }},
        {"grown",
         [](const void* key, const void*, void* d) {
             if (CFDictionaryGetCount(CFMutableDictionaryRef(d)) < 5000)
                 CFDictionarySetValue(CFMutableDictionaryRef(d), pointer(integer(key) + 700),
                                      pointer(1));
         }},
    };
    for (const auto& [what, applier] : cases) {
        SCOPED_TRACE(what);
        const Dictionary dictionary = makeDictionary();
        for (intptr_t key = 1; key <= 500; ++key)
            CFDictionarySetValue(dictionary.get(), pointer(key), pointer(key));
        CFDictionaryApplyFunction(dictionary.get(), applier, dictionary.get());
        EXPECT_EQ(contents(dictionary.get()).size(),
                  size_t(CFDictionaryGetCount(dictionary.get())));
    }
}

// The release callback of this test empties the dictionary that calls it.
CFMutableDictionaryRef emptied = nullptr;

TEST(CFDictionary, ReleaseCallBacksMayChangeIt) {
    CFDictionaryValueCallBacks values = {};
    values.release = [](CFAllocatorRef, const void*) { CFDictionaryRemoveAllValues(emptied); };
    const Dictionary dictionary = makeDictionary(nullptr, &values);
    emptied = dictionary.get();
    for (intptr_t key = 1; key <= 20; ++key)
        CFDictionarySetValue(dictionary.get(), pointer(key), pointer(key));
    CFDictionarySetValue(dictionary.get(), pointer(3), pointer(4));
    EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 0);
    CFDictionarySetValue(dictionary.get(), pointer(5), pointer(6));
    CFDictionaryRemoveValue(dictionary.get(), pointer(5));
    EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 0);
}

TEST(CFDictionary, ImmutableOnesStayAsTheyAre) {
    const void* key = pointer(1);
    const auto dictionary = cf::adopt(const_cast<CFMutableDictionaryRef>(
        CFDictionaryCreate(nullptr, &key, &key, 1, nullptr, nullptr)));
    CFDictionaryAddValue(dictionary.get(), pointer(2), pointer(2));
    CFDictionarySetValue(dictionary.get(), pointer(1), pointer(3));
    CFDictionaryRemoveValue(dictionary.get(), pointer(1));
    CFDictionaryRemoveAllValues(dictionary.get());
    EXPECT_EQ(contents(dictionary.get()), (Model{{1, 1}}));
}

TEST(CFDictionary, RefusesBadArguments) {
    EXPECT_EQ(CFDictionaryCreate(nullptr, nullptr, nullptr, 1, nullptr, nullptr), nullptr);
    EXPECT_EQ(CFDictionaryCreateMutable(nullptr, -1, nullptr, nullptr), nullptr);
    CFDictionaryApplyFunction(makeDictionary().get(), nullptr, nullptr);
    EXPECT_EQ(CFDictionaryGetCount(reinterpret_cast<CFDictionaryRef>(kCFNull)), 0)
        << "an object of another class";
    const auto most = cf::adopt(
        CFDictionaryCreateMutable(nullptr, std::numeric_limits<CFIndex>::max(), nullptr, nullptr));
    EXPECT_TRUE(most) << "the capacity is only a hint";
}

} // namespace
