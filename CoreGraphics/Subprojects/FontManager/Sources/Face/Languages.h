// Languages.h: the languages that a face can write.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFRef.h>

#include "Face/FreeType.h"

namespace fm {

// Tags of BCP 47: first those that the face declares, then those whose exemplar characters it maps.
// None when memory runs out.
cf::Ref<CFArrayRef> copyLanguages(FT_Face face);

} // namespace fm
