/* FMFontTables.h: what a font's tables say: the tables themselves, its axes of variation, its
 * features, and the languages and characters that it covers.
 *
 * All of these open the font's face. A font that is NULL, or whose face cannot be opened, answers
 * 0, false or NULL; so does one whose tables are broken. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFCharacterSet.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FMBase.h>

CG_BEGIN_DECLS

/* ---- Tables ------------------------------------------------------------------------------ */

/* A tag is four characters, the first in the highest byte: 'head' is 0x68656164. A table without a
 * byte counts as absent. Fonts without an SFNT wrapper have no tables; in a collection, a font's
 * tables are those of its face. */

CG_EXPORT bool FMFontHasTable(FMFontRef font, uint32_t tag);
/** The table's bytes as the font has them; NULL where it is absent. */
CG_EXPORT CFDataRef FMFontCopyTable(FMFontRef font, uint32_t tag);
CG_EXPORT CFIndex FMFontGetAvailableTablesCount(FMFontRef font);
/** The tags of the tables, as uintptr_t values rather than objects, in the font's order; NULL for a
 *  font without any. */
CG_EXPORT CFArrayRef FMFontCopyAvailableTables(FMFontRef font);

/* ---- Variations -------------------------------------------------------------------------- */

/* Of OpenType variable fonts and of Type 1 multiple masters. Values are 16.16 fixed-point numbers
 * in the axis's own measure. What a function is handed is valid during its call, and no lock is
 * held meanwhile: it may use the font. */

typedef struct FMVariationAxis {
    CFStringRef name; /**< In English where the font has it so; NULL for an axis without one. */
    uint32_t tag;
    int32_t minimum;
    int32_t maximum;
    int32_t defaultValue;
} FMVariationAxis;

typedef struct FMVariationNamedStyle {
    CFStringRef name;           /**< NULL for a style without one. */
    CFStringRef postScriptName; /**< NULL where the font does not say. */
    const int32_t* coordinates; /**< One for each axis. */
    CFIndex coordinateCount;
} FMVariationNamedStyle;

typedef void (*FMVariationAxisFunction)(const FMVariationAxis* axis, void* context);
typedef void (*FMVariationNamedStyleFunction)(const FMVariationNamedStyle* style, void* context);

CG_EXPORT CFIndex FMFontGetMMVariationAxisCount(FMFontRef font);
/** How many master designs a multiple-master font is interpolated from; 0 for other fonts. */
CG_EXPORT CFIndex FMFontGetMMVariationDesignCount(FMFontRef font);
CG_EXPORT CFIndex FMFontGetMMVariationNamedStyleCount(FMFontRef font);

/** Calls `function` for each axis in the font's order. False, with no call, for a font without
 *  axes, a NULL `function`, and when memory runs out. */
CG_EXPORT bool FMFontIterateMMVariationAxes(FMFontRef font, FMVariationAxisFunction function,
                                            void* context);
/** Calls `function` for each named style, as for axes. */
CG_EXPORT bool FMFontIterateMMVariationNamedStyles(FMFontRef font,
                                                   FMVariationNamedStyleFunction function,
                                                   void* context);

/* ---- Features ---------------------------------------------------------------------------- */

/* Of the `feat` table. Functions are called as those for variations are. */

typedef struct FMFeature {
    CFStringRef name; /**< NULL for a feature without one. */
    uint16_t type;
    bool isExclusive; /**< Whether at most one of its settings is on at a time. */
} FMFeature;

typedef struct FMFeatureSetting {
    CFStringRef name; /**< NULL for a setting without one. */
    uint16_t selector;
    bool isDefault;
} FMFeatureSetting;

typedef void (*FMFeatureFunction)(const FMFeature* feature, void* context);
typedef void (*FMFeatureSettingFunction)(const FMFeatureSetting* setting, void* context);

CG_EXPORT CFIndex FMFontGetAATFeaturesCount(FMFontRef font);
/** Calls `function` for each feature in the font's order. False, with no call, for a font without
 *  features, a NULL `function`, and when memory runs out. */
CG_EXPORT bool FMFontIterateAATFeatures(FMFontRef font, FMFeatureFunction function, void* context);
/** Calls `function` for each setting of the features of `featureType`; false also where there is no
 *  such feature. */
CG_EXPORT bool FMFontIterateAATFeatureSettings(FMFontRef font, uint16_t featureType,
                                               FMFeatureSettingFunction function, void* context);

/* ---- Coverage ---------------------------------------------------------------------------- */

/** The languages that the font can write, as strings of BCP 47 tags, such as "en" or "zh-Hant":
 *  those that its `meta` table names, then those of Unicode's locale data whose exemplar characters
 *  it maps, in the order of their tags. Empty for a font of symbols. */
CG_EXPORT CFArrayRef FMFontCopySupportedLanguages(FMFontRef font);
/** The code points that the font's charmap gives glyphs to, as the charmap has them: the characters
 *  of symbol fonts lie at U+F000. Empty for a font without a charmap. */
CG_EXPORT CFCharacterSetRef FMFontCopyCharacterSet(FMFontRef font);

CG_END_DECLS
