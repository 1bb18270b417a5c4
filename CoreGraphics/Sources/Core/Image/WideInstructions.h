// WideInstructions.h: the same loop twice, for the instructions that every processor has and for
// wider ones that are looked for when a row comes.
#pragma once

#if defined(__x86_64__) && defined(__GNUC__)
#define CG_WIDE __attribute__((target("avx2")))
#else
#define CG_WIDE
#endif

namespace cg {

inline bool hasWideInstructions() {
#if defined(__x86_64__) && defined(__GNUC__)
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

} // namespace cg
