// Variations.cpp: reading a face's axes and named styles.

#include "Face/Variations.h"

namespace fm {

namespace {

// What FreeType writes for counts and names that a kind of font does not have.
constexpr FT_UInt kNotSaid = ~FT_UInt{0};

// Ids of the name table end at 16 bits; multiple masters have their axes' names as strings.
cf::Ref<CFStringRef> copyNameOrNone(hb_face_t* names, FT_UInt id) {
    return id <= 0xFFFE ? copyName(names, id) : nullptr;
}

cf::Ref<CFStringRef> copyAxisName(const FT_Var_Axis& axis, hb_face_t* names) {
    if (axis.strid != kNotSaid)
        return copyNameOrNone(names, axis.strid);
    return axis.name && *axis.name ? cf::adopt(CFStringCreateWithCString(
                                         kCFAllocatorDefault, axis.name, kCFStringEncodingUTF8))
                                   : nullptr;
}

int32_t fixed(FT_Fixed value) {
    return static_cast<int32_t>(value);
}

} // namespace

Variations::Variations(FT_Face face) : library_(face->glyph->library) {
    if (FT_HAS_MULTIPLE_MASTERS(face) && FT_Get_MM_Var(face, &record_))
        record_ = nullptr;
}

Variations::~Variations() {
    if (record_)
        FT_Done_MM_Var(library_, record_);
}

CFIndex Variations::designCount() const {
    return record_ && record_->num_designs != kNotSaid ? static_cast<CFIndex>(record_->num_designs)
                                                       : 0;
}

CFIndex Variations::namedStyleCount() const {
    return record_ && record_->num_namedstyles != kNotSaid
               ? static_cast<CFIndex>(record_->num_namedstyles)
               : 0;
}

RecordList<VariationAxis> Variations::axes(hb_face_t* names) const {
    RecordList<VariationAxis> axes(static_cast<size_t>(axisCount()));
    for (size_t i = 0; i < axes.size(); ++i) {
        const FT_Var_Axis& axis = record_->axis[i];
        axes[i] = {copyAxisName(axis, names), static_cast<uint32_t>(axis.tag), fixed(axis.minimum),
                   fixed(axis.maximum), fixed(axis.def)};
    }
    return axes;
}

RecordList<NamedStyle> Variations::namedStyles(hb_face_t* names) const {
    RecordList<NamedStyle> styles(static_cast<size_t>(namedStyleCount()));
    for (size_t i = 0; i < styles.size(); ++i) {
        const FT_Var_Named_Style& style = record_->namedstyle[i];
        RecordList<int32_t> coordinates(static_cast<size_t>(axisCount()));
        for (size_t axis = 0; axis < coordinates.size(); ++axis)
            coordinates[axis] = fixed(style.coords[axis]);
        styles[i] = {copyNameOrNone(names, style.strid), copyNameOrNone(names, style.psid),
                     std::move(coordinates)};
    }
    return styles;
}

} // namespace fm
