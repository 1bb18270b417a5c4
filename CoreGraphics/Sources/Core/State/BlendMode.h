// BlendMode.h: how blend modes are told apart.
#pragma once

#include <CoreGraphics/CGContext.h>

namespace cg {

// Enters the option that withholds most of Porter and Duff's operators from graphics processors.
// The first call does; every state is made after one.
void registerBlendModeOption();

// Whether a mode counts as one of Porter and Duff's operators now, while the option stands as it
// is.
bool isPorterDuff(CGBlendMode mode);

} // namespace cg
