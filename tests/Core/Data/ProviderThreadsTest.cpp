// ProviderThreadsTest.cpp: one provider, and crops of it, read from several threads at once.

#include "Support/ProviderModel.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <numeric>
#include <thread>

TEST(ProviderThreads, ReadTheSameBytes) {
    for (const auto kind : test::kSourceKinds) {
        test::ByteSource source = {.bytes = test::Bytes(200)};
        std::iota(source.bytes.begin(), source.bytes.end(), std::uint8_t(1));
        const auto whole = test::makeProvider(kind, source);
        const auto crop =
            cf::adopt(XGDataProviderCreateCroppedWithProvider(whole.get(), 20, 50, 30, 3));
        std::atomic<int> wrong = 0;
        std::array<std::thread, 4> threads;
        for (std::size_t index = 0; index < threads.size(); ++index)
            threads[index] = std::thread([&, index] {
                const bool cropped = index % 2;
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
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(wrong, 0) << "kind " << int(kind);
    }
}
