// SfntTables.h: the tables of faces in an SFNT wrapper, of collections as well.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFRef.h>

#include "Face/FreeType.h"

namespace fm {

// A table of no bytes counts as absent, in all of these alike.
bool hasTable(FT_Face face, uint32_t tag);
cf::Ref<CFDataRef> copyTable(FT_Face face, uint32_t tag);

CFIndex tableCount(FT_Face face);
// Tags as bare numbers, in the directory's order; none for a face without tables.
cf::Ref<CFArrayRef> copyTableTags(FT_Face face);

} // namespace fm
