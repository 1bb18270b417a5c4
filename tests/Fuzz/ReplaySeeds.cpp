// ReplaySeeds.cpp: runs a fuzz entry over the files of a folder, and over each cut short and with
// single bits turned, so that its seeds serve as a plain test.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size);

namespace {

// A copy of its own size exactly, so that the address sanitizer sees what is read beyond it.
void run(const std::string& input) {
    const std::vector<uint8_t> bytes(input.begin(), input.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

void replay(const std::string& seed) {
    constexpr size_t kMostVariants = 1024;
    run(seed);
    const size_t stride = seed.size() * 8 / kMostVariants + 1;
    for (size_t bit = 0; bit < seed.size() * 8; bit += stride) {
        std::string damaged = seed;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
        run(damaged);
        run(seed.substr(0, bit / 8));
    }
}

} // namespace

int main(int count, char** arguments) {
    int replayed = 0;
    for (int i = 1; i < count; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(arguments[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            replay(std::string(std::istreambuf_iterator<char>(file), {}));
            ++replayed;
        }
    }
    std::printf("%d seeds\n", replayed);
    return replayed > 0 ? 0 : 1;
}
