// CFSetTest.cpp: sets against std::set, and which of equal values they keep.

#include <CoreFoundation/CFSet.h>

#include "Support/CollectedLog.h"
#include "TestObjects.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <vector>

namespace {

using test::integer;
using test::pointer;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Set = cf::Ref<CFMutableSetRef>;
using Model = std::set<intptr_t>;

Set makeSet(const Model& values = {}) {
    Set set = cf::adopt(CFSetCreateMutable(nullptr, 0, &test::kCountedSet));
    for (const intptr_t value : values)
        CFSetAddValue(set.get(), pointer(value));
    return set;
}

Model contents(CFSetRef set) {
    std::vector<const void*> values(static_cast<size_t>(CFSetGetCount(set)));
    CFSetGetValues(set, values.data());
    Model model;
    for (const void* const value : values)
        model.insert(integer(value));
    return model;
}

TEST(CFSet, AgreesWithASetThroughRandomChanges) {
    test::held.clear();
    {
        std::mt19937 random(5);
        const Set set = makeSet();
        Model model;
        for (int round = 0; round < 20000; ++round) {
            const auto value = intptr_t(random() % 400);
            if (random() % 2) {
                CFSetAddValue(set.get(), pointer(value));
                model.insert(value);
            } else {
                CFSetRemoveValue(set.get(), pointer(value));
                model.erase(value);
            }
            ASSERT_EQ(CFSetContainsValue(set.get(), pointer(value)), model.contains(value));
            if (round % 100 == 0)
                ASSERT_EQ(contents(set.get()), model);
        }
    }
    EXPECT_THAT(test::held, IsEmpty());
}

TEST(CFSet, AddingKeepsWhatIsThereAndSettingReplacesIt) {
    test::held.clear();
    {
        const Set set = makeSet({7});
        CFSetAddValue(set.get(), pointer(1007));
        EXPECT_THAT(contents(set.get()), ElementsAre(7));
        CFSetSetValue(set.get(), pointer(1007));
        EXPECT_THAT(contents(set.get()), ElementsAre(1007));
        CFSetReplaceValue(set.get(), pointer(2007));
        CFSetReplaceValue(set.get(), pointer(8));
        EXPECT_THAT(contents(set.get()), ElementsAre(2007));
        EXPECT_EQ(CFSetGetValue(set.get(), pointer(7)), pointer(2007)) << "the set's own form";
        EXPECT_EQ(CFSetGetCountOfValue(set.get(), pointer(7)), 1);
        const void* actual = nullptr;
        EXPECT_TRUE(CFSetGetValueIfPresent(set.get(), pointer(1007), &actual));
        EXPECT_EQ(actual, pointer(2007));
        EXPECT_EQ(test::held.size(), 1u) << "replaced forms are given back";
    }
    EXPECT_THAT(test::held, IsEmpty());
}

TEST(CFSet, CopiesAreEqualUntilTheyAreChanged) {
    const void* values[] = {pointer(1), pointer(2), pointer(1001)};
    const auto set = cf::adopt(CFSetCreate(nullptr, values, 3, &test::kCountedSet));
    EXPECT_THAT(contents(set.get()), ElementsAre(1, 2)) << "of equal values the first stays";
    const auto copy = cf::adopt(CFSetCreateCopy(nullptr, set.get()));
    const Set changed = cf::adopt(CFSetCreateMutableCopy(nullptr, 0, set.get()));
    EXPECT_TRUE(CFEqual(set.get(), copy.get()));
    EXPECT_TRUE(CFEqual(set.get(), changed.get()));
    EXPECT_EQ(CFHash(set.get()), CFHash(changed.get()));
    CFSetRemoveValue(changed.get(), pointer(2));
    EXPECT_FALSE(CFEqual(set.get(), changed.get()));
    CFSetAddValue(changed.get(), pointer(3));
    EXPECT_FALSE(CFEqual(set.get(), changed.get()));
}

TEST(CFSet, MayBeEmptiedWhileAFunctionIsApplied) {
    const Set set = makeSet({1, 2, 3, 4, 5, 6, 7, 8, 9});
    int calls = 0;
    struct Context {
        CFMutableSetRef set;
        int* calls;
    } context = {set.get(), &calls};
    CFSetApplyFunction(
        set.get(),
        [](const void*, void* context) {
            auto& given = *static_cast<Context*>(context);
            ++*given.calls;
            CFSetRemoveAllValues(given.set);
        },
        &context);
    EXPECT_EQ(calls, 1);
}

TEST(CFSet, RefusesMissingArgumentsAndChangesToImmutableOnes) {
    const CollectedLog log;
    EXPECT_EQ(CFSetCreate(nullptr, nullptr, 1, nullptr), nullptr);
    EXPECT_EQ(CFSetCreateMutable(nullptr, -1, nullptr), nullptr);
    EXPECT_THAT(log.lines(), IsEmpty());

    const void* value = pointer(1);
    const auto set =
        cf::adopt(const_cast<CFMutableSetRef>(CFSetCreate(nullptr, &value, 1, nullptr)));
    CFSetAddValue(set.get(), pointer(2));
    CFSetRemoveAllValues(set.get());
    EXPECT_THAT(contents(set.get()), ElementsAre(1));
    EXPECT_EQ(log.lines().size(), 2u);
}

} // namespace
