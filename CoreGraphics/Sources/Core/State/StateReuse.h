// StateReuse.h: states and clippings whose memory serves the next one.
//
// Drawing saves and restores the state around every few marks. What a restore drops is kept empty,
// so that the next save copies into it and allocates nothing.
#pragma once

#include "XGClipping.h"
#include "XGGState.h"

namespace cg {

// Makes `target`, which nobody else holds, what XGGStateCreateCopy(source) is. False when memory
// runs out: its contents are of no use then.
bool copyState(XGGStateRef target, XGGStateRef source);
// Gives up every object that the state holds, but for the memory of a clipping of its own.
void emptyState(XGGStateRef state);

// The same for clippings; these cannot fail, because paths are shared.
void copyClipping(XGClippingRef target, XGClippingRef source);
void emptyClipping(XGClippingRef clipping);

} // namespace cg
