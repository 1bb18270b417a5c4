// EditedFont.h: a font file with tables of a test's own in the place of its own, or beside them.
#pragma once

#include <cstdint>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace test {

using FontBytes = std::vector<uint8_t>;

// Big-endian bytes, written one number after another.
class TableWriter {
public:
    TableWriter& u16(std::initializer_list<unsigned> values) {
        for (const unsigned value : values)
            append(value, 2);
        return *this;
    }
    TableWriter& u32(std::initializer_list<uint32_t> values) {
        for (const uint32_t value : values)
            append(value, 4);
        return *this;
    }
    TableWriter& text(const std::string& characters) {
        bytes_.insert(bytes_.end(), characters.begin(), characters.end());
        return *this;
    }
    operator FontBytes() const { return bytes_; }

private:
    void append(uint32_t value, int count) {
        for (int shift = (count - 1) * 8; shift >= 0; shift -= 8)
            bytes_.push_back(static_cast<uint8_t>(value >> shift));
    }
    FontBytes bytes_;
};

class EditedFont {
public:
    explicit EditedFont(const char* path) {
        std::ifstream file(path, std::ios::binary);
        const FontBytes font(std::istreambuf_iterator<char>(file), {});
        const auto number = [&](size_t at, int count) {
            uint32_t value = 0;
            for (int i = 0; i < count; ++i)
                value = value << 8 | font.at(at + static_cast<size_t>(i));
            return value;
        };
        for (size_t i = 0; i < number(4, 2); ++i) {
            const size_t entry = 12 + i * 16;
            const auto first = font.begin() + number(entry + 8, 4);
            tables_[std::string(font.begin() + static_cast<long>(entry),
                                font.begin() + static_cast<long>(entry) + 4)] =
                FontBytes(first, first + number(entry + 12, 4));
        }
    }

    EditedFont& set(const std::string& tag, FontBytes table) {
        tables_[tag] = std::move(table);
        return *this;
    }

    // The file, without checksums, which nobody asks for.
    FontBytes bytes() const {
        TableWriter directory;
        directory.u32({0x00010000}).u16({unsigned(tables_.size()), 0, 0, 0});
        FontBytes contents;
        for (const auto& [tag, table] : tables_) {
            const size_t offset = 12 + tables_.size() * 16 + contents.size();
            directory.text(tag).u32({0, uint32_t(offset), uint32_t(table.size())});
            contents.insert(contents.end(), table.begin(), table.end());
            contents.resize((contents.size() + 3) / 4 * 4);
        }
        FontBytes font = directory;
        font.insert(font.end(), contents.begin(), contents.end());
        return font;
    }

private:
    std::map<std::string, FontBytes> tables_;
};

} // namespace test
