// StateReuse.cpp: keeping states that were restored away for the next saves.

#include "Core/State/StateReuse.h"

#include "Core/State/XGGStateRecord.h"

#include <utility>

namespace cg {

namespace {

// More than drawings nest, and not worth telling from none.
constexpr std::size_t kMostSpares = 16;

template <typename Object>
bool isUnshared(const cf::Ref<Object>& object) {
    return object && CFGetRetainCount(object.get()) == 1;
}

// Whoever made a pattern waits for its end.
void dropPattern(cf::Ref<CGColorRef>& color) {
    if (color && CGColorGetPattern(color.get()))
        color = nullptr;
}

// Gives up what is large, or has an end that somebody may wait for.
void trim(XGGState& state) {
    StateValues& values = state.values;
    dropPattern(values.fillColor);
    dropPattern(values.strokeColor);
    dropPattern(values.shadowColor);
    values.font = nullptr;
    if (isUnshared(values.lineDash))
        state.spareDash = std::move(values.lineDash);
    values.lineDash = nullptr;
    if (isUnshared(state.clipping))
        emptyClipping(state.clipping.get());
    else
        state.clipping = nullptr;
}

} // namespace

SpareStates::~SpareStates() {
    dropStack(std::move(first_));
}

cf::Ref<XGGStateRef> SpareStates::copyOf(XGGStateRef state) {
    if (!first_)
        return cf::adopt(XGGStateCreateCopy(state));
    auto copy = std::move(first_);
    first_ = std::move(copy.get()->below);
    --count_;
    return copyState(copy.get(), state) ? std::move(copy) : nullptr;
}

void SpareStates::add(cf::Ref<XGGStateRef> state) {
    if (count_ == kMostSpares || !isUnshared(state))
        return;
    trim(*state.get());
    state.get()->below = std::move(first_);
    first_ = std::move(state);
    ++count_;
}

void dropStack(cf::Ref<XGGStateRef> top) {
    while (top)
        top = std::move(top.get()->below);
}

} // namespace cg
