// CGDataProviderTest.cpp: the kinds of providers, one by one.

#include "Core/Data/CGDataProviderRecord.h"
#include "Core/Data/LockedData.h"
#include "Support/CollectedLog.h"
#include "Support/FailingAllocator.h"
#include "Support/ProviderModel.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

namespace {

using test::ByteSource;
using test::Provider;
using test::SourceKind;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

ByteSource counting(std::size_t size) {
    ByteSource source = {.bytes = test::Bytes(size), .notesCalls = true};
    std::iota(source.bytes.begin(), source.bytes.end(), std::uint8_t(0));
    return source;
}

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

} // namespace

TEST(DataProvider, AnswersByKind) {
    const struct {
        const char* what;
        SourceKind kind;
        std::int64_t size;
        bool direct, locks, directThen;
    } cases[] = {
        {"memory by pointer", SourceKind::Pointer, 50, true, true, true},
        {"memory by positions", SourceKind::Positions, 50, true, false, true},
        {"stream that skips", SourceKind::Skipping, 50, false, true, true},
        {"stream that only reads", SourceKind::Reading, kMost, false, false, false},
        {"stream of the older form", SourceKind::Older, kMost, false, false, false},
        {"data", SourceKind::Data, 50, true, true, true},
        {"CFData", SourceKind::CFData, 50, true, true, true},
    };
    for (const auto& [what, kind, size, direct, locks, directThen] : cases) {
        ByteSource source = counting(50);
        const Provider provider = test::makeProvider(kind, source);
        EXPECT_EQ(XGDataProviderIsDirect(provider.get()), direct) << what;
        EXPECT_EQ(XGDataProviderGetSize(provider.get()), size) << what;
        EXPECT_TRUE(XGDataProviderCanSeek(provider.get())) << what;
        EXPECT_EQ(cg::LockedData(provider.get()).bytes() != nullptr, locks) << what;
        EXPECT_EQ(XGDataProviderIsDirect(provider.get()), directThen) << what;
        std::uint8_t buffer[100];
        std::size_t read = 0;
        EXPECT_TRUE(XGDataProviderReadBytes(provider.get(), buffer, 40, 100, &read)) << what;
        EXPECT_EQ(read, 10u) << what;
        EXPECT_FALSE(XGDataProviderReadBytes(provider.get(), buffer, -1, 1, &read)) << what;
        if (size == 50)
            EXPECT_FALSE(XGDataProviderReadBytes(provider.get(), buffer, 50, 1, &read)) << what;
    }
    const CGDataProviderDirectCallbacks callbacks = {};
    EXPECT_EQ(CGDataProviderCreateDirect(nullptr, -1, &callbacks), nullptr);
}

TEST(DataProvider, LendsAPointerOnceAndTakesItBackOnce) {
    ByteSource source = counting(10);
    Provider provider = test::makeProvider(SourceKind::Pointer, source);
    XGDataProviderUnlockData(provider.get());
    const test::AllocationMeter meter;
    source.notesCalls = false;
    XGDataProviderLockData(provider.get());
    XGDataProviderUnlockData(provider.get());
    EXPECT_EQ(meter.allocations(), 0u);
    source.notesCalls = true;
    auto data = cf::adopt(CGDataProviderCopyData(provider.get()));
    EXPECT_EQ(CFDataGetBytePtr(data.get()), source.bytes.data());
    XGDataProviderLockData(provider.get());
    XGDataProviderUnlockData(provider.get());
    EXPECT_THAT(source.calls, ElementsAre("lend"));
    provider = nullptr;
    EXPECT_EQ(source.releases, 0) << "the data keeps the provider alive";
    data = nullptr;
    EXPECT_THAT(source.calls, ElementsAre("lend", "back"));
    EXPECT_EQ(source.releases, 1);
}

TEST(DataProvider, ReadsAStreamOnceWhenLocked) {
    ByteSource source = counting(40);
    const Provider provider = test::makeProvider(SourceKind::Skipping, source);
    const CollectedLog log;
    EXPECT_NE(XGDataProviderLockData(provider.get()), nullptr);
    EXPECT_NE(XGDataProviderLockData(provider.get()), nullptr);
    EXPECT_THAT(source.calls, ElementsAre("rewind", "get 40"));
    EXPECT_THAT(log.lines(),
                ElementsAre("4 _XGDataProviderLockDataUnsafe: You are reading the whole data for "
                            "sequential provider into the memory!"));
}

