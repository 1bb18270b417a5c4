// FMFontFeatures.cpp: a font's features and their settings.

#include <FontManager/FMFontTables.h>

#include "Face/Features.h"
#include "Font/FaceUse.h"

namespace {

// Gathered with the font locked, so that no lock is held when they are handed out.
fm::RecordList<fm::Feature> featuresOf(FMFontRef font) {
    const fm::FaceUse use(font);
    if (!use)
        return {};
    return fm::features(font->cache.harfBuzzFace(use.face()));
}

fm::RecordList<fm::FeatureSetting> settingsOf(FMFontRef font, uint16_t featureType) {
    const fm::FaceUse use(font);
    if (!use)
        return {};
    return fm::featureSettings(font->cache.harfBuzzFace(use.face()), featureType);
}

} // namespace

CFIndex FMFontGetAATFeaturesCount(FMFontRef font) {
    const fm::FaceUse use(font);
    return use ? fm::featureCount(font->cache.harfBuzzFace(use.face())) : 0;
}

bool FMFontIterateAATFeatures(FMFontRef font, FMFeatureFunction function, void* context) {
    if (!function)
        return false;
    const auto features = featuresOf(font);
    for (const auto& feature : features) {
        const FMFeature record = {feature.name.get(), feature.type, feature.isExclusive};
        function(&record, context);
    }
    return !features.empty();
}

bool FMFontIterateAATFeatureSettings(FMFontRef font, uint16_t featureType,
                                     FMFeatureSettingFunction function, void* context) {
    if (!function)
        return false;
    const auto settings = settingsOf(font, featureType);
    for (const auto& setting : settings) {
        const FMFeatureSetting record = {setting.name.get(), setting.selector, setting.isDefault};
        function(&record, context);
    }
    return !settings.empty();
}
