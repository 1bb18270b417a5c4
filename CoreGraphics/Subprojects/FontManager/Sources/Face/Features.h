// Features.h: the features of a face's `feat` table.
#pragma once

#include "Face/HarfBuzzFace.h"
#include "Face/RecordList.h"

namespace fm {

struct Feature {
    cf::Ref<CFStringRef> name;
    uint16_t type;
    bool isExclusive;
};

struct FeatureSetting {
    cf::Ref<CFStringRef> name;
    uint16_t selector;
    bool isDefault;
};

CFIndex featureCount(hb_face_t* face);

// Empty where there are none, and when memory runs out.
RecordList<Feature> features(hb_face_t* face);
RecordList<FeatureSetting> featureSettings(hb_face_t* face, uint16_t type);

} // namespace fm