TEST(DataProvider, SkipsByReadingAndReportsWhatWasAsked) {
    for (const std::size_t size : {400u, 300u, 200u}) {
        ByteSource source = counting(size);
        const Provider provider = test::makeProvider(SourceKind::Reading, source);
        std::int64_t skipped = 0;
        EXPECT_TRUE(XGDataProviderSkip(provider.get(), 300, &skipped));
        EXPECT_EQ(skipped, 300);
        if (size >= 300)
            EXPECT_THAT(source.calls, ElementsAre("get 128", "get 128", "get 44"));
        else
            EXPECT_THAT(source.calls, ElementsAre("get 128", "get 128"));
    }
}

TEST(DataProvider, MeasuresAnEndlessStreamWithoutReadingIt) {
    ByteSource source = counting(1);
    source.lie = SIZE_MAX / 2;
    const Provider provider = test::makeProvider(SourceKind::Reading, source);
    EXPECT_EQ(XGDataProviderGetSize(provider.get()), kMost);
    const auto reader = cf::adopt(XGDataReaderCreate(provider.get()));
    EXPECT_EQ(XGDataReaderSeek(reader.get(), -1, kXGDataReaderFromEnd), -1);
    EXPECT_TRUE(source.calls.empty());
}

TEST(DataProvider, TellsWhatAStreamCannotDo) {
    ByteSource source = counting(20);
    const CGDataProviderSequentialCallbacks callbacks = {0, test::getBytes, nullptr, nullptr,
                                                         test::releaseInfo};
    const Provider provider = cf::adopt(CGDataProviderCreateSequential(&source, &callbacks));
    const CollectedLog log;
    std::uint8_t bytes[4];
    EXPECT_TRUE(XGDataProviderReadBytes(provider.get(), bytes, 7, 4, nullptr));
    EXPECT_EQ(bytes[0], 0) << "from where it stands";
    EXPECT_EQ(XGDataProviderLockData(provider.get()), nullptr);
    EXPECT_FALSE(XGDataProviderRewind(provider.get()));
    EXPECT_THAT(
        log.lines(),
        ElementsAre("4 _XGDataProviderReadBytesUnsafe: Getting bytes from a sequential provider "
                    "that does not support rewinding or skipping ignores the offset",
                    "4 _XGDataProviderLockDataUnsafe: You are reading the whole data for "
                    "sequential provider into the memory!",
                    "4 _XGDataProviderGetSizeUnsafe: Getting the size of sequential provider "
                    "requires locking if rewinding and skipping are not supported",
                    "3 _XGDataProviderLockDataUnsafe: Failed to read sequential data"));
}

TEST(DataProvider, PurgesWhatIsNotLocked) {
    ByteSource source = counting(20);
    XGDataProviderDirectCallbacks callbacks = {};
    callbacks.getPlanarBytePointer = test::getPointer;
    callbacks.releasePlanarBytePointer = test::releasePointer;
    callbacks.purgeData = [](void* info) { test::sourceOf(info).note("purge"); };
    callbacks.purgePlanarData = [](void* info) { test::sourceOf(info).note("purge planar"); };
    callbacks.purgePremultipliedData = [](void* info) { test::sourceOf(info).note("purge pre"); };
    const Provider provider = cf::adopt(XGDataProviderCreateDirect(&source, 20, &callbacks));
    EXPECT_NE(XGDataProviderLockPlanarData(provider.get()), nullptr);
    {
        const CollectedLog log;
        XGDataProviderPurge(provider.get());
        EXPECT_THAT(log.lines(),
                    ElementsAre(testing::AllOf(
                        StartsWith("4 XGDataProviderPurge: Skipping purge of data provider <"),
                        EndsWith("> because the planar data is locked."))));
    }
    XGDataProviderUnlockPlanarData(provider.get());
    EXPECT_THAT(source.calls, ElementsAre("lend", "purge", "purge pre", "back"));
}

