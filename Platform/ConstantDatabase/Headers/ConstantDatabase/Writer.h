// Writer.h: the making of a constant database.
#pragma once

#include <cdb.h>

#include <cstddef>
#include <span>

namespace constantdatabase {

// Writes to a file that is empty and open for writing, and that stays the caller's. Records are on
// disk only after finish(), which writes the header last: until then readers refuse the file.
class Writer {
public:
    explicit Writer(int descriptor);
    ~Writer();
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    // False when the host refuses bytes, memory runs out or 4 GiB are full; finish() fails, too.
    bool add(std::span<const std::byte> key, std::span<const std::byte> value);
    // Whether all records are in the file.
    bool finish();

private:
    struct cdb_make maker_;
    bool isOpen_;
    bool hasFailed_ = false;
};

} // namespace constantdatabase
