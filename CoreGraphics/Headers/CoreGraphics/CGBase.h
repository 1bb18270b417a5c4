/* CGBase.h: the scalar type, export macros and what holds for every function of the interface.
 *
 * Ownership: Create and Copy give a reference that the caller owns, Get lends one; Retain and
 * Release accept NULL. NULL: every function accepts NULL for an object; a setter then does nothing
 * and a getter answers 0, NULL, the identity, the null rectangle or the neutral value it names.
 * Failure: bad input is answered with NULL, false or the neutral value, after a line in the log
 * where the caller should hear of it; nothing throws. Creation answers NULL when memory runs out.
 * Threads: immutable objects (colours, colour spaces, images, immutable paths, fonts) may be shared
 * between threads; a context, its state and a path under construction belong to one at a time.
 * Angles are radians, positive from the positive x axis towards the positive y axis. */
#pragma once

#include <CoreFoundation/CFBase.h>

#if defined(__cplusplus)
#define CG_BEGIN_DECLS extern "C" {
#define CG_END_DECLS }
#else
#define CG_BEGIN_DECLS
#define CG_END_DECLS
#endif

#define CG_EXTERN_C_BEGIN CG_BEGIN_DECLS
#define CG_EXTERN_C_END CG_END_DECLS
#define CG_EXPORT extern __attribute__((visibility("default")))
#define CG_EXTERN CG_EXPORT
#define CG_INLINE static inline

/* An enumeration of fixed underlying type, and a set of flags that may be or-ed. */
#define CG_ENUM(type, name) CF_ENUM(type, name)
#define CG_OPTIONS(type, name) CF_OPTIONS(type, name)

/** Every coordinate and component is a 32-bit IEEE-754 float, on every host. */
typedef float CGFloat;
#define CGFLOAT_DEFINED 1
#define CGFLOAT_IS_DOUBLE 0
#define CGFLOAT_MIN FLT_MIN
#define CGFLOAT_MAX FLT_MAX
#define CGFLOAT_EPSILON FLT_EPSILON