TEST(DataProvider, CropsWithoutCopying) {
    ByteSource source = counting(100);
    const Provider whole = test::makeProvider(SourceKind::Pointer, source);
    const struct {
        const char* what;
        std::int64_t offset;
        std::size_t rowBytes, used, rows;
        std::int64_t size; // -1: no crop.
        bool locks;
    } cases[] = {
        {"three rows", 5, 20, 8, 3, 48, true},
        {"to the last byte", 5, 20, 15, 5, 95, true},
        {"past the end", 6, 20, 15, 5, 95, false},
        {"before the start", -1, 20, 15, 5, -1, false},
        {"sizes that overflow", 0, SIZE_MAX, 2, 3, -1, false},
        {"an end that overflows", kMost, 20, 8, 1, -1, false},
    };
    for (const auto& [what, offset, rowBytes, used, rows, size, locks] : cases) {
        const Provider crop = cf::adopt(
            XGDataProviderCreateCroppedWithProvider(whole.get(), offset, rowBytes, used, rows));
        EXPECT_EQ(crop ? XGDataProviderGetSize(crop.get()) : -1, size) << what;
        const cg::LockedData locked(crop.get());
        const void* const expected = locks ? source.bytes.data() + offset : nullptr;
        EXPECT_EQ(static_cast<const void*>(locked.bytes()), expected) << what;
    }
}

TEST(DataProvider, LendsPremultipliedDataThroughCrops) {
    ByteSource source = counting(100);
    XGDataProviderDirectCallbacks callbacks = {};
    callbacks.getPremultipliedBytePointer = test::getPointer;
    callbacks.releasePremultipliedBytePointer = test::releasePointer;
    callbacks.purgePremultipliedData = [](void* info) { test::sourceOf(info).note("purge"); };
    const Provider whole = cf::adopt(XGDataProviderCreateDirect(&source, 100, &callbacks));
    const auto cropOf = [](const Provider& provider, std::int64_t offset) {
        return cf::adopt(XGDataProviderCreateCroppedWithProvider(provider.get(), offset, 20, 8, 2));
    };
    const Provider crop = cropOf(whole, 30), inner = cropOf(crop, 0), beyond = cropOf(whole, 80);
    EXPECT_EQ(XGDataProviderLockPremultipliedData(crop.get()), source.bytes.data() + 30);
    EXPECT_EQ(XGDataProviderLockPremultipliedData(crop.get()), source.bytes.data() + 30);
    EXPECT_EQ(XGDataProviderLockPremultipliedData(inner.get()), source.bytes.data() + 30);
    EXPECT_EQ(XGDataProviderLockPremultipliedData(beyond.get()), nullptr) << "ends too late";
    EXPECT_EQ(XGDataProviderLockPlanarData(crop.get()), nullptr) << "planes lie apart";
    {
        const CollectedLog log;
        XGDataProviderPurge(whole.get());
        EXPECT_EQ(log.lines().size(), 1u) << "the crop holds the premultiplied data";
    }
    XGDataProviderUnlockPremultipliedData(inner.get());
    XGDataProviderUnlockPremultipliedData(crop.get());
    EXPECT_THAT(source.calls, ElementsAre("lend"));
    XGDataProviderUnlockPremultipliedData(crop.get());
    EXPECT_THAT(source.calls, ElementsAre("lend", "back"));
    XGDataProviderPurge(whole.get());
    EXPECT_THAT(source.calls, ElementsAre("lend", "back", "purge"));
    ByteSource plain = counting(100);
    const Provider other = cropOf(test::makeProvider(SourceKind::Pointer, plain), 30);
    EXPECT_EQ(XGDataProviderLockPremultipliedData(other.get()), nullptr) << "no such callback";
}

TEST(DataProvider, ReadsFilesMappedOrNot) {
    const test::TemporaryFolder folder;
    const std::string path = folder.write("name with space", "contents");
    for (const int map : {0, 1}) {
        const Provider provider = cf::adopt(XGDataProviderCreateWithFilename2(path.c_str(), map));
        EXPECT_EQ(XGDataProviderGetSize(provider.get()), 8);
        EXPECT_EQ(cg::LockedData(provider.get()).bytes() != nullptr, map == 1);
        const auto data = cf::adopt(CGDataProviderCopyData(provider.get()));
        ASSERT_TRUE(data);
        EXPECT_EQ(std::memcmp(CFDataGetBytePtr(data.get()), "contents", 8), 0);
        const auto url = cf::adopt(XGDataProviderCopyURL(provider.get()));
        const Provider again = cf::adopt(XGDataProviderCreateWithURL2(url.get(), map));
        EXPECT_EQ(XGDataProviderGetSize(again.get()), 8);
    }
    EXPECT_EQ(CGDataProviderCreateWithFilename(folder.path("missing").c_str()), nullptr);
    EXPECT_EQ(CGDataProviderCreateWithFilename(folder.path().c_str()), nullptr) << "a folder";
}

