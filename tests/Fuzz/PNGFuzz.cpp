// PNGFuzz.cpp: PNG files of any bytes, and the same with right checksums, behind which there is
// more to be found.

#include "ImageFuzz.h"

#include <zlib.h>

#include <vector>

namespace {

void repairChecksums(std::vector<uint8_t>& file) {
    constexpr size_t kSignature = 8, kFrame = 12;
    for (size_t at = kSignature; at + kFrame <= file.size();) {
        const size_t length = size_t(file[at]) << 24 | size_t(file[at + 1]) << 16 |
                              size_t(file[at + 2]) << 8 | file[at + 3];
        if (length > file.size() - at - kFrame)
            return;
        const uLong sum = crc32(0, &file[at + 4], uInt(length + 4));
        for (size_t i = 0; i < 4; ++i)
            file[at + 8 + length + i] = uint8_t(sum >> (24 - 8 * i));
        at += length + kFrame;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    test::readImage(bytes, size);
    std::vector<uint8_t> repaired(bytes, bytes + size);
    repairChecksums(repaired);
    test::readImage(repaired.data(), repaired.size());
    return 0;
}
