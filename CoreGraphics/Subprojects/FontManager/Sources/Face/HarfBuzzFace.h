// HarfBuzzFace.h: what HarfBuzz reads of a face that FreeType opened.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGFont.h>

#include "Face/FreeType.h"

#include <hb-ot.h>
#include <hb.h>

#include <memory>

namespace fm {

template <auto destroy>
struct DestroyBy {
    template <typename Object>
    void operator()(Object* object) const {
        destroy(object);
    }
};

// HarfBuzz reads tables from FreeType's face when it first needs them, straight from the mapped
// file where there is one: neither may outlive the face.
using HarfBuzzFace = std::unique_ptr<hb_face_t, DestroyBy<hb_face_destroy>>;

HarfBuzzFace makeHarfBuzzFace(FT_Face face);

// An entry of the name table, in English where it has that, else in any language; none where it is
// absent or empty.
cf::Ref<CFStringRef> copyName(hb_face_t* face, hb_ot_name_id_t name);

// The places in a ligature where a caret may stand, in font units along the line; as many as fit
// are written. The answer is how many there are.
CFIndex ligatureCarets(hb_face_t* face, CGGlyph glyph, CGFloat* positions, CFIndex capacity);

} // namespace fm
