// ProviderThreadsTest.cpp: one provider, and crops of it, read from several threads at once.

#include "Support/ProviderModel.h"
#include "Support/Threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <numeric>

TEST(ProviderThreads, ReadTheSameBytes) {
    for (const auto kind : test::kSourceKinds) {
        test::ByteSource source = {.bytes = test::Bytes(200)};
        std::iota(source.bytes.begin(), source.bytes.end(), std::uint8_t(1));
        const auto whole = test::makeProvider(kind, source);
        const auto crop =
            cf::adopt(XGDataProviderCreateCroppedWithProvider(whole.get(), 20, 50, 30, 3));
        std::atomic<int> wrong = 0;
        test::onThreads([&](std::size_t thread) {
            const bool cropped = thread % 2;
            const auto& provider = cropped ? crop : whole;
            for (int round = 0; round < 200; ++round) {
                std::uint8_t buffer[16];
                std::size_t read = 0;
                const int offset = round % 100;
                XGDataProviderReadBytes(provider.get(), buffer, offset, sizeof buffer, &read);
                const int first = offset + (cropped ? 20 : 0);
                if (read != sizeof buffer ||
                    std::memcmp(buffer, source.bytes.data() + first, read) != 0)
                    ++wrong;
                if (XGDataProviderLockData(provider.get()))
                    XGDataProviderUnlockData(provider.get());
            }
        });
        EXPECT_EQ(wrong, 0) << "kind " << int(kind);
    }
}
