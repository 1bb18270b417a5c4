// Variations.h: a face's axes of variation and its named styles.
#pragma once

#include "Face/FreeType.h"
#include "Face/HarfBuzzFace.h"
#include "Face/RecordList.h"

#include FT_MULTIPLE_MASTERS_H

namespace fm {

// Values are 16.16 fixed-point numbers.
struct VariationAxis {
    cf::Ref<CFStringRef> name;
    uint32_t tag;
    int32_t minimum;
    int32_t maximum;
    int32_t defaultValue;
};

struct NamedStyle {
    cf::Ref<CFStringRef> name;
    cf::Ref<CFStringRef> postScriptName;
    RecordList<int32_t> coordinates;
};

// What a face says of its variation: OpenType's or that of multiple masters. Nothing of other
// faces. The copy is freed by the FreeType library that made it, which outlives it.
class Variations {
public:
    explicit Variations(FT_Face face);
    ~Variations();
    Variations(const Variations&) = delete;
    Variations& operator=(const Variations&) = delete;

    CFIndex axisCount() const { return record_ ? static_cast<CFIndex>(record_->num_axis) : 0; }
    CFIndex designCount() const;
    CFIndex namedStyleCount() const;

    // Empty where there are none, and when memory runs out. `names` reads the name table.
    RecordList<VariationAxis> axes(hb_face_t* names) const;
    RecordList<NamedStyle> namedStyles(hb_face_t* names) const;

private:
    FT_Library library_;
    FT_MM_Var* record_ = nullptr;
};

} // namespace fm
