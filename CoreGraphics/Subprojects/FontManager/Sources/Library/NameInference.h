// NameInference.h: what a font's name says of its family, style and weight.
#pragma once

#include <FontManager/FMBase.h>

#include <cstdint>
#include <string>

namespace fm {

struct InferredName {
    std::u16string family; // Lower-cased words without separators.
    std::uint32_t traits = 0;
    std::int32_t weight = 0; // 0 also where the name says nothing of it.
};

InferredName inferName(CFStringRef name);

} // namespace fm
