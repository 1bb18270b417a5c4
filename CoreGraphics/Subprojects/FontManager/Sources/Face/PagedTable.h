// PagedTable.h: values for sparse keys, in pages made when first needed.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <new>

namespace fm {

// A table of Unicode's extent, which costs nothing for the planes and pages that nobody asks about.
// What has not been stored reads as the value that the table was made with.
template <typename Value>
class PagedTable {
public:
    static constexpr uint32_t kPageSize = 256;
    static constexpr uint32_t kEnd = 0x110000;
    using Page = std::array<Value, kPageSize>;

    explicit PagedTable(Value unset) : unset_(unset) {}

    // The page that holds `key`, which lies below kEnd; nullptr where there is none yet.
    Page* find(uint32_t key) const {
        const Plane* const plane = planes_[key >> 16].get();
        return plane ? (*plane)[(key >> 8) & 0xFF].get() : nullptr;
    }

    // The same, made where there is none; nullptr when memory runs out.
    Page* make(uint32_t key) {
        auto& plane = planes_[key >> 16];
        if (!plane)
            plane.reset(new (std::nothrow) Plane);
        if (!plane)
            return nullptr;
        auto& page = (*plane)[(key >> 8) & 0xFF];
        if (!page) {
            page.reset(new (std::nothrow) Page);
            if (page)
                page->fill(unset_);
        }
        return page.get();
    }

    void clear() {
        for (auto& plane : planes_)
            plane.reset();
    }

private:
    using Plane = std::array<std::unique_ptr<Page>, 256>;
    std::array<std::unique_ptr<Plane>, kEnd / 0x10000> planes_;
    Value unset_;
};

} // namespace fm
