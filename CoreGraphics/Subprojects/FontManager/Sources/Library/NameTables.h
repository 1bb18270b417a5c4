// NameTables.h: words that stand for weights, and families that go by another name.
#pragma once

#include <cstdint>
#include <string_view>

namespace fm {

// The weight of a lower-case word or pair of words ("semibold"); NULL when it is none.
const std::int32_t* weightOfWord(std::u16string_view word);

// The family key that stands for `family`; empty when that is its own.
std::u16string_view familyAliasOf(std::u16string_view family);

} // namespace fm
