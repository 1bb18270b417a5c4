// Base64.cpp: bytes written with 64 letters (RFC 4648).

#include "Base64.h"

#include <cstdint>

namespace cf {
namespace {

constexpr std::string_view kSpace = " \t\r\n";

// Six bits of a base-64 letter, or -1.
int sextet(char letter) {
    if (letter >= 'A' && letter <= 'Z')
        return letter - 'A';
    if (letter >= 'a' && letter <= 'z')
        return letter - 'a' + 26;
    if (letter >= '0' && letter <= '9')
        return letter - '0' + 52;
    return letter == '+' ? 62 : letter == '/' ? 63 : -1;
}

} // namespace

bool decodeBase64(std::string_view text, TextBuffer& result) {
    uint32_t bits = 0;
    int count = 0;
    int padding = 0;
    for (const char letter : text) {
        if (kSpace.find(letter) != std::string_view::npos)
            continue;
        if (letter == '=') {
            ++padding;
            continue;
        }
        const int value = sextet(letter);
        if (value < 0 || padding > 0)
            return false;
        bits = bits << 6 | static_cast<uint32_t>(value);
        if (++count % 4 != 1)
            result.append(static_cast<char>(bits >> (6 - 2 * ((count - 1) % 4))));
    }
    return count % 4 != 1 && padding <= 2 && !result.failed();
}

} // namespace cf
