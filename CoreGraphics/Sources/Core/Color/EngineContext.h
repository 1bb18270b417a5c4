// EngineContext.h: the context of Little CMS that all our profiles and transforms belong to.
#pragma once

#include <lcms2.h>

namespace cg {

// Apart from the process's own, which other users of the engine may set up as they like, and with
// locks that need no memory: the engine's own do not survive that there is none. NULL, the
// process's context, when it could not be made.
cmsContext engineContext();

} // namespace cg
