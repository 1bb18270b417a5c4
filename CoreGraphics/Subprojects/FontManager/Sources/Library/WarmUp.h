// WarmUp.h: makes a library's fonts ready before they are asked for.
#pragma once

#include <FontManager/FMLibrary.h>

namespace fm {

// Makes the permanent fonts in the background, so that later look-ups find them. Keeps the library
// meanwhile, but stops when nobody else does.
void startWarmUp(FMLibraryRef library);

} // namespace fm