TEST(DataProvider, TakesTheBytesInAURLAndSaysWhichItCannotLoad) {
    const auto inside =
        cf::adopt(CFURLCreateWithString(nullptr, CFSTR("data:;base64,AAEC/w=="), nullptr));
    const Provider provider = cf::adopt(CGDataProviderCreateWithURL(inside.get()));
    const auto data = cf::adopt(CGDataProviderCopyData(provider.get()));
    ASSERT_TRUE(data);
    EXPECT_EQ(test::Bytes(CFDataGetBytePtr(data.get()), CFDataGetBytePtr(data.get()) + 4),
              test::Bytes({0, 1, 2, 255}));
    EXPECT_EQ(cf::adopt(XGDataProviderCopyURL(provider.get())).get(), inside.get());

    const CollectedLog log;
    const auto web = cf::adopt(CFURLCreateWithString(nullptr, CFSTR("http://host/a"), nullptr));
    EXPECT_EQ(CGDataProviderCreateWithURL(web.get()), nullptr);
    EXPECT_THAT(log.lines(), ElementsAre(EndsWith("there is no loader for the URL http://host/a")));
}

// Callers cannot make one; memory that is written over can.
TEST(DataProviderDeathTest, AbortsOnOneWithNeitherMemoryNorData) {
    ByteSource source = counting(8);
    const Provider provider = test::makeProvider(SourceKind::CFData, source);
    provider.get()->lentAs(cg::DataVariant::Plain).pointer = nullptr;
    provider.get()->data = nullptr;
    EXPECT_DEATH(XGDataProviderLockData(provider.get()),
                 "_XGDataProviderLockDataUnsafe.*Corrupt CGDataProvider");
    std::uint8_t byte = 0;
    std::size_t count = 0;
    EXPECT_DEATH(XGDataProviderReadBytes(provider.get(), &byte, 0, 1, &count),
                 "_XGDataProviderReadBytesUnsafe.*Corrupt CGDataProvider");
}

TEST(DataProvider, GivesEverythingBackWhenMemoryRunsOut) {
    for (const auto kind : test::kSourceKinds) {
        int unbalanced = 0;
        ByteSource source = {.bytes = test::Bytes(64)};
        const auto sweep = test::failEachAllocation([&] {
            source.position = 0;
            source.releases = 0;
            bool made = false;
            {
                const Provider provider = test::makeProvider(kind, source);
                made = static_cast<bool>(provider);
                const Provider crop =
                    cf::adopt(XGDataProviderCreateCroppedWithProvider(provider.get(), 8, 16, 8, 2));
                const auto copy = cf::adopt(CGDataProviderCopyData(crop.get()));
            }
            if (source.releases != (made && kind != SourceKind::CFData ? 1 : 0))
                ++unbalanced;
        });
        EXPECT_EQ(unbalanced, 0) << int(kind);
        EXPECT_EQ(sweep.leakedBytes, 0) << int(kind);
        EXPECT_GT(sweep.failures, 0u);
    }
}

TEST(DataReader, SeeksAsFarAsItCan) {
    ByteSource source = counting(100);
    const Provider provider = test::makeProvider(SourceKind::Data, source);
    const auto reader = cf::adopt(XGDataReaderCreate(provider.get()));
    const struct {
        const char* what;
        std::int64_t offset;
        int whence;
        std::int64_t result;
    } steps[] = {
        {"before the start", -10, 0, -1}, {"to the end", 0, 2, 100},
        {"from the end", -10, 2, 90},     {"forward", 5, 1, 95},
        {"backward", -5, 1, -1},          {"where it is", 0, 1, 95},
        {"back to a place", 40, 0, 40},   {"to the start", 0, 0, 0},
        {"too far back", -101, 2, -1},    {"from nowhere", 0, 7, -1},
    };
    for (const auto& [what, offset, whence, result] : steps)
        EXPECT_EQ(XGDataReaderSeek(reader.get(), offset, whence), result) << what;
    XGDataReaderSeek(reader.get(), 95, kXGDataReaderFromStart);
    std::uint8_t bytes[10];
    std::size_t read = 0;
    EXPECT_TRUE(XGDataReaderRead(reader.get(), bytes, 10, &read));
    EXPECT_EQ(read, 5u);
    EXPECT_EQ(bytes[4], 99);
    EXPECT_FALSE(XGDataReaderRead(reader.get(), bytes, 10, &read));
    const auto copy = cf::adopt(XGDataReaderCreateCopy(reader.get()));
    EXPECT_EQ(XGDataReaderTell(copy.get()), 0);
}
