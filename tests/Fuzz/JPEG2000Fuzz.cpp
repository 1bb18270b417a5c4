// JPEG2000Fuzz.cpp: JPEG 2000 files of any bytes.

#include "ImageFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    test::readImage(bytes, size);
    return 0;
}
