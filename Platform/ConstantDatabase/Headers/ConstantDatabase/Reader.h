// Reader.h: what a constant database holds.
#pragma once

#include <Host/Host.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace constantdatabase {

using Bytes = std::span<const std::byte>;

// Looks at bytes that anybody may have written. Opening holds the header against the size, so that
// a file which was cut off or added to is no database; whatever else is wrong is met when a record
// is read, and such a record is absent. No read leaves the bytes.
//
// Reading changes nothing in the reader: any number of threads may look up at once.
class Reader {
public:
    // Over bytes that outlive the reader. Empty when they are no database.
    static std::optional<Reader> overBytes(Bytes bytes);
    // Over a file, which is mapped and may be closed afterwards. Nobody may shorten it meanwhile:
    // it is replaced by giving another its name.
    static std::optional<Reader> overFile(int descriptor);

    Reader(Reader&& other) noexcept { swap(other); }
    Reader& operator=(Reader&& other) noexcept {
        swap(other);
        return *this;
    }
    ~Reader() { HostFileUnmap(&mapping_); }

    // The value of the first record with that key, in place.
    std::optional<Bytes> find(Bytes key) const;
    // How many records there are, by the places that they have in the tables.
    std::size_t count() const { return (bytes_.size() - endOfRecords_) / (2 * kPlaceSize); }
    // Calls `visit(key, value)` for each record in the order of their writing, up to the first
    // broken one; false when there is one.
    template <typename Visit>
    bool forEach(Visit visit) const {
        std::size_t position = kHeaderSize;
        while (position < endOfRecords_) {
            const auto record = recordAt(position);
            if (!record)
                return false;
            visit(record->key, record->value);
            position += kLengthsSize + record->key.size() + record->value.size();
        }
        return true;
    }

private:
    static constexpr std::size_t kTableCount = 256;
    static constexpr std::size_t kPlaceSize = 8;   // In a table: hash, and position of the record.
    static constexpr std::size_t kLengthsSize = 8; // Before a record: of its key, of its value.
    static constexpr std::size_t kHeaderSize = kTableCount * 8;

    struct Table {
        std::size_t position;
        std::size_t places;
    };
    struct Record {
        Bytes key;
        Bytes value;
    };

    explicit Reader(Bytes bytes) : bytes_(bytes) {}
    bool hasSoundHeader();
    Table tableAt(std::size_t index) const;
    std::optional<Record> recordAt(std::size_t position) const;
    std::uint32_t wordAt(std::size_t position) const;
    void swap(Reader& other) noexcept;

    Bytes bytes_;
    std::size_t endOfRecords_ = 0;
    HostMapping mapping_ = {nullptr, 0}; // What `bytes_` are in, if a file was mapped.
};

} // namespace constantdatabase
