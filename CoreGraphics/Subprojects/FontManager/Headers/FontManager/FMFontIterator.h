/* FMFontIterator.h: a walk over the fonts that the host has installed. */
#pragma once

#include <FontManager/FMBase.h>

CG_BEGIN_DECLS

typedef struct FMFontIterator* FMFontIteratorRef;

/** What kind of font an iterator has come to. */
CG_ENUM(int32_t, FMFontIteratorType){
    kFMFontIteratorTypeNone = 0, /**< Before the first font, or past the last. */
    kFMFontIteratorTypeFile = 1, /**< A file, which may hold several faces. */
    kFMFontIteratorTypeData = 2, /**< A font in memory. */
};

/** An iterator before the first of the installed fonts. A walk belongs to one thread
 *  at a time. NULL when memory runs out or the host cannot list its fonts. */
CG_EXPORT FMFontIteratorRef FMFontIteratorCreate(void);
CG_EXPORT void FMFontIteratorRelease(FMFontIteratorRef iterator);
/** Moves to the next font; false past the last. */
CG_EXPORT bool FMFontIteratorNext(FMFontIteratorRef iterator);
CG_EXPORT FMFontIteratorType FMFontIteratorGetType(FMFontIteratorRef iterator);

CG_END_DECLS
