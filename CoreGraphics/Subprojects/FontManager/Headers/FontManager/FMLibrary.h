/* FMLibrary.h: the fonts that a process can use, and how their names become fonts. */
#pragma once

#include <FontManager/FMBase.h>

CG_BEGIN_DECLS

/** Splits a font's name into words (at " ", "-" and where an upper-case letter follows one that is
 *  not) and sorts them: `family` is the lower-cased words without separators that tell of neither
 *  style nor weight, or what else that family is known by ("arialmt" gives "arial"), `traits` are
 *  bits of FMFontTraits, and `weight` is one of FMFontMetrics, 0 where the name names none. The
 *  caller owns `family`. Any of the last three may be NULL. Without a name: NULL, 0 and 0. */
CG_EXPORT void FMLibraryInferFromName(CFStringRef name, CFStringRef* family, uint32_t* traits,
                                      int32_t* weight);

CG_END_DECLS
