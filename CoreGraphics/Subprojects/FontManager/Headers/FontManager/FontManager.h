/* FontManager.h: all of the font manager's interface. */
#pragma once

#include <FontManager/FMBase.h>
#include <FontManager/FMConfig.h>
#include <FontManager/FMDatabase.h>
#include <FontManager/FMFallback.h>
#include <FontManager/FMFont.h>
#include <FontManager/FMFontGlyphs.h>
#include <FontManager/FMFontIterator.h>
#include <FontManager/FMFontTables.h>
#include <FontManager/FMGlyph.h>
#include <FontManager/FMLibrary.h>
#include <FontManager/FMPostScript.h>
