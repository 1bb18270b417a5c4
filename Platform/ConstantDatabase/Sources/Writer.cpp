// Writer.cpp: records into a file, by TinyCDB.

#include <ConstantDatabase/Writer.h>

#include <limits>

namespace constantdatabase {

Writer::Writer(int descriptor) : isOpen_(cdb_make_start(&maker_, descriptor) == 0) {}

// Finishing is also what gives the maker's memory back.
Writer::~Writer() {
    if (isOpen_)
        cdb_make_finish(&maker_);
}

bool Writer::add(std::span<const std::byte> key, std::span<const std::byte> value) {
    constexpr std::size_t most = std::numeric_limits<unsigned>::max();
    if (!isOpen_ || hasFailed_ || key.size() > most || value.size() > most)
        hasFailed_ = true;
    else
        hasFailed_ = cdb_make_add(&maker_, key.data(), static_cast<unsigned>(key.size()),
                                  value.data(), static_cast<unsigned>(value.size())) != 0;
    return !hasFailed_;
}

bool Writer::finish() {
    if (!isOpen_)
        return false;
    isOpen_ = false;
    return cdb_make_finish(&maker_) == 0 && !hasFailed_;
}

} // namespace constantdatabase
