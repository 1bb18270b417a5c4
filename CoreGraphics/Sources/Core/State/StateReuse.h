// StateReuse.h: states, clippings and dashes whose memory serves the next one.
//
// Drawing saves and restores the state around every few marks. What a restore drops is kept, so
// that the next save copies into it and allocates nothing.
#pragma once

#include "XGClipping.h"
#include "XGGState.h"
#include <CoreFoundation/CFRef.h>

#include <cstddef>

namespace cg {

// Makes `target`, which nobody else holds, what XGGStateCreateCopy(source) is. False when memory
// runs out: its contents are of no use then.
bool copyState(XGGStateRef target, XGGStateRef source);

// The same for clippings; these cannot fail, because paths are shared.
void copyClipping(XGClippingRef target, XGClippingRef source);
void emptyClipping(XGClippingRef clipping);

// Makes a dash that nobody else holds, and that has `count` lengths, another one of as many. False
// when it is none such.
bool refillDash(XGLineDashRef dash, const CGFloat* lengths, uint32_t count, CGFloat phase);

// States that were restored away and that nobody else holds.
class SpareStates {
public:
    ~SpareStates();
    SpareStates() = default;
    SpareStates(const SpareStates&) = delete;
    SpareStates& operator=(const SpareStates&) = delete;

    // A copy of `state`; empty when memory runs out.
    cf::Ref<XGGStateRef> copyOf(XGGStateRef state);
    // Takes a state, with nothing below it, that its stack gave up. Its plain colours are kept with
    // it: the next save mostly finds the same ones in the state that it copies.
    void add(cf::Ref<XGGStateRef> state);

private:
    cf::Ref<XGGStateRef> first_; // Each has the next below it.
    std::size_t count_ = 0;
};

// Gives up a state and all below it, one by one: a stack may be deeper than destructors can nest.
void dropStack(cf::Ref<XGGStateRef> top);

} // namespace cg
