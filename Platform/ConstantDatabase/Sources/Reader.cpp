// Reader.cpp: finding records in bytes that are not to be trusted.

#include <ConstantDatabase/Reader.h>
#include <cdb.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace constantdatabase {

std::optional<Reader> Reader::overBytes(Bytes bytes) {
    Reader reader(bytes);
    if (!reader.hasSoundHeader())
        return std::nullopt;
    return reader;
}

std::optional<Reader> Reader::overFile(int descriptor) {
    HostMapping mapping;
    if (!HostFileMap(descriptor, &mapping))
        return std::nullopt;
    Reader reader({static_cast<const std::byte*>(mapping.bytes), mapping.size});
    reader.mapping_ = mapping;
    if (!reader.hasSoundHeader())
        return std::nullopt;
    return reader;
}

// The tables follow the records and each other without a gap, and the last ends with the file. So
// they are within it, and every length but one is the wrong one.
bool Reader::hasSoundHeader() {
    if (bytes_.size() < kHeaderSize || bytes_.size() > std::numeric_limits<std::uint32_t>::max())
        return false;
    const std::size_t first = tableAt(0).position;
    std::size_t end = std::max(first, kHeaderSize);
    for (std::size_t index = 0; index < kTableCount; ++index) {
        const Table table = tableAt(index);
        if (table.position != end || table.places > (bytes_.size() - end) / kPlaceSize)
            return false;
        end += table.places * kPlaceSize;
    }
    endOfRecords_ = first;
    return end == bytes_.size();
}

std::optional<Bytes> Reader::find(Bytes key) const {
    if (key.size() > bytes_.size())
        return std::nullopt;
    const std::uint32_t hash = cdb_hash(key.data(), static_cast<unsigned>(key.size()));
    const Table table = tableAt(hash % kTableCount);
    if (table.places == 0)
        return std::nullopt;
    const std::size_t home = hash / kTableCount % table.places;
    for (std::size_t step = 0; step < table.places; ++step) {
        const std::size_t index = home + step;
        const std::size_t place =
            table.position + (index < table.places ? index : index - table.places) * kPlaceSize;
        const std::uint32_t position = wordAt(place + 4);
        if (position == 0)
            return std::nullopt;
        if (wordAt(place) != hash)
            continue;
        const auto record = recordAt(position);
        if (record && record->key.size() == key.size() &&
            std::memcmp(record->key.data(), key.data(), key.size()) == 0)
            return record->value;
    }
    return std::nullopt;
}

Reader::Table Reader::tableAt(std::size_t index) const {
    return {wordAt(index * 8), wordAt(index * 8 + 4)};
}

std::optional<Reader::Record> Reader::recordAt(std::size_t position) const {
    if (position < kHeaderSize || position > endOfRecords_ ||
        endOfRecords_ - position < kLengthsSize)
        return std::nullopt;
    const std::size_t keySize = wordAt(position);
    const std::size_t valueSize = wordAt(position + 4);
    const Bytes rest =
        bytes_.subspan(position + kLengthsSize, endOfRecords_ - position - kLengthsSize);
    if (keySize > rest.size() || valueSize > rest.size() - keySize)
        return std::nullopt;
    return Record{rest.first(keySize), rest.subspan(keySize, valueSize)};
}

// Little-endian, at any address.
std::uint32_t Reader::wordAt(std::size_t position) const {
    const std::byte* const bytes = bytes_.data() + position;
    const auto byte = [&](std::size_t index) {
        return std::to_integer<std::uint32_t>(bytes[index]) << (8 * index);
    };
    return byte(0) | byte(1) | byte(2) | byte(3);
}

void Reader::swap(Reader& other) noexcept {
    std::swap(bytes_, other.bytes_);
    std::swap(endOfRecords_, other.endOfRecords_);
    std::swap(mapping_, other.mapping_);
}

} // namespace constantdatabase
