// ProviderStreamFuzz.cpp: any sequence of reads, skips, seeks and locks on providers of all kinds.

#include <Host/Host.h>

#include "Support/ProviderModel.h"

#include <cstdlib>

// The first bytes choose the kind, whether its callbacks lie, the size, and a crop; then come the
// operations. Of lying callbacks only memory safety can be asked.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* input, size_t size) {
    constexpr size_t kHead = 5;
    if (size < kHead || size > 4096)
        return 0;
    HostLogSetThreshold(kHostLogFault);
    test::ByteSource source = {.bytes = test::Bytes(input[1])};
    for (size_t index = 0; index < source.bytes.size(); ++index)
        source.bytes[index] = static_cast<uint8_t>(index * 37 + input[2]);
    source.lie = input[0] & 0x80 ? 1 + input[2] : 0;
    auto provider = test::makeProvider(test::kSourceKinds[input[0] % 7], source);
    test::Bytes expected = source.bytes;
    if (provider && input[0] & 0x40) {
        const size_t start = std::min<size_t>(input[3], expected.size());
        const size_t used = std::min<size_t>(input[4], expected.size() - start);
        provider = cf::adopt(XGDataProviderCreateCroppedWithProvider(
            provider.get(), static_cast<int64_t>(start), used, used, 1));
        expected.assign(source.bytes.begin() + static_cast<ptrdiff_t>(start),
                        source.bytes.begin() + static_cast<ptrdiff_t>(start + used));
    }
    if (!provider)
        return 0;
    test::ProviderDrive drive(std::move(provider), std::move(expected));
    if (!drive.run(input + kHead, size - kHead) && source.lie == 0)
        std::abort();
    return 0;
}
