// EngineMemory.h: memory for Little CMS that does not run out half-way through a transform.
#pragma once

#include <lcms2_plugin.h>

namespace cg {

// Of Little CMS, its maker's to delete; NULL when there is no way between the profiles, or no
// memory.
struct EngineTransform {
    void* native = nullptr;
    bool ranOutOfMemory = false;
};

// cmsCreateTransform, but for the case that memory runs out at any point. The engine writes through
// some of its pointers without a look while it prepares a transform: what the system does not give
// it meanwhile comes out of a reserve, and the transform that was made so is thrown away.
EngineTransform createEngineTransform(void* from, cmsUInt32Number fromFormat, void* to,
                                      cmsUInt32Number toFormat, cmsUInt32Number intent,
                                      cmsUInt32Number flags);

// What makes a context of the engine take its memory from here; `next` is the plug-in after it.
cmsPluginMemHandler engineMemoryPlugin(cmsPluginBase* next);

} // namespace cg
