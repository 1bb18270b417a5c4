/* FMConfig.h: how fonts are set up: where the database lies, which fonts come with the system, and
 * what stands for names and measures. docs/font-configuration.md describes the file. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFDictionary.h>
#include <FontManager/FMBase.h>

CG_BEGIN_DECLS

/** What a configuration changes about the metrics of fonts, by family. */
typedef struct FMFontOverrides* FMFontOverridesRef;

/** Where the database of fonts is; other values stand for none. */
CG_ENUM(int32_t, FMConfigType){
    kFMConfigTypePrebuiltDatabase = 1, /**< Among the system's resources. */
    kFMConfigTypeCachedDatabase = 3, /**< In the user's caches, made anew when it is out of date. */
};

/** The configuration in the file "Fonts/FontConfig.xml" of the system's resources; the built-in one
 *  where there is none, and, with an error in the log, where it cannot be read. A CF object. NULL
 *  when memory runs out. */
CG_EXPORT FMConfigRef FMConfigCreateDefault(void);
/** A value of FMConfigType, or whatever else the file says. */
CG_EXPORT int32_t FMConfigGetType(FMConfigRef config);
/** Absolute URLs of the font files that the configuration adds; lent, and empty when there are
 *  none. */
CG_EXPORT CFArrayRef FMConfigGetAssetFontURLs(FMConfigRef config);
/** What families to use in place of others: from family keys, as FMLibraryInferFromName makes them
 *  of names, to arrays of family keys, those of installed fonts first. */
CG_EXPORT CFDictionaryRef FMConfigCopyFontSubstitution(FMConfigRef config);
/** The overrides, a CF object that the caller owns from now on: the configuration has none
 *  afterwards, and a second call gives NULL. */
CG_EXPORT FMFontOverridesRef FMConfigAdoptFontOverrides(FMConfigRef config);

CG_END_DECLS
