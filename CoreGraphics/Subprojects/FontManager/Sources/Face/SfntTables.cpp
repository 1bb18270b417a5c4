// SfntTables.cpp: reading a face's table directory, and its tables.

#include "Face/SfntTables.h"

#include FT_TRUETYPE_TABLES_H

#include <cstdlib>
#include <limits>
#include <memory>
#include <new>

namespace fm {

namespace {

constexpr FT_ULong kLongest = std::numeric_limits<int32_t>::max();

// FreeType takes tag 0 for the whole file, which is no table.
FT_ULong tableLength(FT_Face face, uint32_t tag) {
    FT_ULong length = 0;
    return tag != 0 && !FT_Load_Sfnt_Table(face, tag, 0, nullptr, &length) ? length : 0;
}

template <typename Visit>
void forEachTable(FT_Face face, Visit visit) {
    FT_ULong tag = 0, length = 0;
    for (FT_UInt i = 0; !FT_Sfnt_Table_Info(face, i, &tag, &length); ++i)
        if (length > 0)
            visit(static_cast<uint32_t>(tag));
}

} // namespace

bool hasTable(FT_Face face, uint32_t tag) {
    return tableLength(face, tag) > 0;
}

cf::Ref<CFDataRef> copyTable(FT_Face face, uint32_t tag) {
    FT_ULong length = tableLength(face, tag);
    auto* const bytes = length > 0 && length <= kLongest ? std::malloc(length) : nullptr;
    if (!bytes)
        return nullptr;
    CFDataRef table = nullptr;
    if (!FT_Load_Sfnt_Table(face, tag, 0, static_cast<FT_Byte*>(bytes), &length))
        table = CFDataCreateWithBytesNoCopy(kCFAllocatorDefault, static_cast<const UInt8*>(bytes),
                                            static_cast<CFIndex>(length), kCFAllocatorMalloc);
    if (!table)
        std::free(bytes);
    return cf::adopt(table);
}

CFIndex tableCount(FT_Face face) {
    CFIndex count = 0;
    forEachTable(face, [&](uint32_t) { ++count; });
    return count;
}

cf::Ref<CFArrayRef> copyTableTags(FT_Face face) {
    const CFIndex count = tableCount(face);
    const std::unique_ptr<const void*[]> tags(new (std::nothrow)
                                                  const void*[static_cast<size_t>(count)]);
    if (count == 0 || !tags)
        return nullptr;
    CFIndex i = 0;
    forEachTable(face, [&](uint32_t tag) {
        tags[static_cast<size_t>(i++)] = reinterpret_cast<const void*>(uintptr_t{tag});
    });
    return cf::adopt(CFArrayCreate(kCFAllocatorDefault, tags.get(), count, nullptr));
}

} // namespace fm
