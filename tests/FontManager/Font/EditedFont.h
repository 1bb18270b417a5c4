// EditedFont.h: the bytes of font files, taken apart, changed and put together again.
#pragma once

#include <cstdint>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace test {

inline const std::string kSans = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

inline std::string fileBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline uint32_t bigEndian(std::string_view bytes, size_t at, size_t count) {
    uint32_t number = 0;
    for (const char byte : bytes.substr(at, count))
        number = number << 8 | static_cast<uint8_t>(byte);
    return number;
}

inline void putBigEndian(std::string& bytes, size_t at, uint32_t number, size_t count) {
    for (size_t i = count; i-- > 0; number >>= 8)
        bytes[at + i] = static_cast<char>(number & 0xFF);
}

inline std::string bigEndian(uint32_t number, size_t count) {
    std::string bytes(count, '\0');
    putBigEndian(bytes, 0, number, count);
    return bytes;
}

// The tables of one font in an SFNT wrapper, by tag.
struct EditedFont {
    std::map<std::string, std::string> tables;

    explicit EditedFont(const std::string& path = kSans) {
        const std::string file = fileBytes(path);
        const uint32_t count = bigEndian(file, 4, 2);
        for (uint32_t i = 0; i < count; ++i) {
            const size_t entry = 12 + 16 * size_t{i};
            tables[file.substr(entry, 4)] =
                file.substr(bigEndian(file, entry + 8, 4), bigEndian(file, entry + 12, 4));
        }
    }

    std::string bytes() const {
        const auto count = static_cast<uint32_t>(tables.size());
        std::string directory = bigEndian(0x00010000, 4) + bigEndian(count, 2) + std::string(6, 0);
        std::string contents;
        for (const auto& [tag, table] : tables) {
            const size_t offset = 12 + 16 * tables.size() + contents.size();
            directory += tag + std::string(4, 0) + bigEndian(static_cast<uint32_t>(offset), 4) +
                         bigEndian(static_cast<uint32_t>(table.size()), 4);
            contents += table + std::string((4 - table.size() % 4) % 4, 0);
        }
        return directory + contents;
    }
};

struct NameRecord {
    uint32_t platform, encoding, language, name;
    std::string bytes;
};

// A name table of format 1, which may list language tags.
inline std::string nameTable(const std::vector<NameRecord>& records,
                             const std::vector<std::string>& tags = {}) {
    std::string strings, entries;
    const auto put = [&](const std::string& text) {
        const auto offset = static_cast<uint32_t>(strings.size());
        strings += text;
        return bigEndian(static_cast<uint32_t>(text.size()), 2) + bigEndian(offset, 2);
    };
    for (const NameRecord& record : records) {
        entries += bigEndian(record.platform, 2) + bigEndian(record.encoding, 2) +
                   bigEndian(record.language, 2) + bigEndian(record.name, 2) + put(record.bytes);
    }
    entries += bigEndian(static_cast<uint32_t>(tags.size()), 2);
    for (const std::string& tag : tags)
        entries += put(tag);
    const size_t start = 6 + entries.size();
    return bigEndian(1, 2) + bigEndian(static_cast<uint32_t>(records.size()), 2) +
           bigEndian(static_cast<uint32_t>(start), 2) + entries + strings;
}

// ASCII as UTF-16, big end first.
inline std::string utf16(std::string_view ascii) {
    std::string wide;
    for (const char character : ascii)
        wide += {'\0', character};
    return wide;
}

// A bitmap font of one glyph, in the Bitmap Distribution Format.
inline std::string bitmapFont(const std::string& family, const std::string& weight) {
    return "STARTFONT 2.1\nFONT -x-y-z\nSIZE 8 75 75\nFONTBOUNDINGBOX 8 8 0 -2\n"
           "STARTPROPERTIES 4\nFAMILY_NAME \"" +
           family + "\"\nWEIGHT_NAME \"" + weight +
           "\"\nSLANT \"I\"\nFONT_ASCENT 6\nENDPROPERTIES\nCHARS 1\nSTARTCHAR A\nENCODING 65\n"
           "SWIDTH 500 0\nDWIDTH 8 0\nBBX 8 8 0 -2\nBITMAP\n18\n24\n42\n42\n7E\n42\n42\n00\n"
           "ENDCHAR\nENDFONT\n";
}

} // namespace test
