// Coverage.cpp: a face's code points as a character set.

#include "Face/Coverage.h"

namespace fm {

cf::Ref<CFCharacterSetRef> copyCharacterSet(FT_Face face) {
    const auto set = cf::adopt(CFCharacterSetCreateMutable(kCFAllocatorDefault));
    if (!set)
        return nullptr;
    forEachMappedRange(face, [&](uint32_t first, uint32_t last) {
        const auto length = static_cast<CFIndex>(last - first + 1);
        CFCharacterSetAddCharactersInRange(set.get(),
                                           CFRangeMake(static_cast<CFIndex>(first), length));
    });
    return cf::adopt(CFCharacterSetCreateCopy(kCFAllocatorDefault, set.get()));
}

} // namespace fm
