/* XGLineDash: the pattern of drawn and skipped lengths along a dashed stroke.
 *
 * Immutable but for its phase, so that copies of a graphics state share it. Lengths and phase are
 * in user-space units. NULL, ownership and threads are as CGBase.h says for every object. */
#pragma once

#include <CoreGraphics/CGBase.h>

CG_BEGIN_DECLS

typedef struct XGLineDash* XGLineDashRef;

/** A dash of `count` lengths copied from `lengths`, starting `phase` into the pattern.
 *  NULL when memory runs out, or when `lengths` is NULL and `count` is not 0. */
CG_EXPORT XGLineDashRef XGLineDashCreate(const CGFloat* lengths, uint32_t count, CGFloat phase);
/** A new dash with the same phase and lengths. */
CG_EXPORT XGLineDashRef XGLineDashCreateCopy(XGLineDashRef dash);
CG_EXPORT XGLineDashRef XGLineDashRetain(XGLineDashRef dash);
CG_EXPORT void XGLineDashRelease(XGLineDashRef dash);

/** How far into the pattern a stroke starts. */
CG_EXPORT CGFloat XGLineDashGetPhase(XGLineDashRef dash);
CG_EXPORT void XGLineDashSetPhase(XGLineDashRef dash, CGFloat phase);

/** The lengths, the first of them drawn; they live as long as `dash`. */
CG_EXPORT uint32_t XGLineDashGetCount(XGLineDashRef dash);
CG_EXPORT const CGFloat* XGLineDashGetLengths(XGLineDashRef dash);

/** Whether both are dashes of exactly the same phase and lengths; NULL equals nothing. */
CG_EXPORT bool XGLineDashEqualToLineDash(XGLineDashRef a, XGLineDashRef b);

CG_END_DECLS
