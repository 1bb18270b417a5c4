// DatabaseValidation.h: whether a stored database still tells the truth.
#pragma once

#include <FontManager/FMDatabase.h>

#include "Library/InstalledFonts.h"

namespace fm {

// Whether the database was made in this format, for the user's present languages, from the present
// resources, application and fonts, and has what its fonts cannot do without. Opens no font.
bool isValid(FMDatabaseRef database, const InstalledFonts& installed);

} // namespace fm
