// DatabaseBuilder.h: finds all fonts and stores what is to know of them.
#pragma once

#include <FontManager/FMConfig.h>
#include <FontManager/FMLibrary.h>

namespace fm {

// Gives the library a database in memory of the fonts that the configuration names, that the host
// has installed and that the application brings, in this order, all of them registered and
// permanent. The font manager's lock is held.
void buildDatabase(FMLibrary& library, FMConfigRef config);

} // namespace fm
