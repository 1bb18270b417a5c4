// RecordList.h: a list of known length whose memory may be refused.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace fm {

// Records are gathered while a font is locked, and handed out after. Where a standard container
// would end the process for want of memory, this one is empty.
template <typename Record>
class RecordList {
public:
    RecordList() = default;
    explicit RecordList(size_t count) : records_(new (std::nothrow) Record[count]()) {
        count_ = records_ ? count : 0;
    }
    RecordList(RecordList&& other) noexcept
        : records_(std::move(other.records_)), count_(std::exchange(other.count_, 0)) {}
    RecordList& operator=(RecordList&& other) noexcept {
        std::swap(records_, other.records_);
        std::swap(count_, other.count_);
        return *this;
    }

    size_t size() const { return count_; }
    bool empty() const { return count_ == 0; }
    Record* data() { return records_.get(); }
    const Record* data() const { return records_.get(); }
    Record& operator[](size_t index) { return records_[index]; }
    const Record& operator[](size_t index) const { return records_[index]; }
    Record* begin() { return records_.get(); }
    Record* end() { return records_.get() + count_; }
    const Record* begin() const { return records_.get(); }
    const Record* end() const { return records_.get() + count_; }
    // Forgets what is behind the first `count`.
    void truncate(size_t count) { count_ = count; }

private:
    std::unique_ptr<Record[]> records_;
    size_t count_ = 0;
};

} // namespace fm
