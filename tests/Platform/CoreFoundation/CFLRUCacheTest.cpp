// CFLRUCacheTest.cpp: the cache against a plain list in order of use.

#include <CoreFoundation/CFLRUCache.h>

#include "TestObjects.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <random>

namespace {

using test::integer;
using test::pointer;
using ::testing::IsEmpty;
using Cache = cf::Ref<_CFLRUCacheRef>;

Cache makeCache(CFIndex capacity) {
    return cf::adopt(
        _CFLRUCacheCreate(nullptr, capacity, &test::kCountedKeys, &test::kCountedValues));
}

// Pairs in order of use, the one used last in front.
class Model {
public:
    explicit Model(size_t capacity) : capacity_(capacity) {}

    intptr_t get(intptr_t key) {
        const auto at = find(key);
        if (at == pairs_.end())
            return 0;
        pairs_.splice(pairs_.begin(), pairs_, at);
        return pairs_.front().second;
    }
    void set(intptr_t key, intptr_t value) {
        remove(key);
        pairs_.emplace_front(key, value);
        cut();
    }
    void remove(intptr_t key) {
        const auto at = find(key);
        if (at != pairs_.end())
            pairs_.erase(at);
    }
    void setCapacity(size_t capacity) {
        capacity_ = capacity;
        cut();
    }
    size_t count() const { return pairs_.size(); }

private:
    std::list<std::pair<intptr_t, intptr_t>>::iterator find(intptr_t key) {
        return std::find_if(pairs_.begin(), pairs_.end(),
                            [=](const auto& pair) { return pair.first == key; });
    }
    void cut() {
        while (pairs_.size() > capacity_)
            pairs_.pop_back();
    }

    size_t capacity_;
    std::list<std::pair<intptr_t, intptr_t>> pairs_;
};

TEST(CFLRUCache, AgreesWithAListThroughRandomUse) {
    test::held.clear();
    {
        std::mt19937 random(7);
        const Cache cache = makeCache(40);
        Model model(40);
        for (int round = 0; round < 20000; ++round) {
            const auto key = intptr_t(random() % 80 + 1);
            switch (random() % 8) {
            case 0:
            case 1:
            case 2: {
                const auto value = intptr_t(random() % 100 + 1);
                ASSERT_TRUE(_CFLRUCacheSetValue(cache.get(), pointer(key), pointer(value)));
                model.set(key, value);
                break;
            }
            case 3:
                _CFLRUCacheRemoveValue(cache.get(), pointer(key));
                model.remove(key);
                break;
            default:
                ASSERT_EQ(integer(_CFLRUCacheGetValue(cache.get(), pointer(key))), model.get(key));
            }
            if (round % 1000 == 999) {
                const size_t capacity = 20 + random() % 40;
                _CFLRUCacheSetCapacity(cache.get(), CFIndex(capacity));
                model.setCapacity(capacity);
            }
            ASSERT_EQ(_CFLRUCacheGetCount(cache.get()), CFIndex(model.count()));
            // A key and a value each hold one reference to themselves.
            if (round % 100 == 0)
                ASSERT_LE(test::held.size(), 2 * model.count());
        }
    }
    EXPECT_THAT(test::held, IsEmpty());
}

TEST(CFLRUCache, LookingAKeyUpIsUseAndAskingForItIsNot) {
    const Cache cache = makeCache(2);
    _CFLRUCacheSetValue(cache.get(), pointer(1), pointer(10));
    _CFLRUCacheSetValue(cache.get(), pointer(2), pointer(20));
    EXPECT_EQ(_CFLRUCacheGetValue(cache.get(), pointer(1)), pointer(10));
    EXPECT_TRUE(_CFLRUCacheContainsKey(cache.get(), pointer(2)));
    _CFLRUCacheSetValue(cache.get(), pointer(3), pointer(30));
    EXPECT_FALSE(_CFLRUCacheContainsKey(cache.get(), pointer(2))) << "used longest ago";
    EXPECT_TRUE(_CFLRUCacheContainsKey(cache.get(), pointer(1)));
    EXPECT_EQ(_CFLRUCacheGetValue(cache.get(), pointer(2)), nullptr);
    EXPECT_EQ(_CFLRUCacheGetHitCount(cache.get()), 1);
    EXPECT_EQ(_CFLRUCacheGetMissCount(cache.get()), 1);
    _CFLRUCacheRemoveAllValues(cache.get());
    EXPECT_EQ(_CFLRUCacheGetCount(cache.get()), 0);
    EXPECT_EQ(_CFLRUCacheGetCapacity(cache.get()), 2);
}

} // namespace
