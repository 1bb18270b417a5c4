// CheckedSize.h: sums and products of sizes that come from outside.
#pragma once

#include <concepts>
#include <cstddef>
#include <limits>
#include <optional>

namespace cg {

// A size that remembers whether arithmetic on it left the range of std::size_t:
//
//     const auto bytes = (CheckedSize(bytesPerRow) * (height - 1) + rowBytes).value();
//     if (!bytes)
//         return nullptr;
//
// Once out of range it stays so. Negative operands are out of range.
class CheckedSize {
public:
    template <std::integral Integer>
    constexpr explicit CheckedSize(Integer value) : size_(static_cast<std::size_t>(value)) {
        isInRange_ = !(value < Integer(0)) && fits(value);
    }

    constexpr std::optional<std::size_t> value() const {
        return isInRange_ ? std::optional(size_) : std::nullopt;
    }

    friend constexpr CheckedSize operator+(CheckedSize a, CheckedSize b) {
        CheckedSize sum(a.size_ + b.size_); // Unsigned: wraps around.
        sum.isInRange_ = a.isInRange_ && b.isInRange_ && sum.size_ >= a.size_;
        return sum;
    }
    friend constexpr CheckedSize operator*(CheckedSize a, CheckedSize b) {
        CheckedSize product(a.size_ * b.size_);
        product.isInRange_ =
            a.isInRange_ && b.isInRange_ && (b.size_ == 0 || product.size_ / b.size_ == a.size_);
        return product;
    }
    template <std::integral Integer>
    friend constexpr CheckedSize operator+(CheckedSize a, Integer b) {
        return a + CheckedSize(b);
    }
    template <std::integral Integer>
    friend constexpr CheckedSize operator*(CheckedSize a, Integer b) {
        return a * CheckedSize(b);
    }

private:
    template <std::integral Integer>
    static constexpr bool fits(Integer value) {
        return static_cast<Integer>(static_cast<std::size_t>(value)) == value;
    }

    std::size_t size_;
    bool isInRange_ = true;
};

} // namespace cg
