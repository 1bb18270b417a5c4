// Features.cpp: reading the `feat` table through HarfBuzz.

#include "Face/Features.h"

#include <hb-aat.h>

namespace fm {

namespace {

hb_aat_layout_feature_type_t featureType(uint16_t type) {
    return static_cast<hb_aat_layout_feature_type_t>(type);
}

// Exclusive features have a setting that is on by itself; the others leave each setting to be
// turned on or off.
unsigned defaultSettingIndex(hb_face_t* face, hb_aat_layout_feature_type_t type) {
    unsigned index = HB_AAT_LAYOUT_NO_SELECTOR_INDEX;
    hb_aat_layout_feature_type_get_selector_infos(face, type, 0, nullptr, nullptr, &index);
    return index;
}

} // namespace

CFIndex featureCount(hb_face_t* face) {
    return static_cast<CFIndex>(hb_aat_layout_get_feature_types(face, 0, nullptr, nullptr));
}

RecordList<Feature> features(hb_face_t* face) {
    RecordList<hb_aat_layout_feature_type_t> types(static_cast<size_t>(featureCount(face)));
    RecordList<Feature> features(types.size());
    auto count = static_cast<unsigned>(features.size());
    if (count > 0)
        hb_aat_layout_get_feature_types(face, 0, &count, types.data());
    features.truncate(count);
    for (size_t i = 0; i < features.size(); ++i)
        features[i] = {
            copyName(face, hb_aat_layout_feature_type_get_name_id(face, types[i])),
            static_cast<uint16_t>(types[i]),
            defaultSettingIndex(face, types[i]) != HB_AAT_LAYOUT_NO_SELECTOR_INDEX,
        };
    return features;
}

RecordList<FeatureSetting> featureSettings(hb_face_t* face, uint16_t type) {
    const auto feature = featureType(type);
    const unsigned total =
        hb_aat_layout_feature_type_get_selector_infos(face, feature, 0, nullptr, nullptr, nullptr);
    RecordList<hb_aat_layout_feature_selector_info_t> infos(total);
    RecordList<FeatureSetting> settings(infos.size());
    auto count = static_cast<unsigned>(settings.size());
    if (count > 0)
        hb_aat_layout_feature_type_get_selector_infos(face, feature, 0, &count, infos.data(),
                                                      nullptr);
    settings.truncate(count);
    const unsigned defaultIndex = defaultSettingIndex(face, feature);
    for (size_t i = 0; i < settings.size(); ++i)
        settings[i] = {copyName(face, infos[i].name_id), static_cast<uint16_t>(infos[i].enable),
                       i == defaultIndex};
    return settings;
}

} // namespace fm
