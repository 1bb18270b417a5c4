// SizedFace.cpp: setting a face's size and transform, and undoing it.

#include "Glyph/SizedFace.h"

#include <cstdint>

namespace fm {

namespace {

// Marks the size that is the renderer's among a face's sizes. Its data is the size last set, which
// need not be set again: glyphs mostly come one after the other of the same.
void ourSize(void*) {}

FT_Size sizeOfOurs(FT_Face face) {
    for (FT_ListNode node = face->sizes_list.head; node; node = node->next)
        if (const auto size = static_cast<FT_Size>(node->data); size->generic.finalizer == ourSize)
            return size;
    FT_Size size = nullptr;
    if (FT_New_Size(face, &size) != 0)
        return nullptr;
    size->generic = {nullptr, ourSize};
    return size;
}

bool activateOurs(FT_Face face) {
    const FT_Size size = sizeOfOurs(face);
    return size && FT_Activate_Size(size) == 0;
}

bool setScale(FT_Face face, std::int32_t size) {
    void* const mark = reinterpret_cast<void*>(static_cast<std::intptr_t>(size));
    if (face->size->generic.data == mark)
        return true;
    if (FT_Set_Char_Size(face, 0, size, 0, 0) != 0)
        return false;
    face->size->generic.data = mark;
    return true;
}

void setTransform(FT_Face face, const GlyphKey& key) {
    FT_Matrix matrix = {key.matrix[0], key.matrix[2], key.matrix[1], key.matrix[3]};
    FT_Vector place = {key.x, key.y};
    FT_Set_Transform(face, key.isUpright() ? nullptr : &matrix,
                     key.x != 0 || key.y != 0 ? &place : nullptr);
}

} // namespace

SizedFace::SizedFace(FT_Face face, const GlyphKey& key) : face_(face), before_(face->size) {
    isReady_ = activateOurs(face) && setScale(face, key.size);
    if (isReady_)
        setTransform(face, key);
}

SizedFace::SizedFace(FT_Face face, const GlyphKey& key, Strike) : face_(face), before_(face->size) {
    FT_Int index = 0;
    nearestStrike(face, key.size, index);
    isReady_ = activateOurs(face) && FT_Select_Size(face, index) == 0;
    if (isReady_)
        face->size->generic.data = nullptr;
}

SizedFace::~SizedFace() {
    FT_Set_Transform(face_, nullptr, nullptr);
    if (before_)
        FT_Activate_Size(before_);
}

std::int32_t nearestStrike(FT_Face face, std::int32_t size, FT_Int& index) {
    index = 0;
    for (FT_Int i = 1; i < face->num_fixed_sizes; ++i) {
        const FT_Pos best = face->available_sizes[index].y_ppem;
        const FT_Pos other = face->available_sizes[i].y_ppem;
        const bool isCloser = best < size ? other > best : other >= size && other < best;
        if (isCloser)
            index = i;
    }
    return static_cast<std::int32_t>(face->available_sizes[index].y_ppem);
}

} // namespace fm
