// ProviderModelTest.cpp: random access to providers of all kinds, beside the bytes themselves.

#include "Support/ProviderModel.h"

#include "Support/CollectedLog.h"

#include <gtest/gtest.h>

#include <random>

TEST(DataProvider, GivesTheSameBytesWhateverItsKindAndTheWayTheyAreRead) {
    const CollectedLog quiet; // Streams of unknown size say so.
    std::mt19937 random(20240611);
    for (int round = 0; round < 2000; ++round) {
        const auto kind = test::kSourceKinds[random() % std::size(test::kSourceKinds)];
        test::ByteSource source = {.bytes = test::Bytes(1 + random() % 200)};
        for (auto& byte : source.bytes)
            byte = static_cast<std::uint8_t>(random());
        auto provider = test::makeProvider(kind, source);
        test::Bytes expected = source.bytes;
        for (unsigned depth = random() % 3; depth > 0; --depth) {
            const std::size_t start = random() % expected.size();
            const std::size_t used = 1 + random() % (expected.size() - start);
            provider = cf::adopt(XGDataProviderCreateCroppedWithProvider(
                provider.get(), static_cast<int64_t>(start), used, used, 1));
            expected = test::Bytes(expected.begin() + static_cast<std::ptrdiff_t>(start),
                                   expected.begin() + static_cast<std::ptrdiff_t>(start + used));
        }
        test::Bytes script(3 * 60);
        for (auto& byte : script)
            byte = static_cast<std::uint8_t>(random());
        {
            test::ProviderDrive drive(std::move(provider), std::move(expected));
            EXPECT_TRUE(drive.run(script.data(), script.size()))
                << drive.mismatch() << " in round " << round << ", kind " << int(kind);
        }
        EXPECT_EQ(source.releases, kind == test::SourceKind::CFData ? 0 : 1);
    }
}
