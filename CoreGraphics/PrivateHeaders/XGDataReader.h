/* XGDataReader.h: a cursor over a data provider.
 *
 * A reader belongs to one thread at a time; many may read one provider, each at its own
 * position. */
#pragma once

#include "XGDataProvider.h"

CG_BEGIN_DECLS

typedef struct XGDataReader* XGDataReaderRef;

/** What an offset counts from. */
enum { kXGDataReaderFromStart = 0, kXGDataReaderFromPosition = 1, kXGDataReaderFromEnd = 2 };

/** A reader at the provider's first byte. */
CG_EXPORT XGDataReaderRef XGDataReaderCreate(CGDataProviderRef provider);
/** Another reader over the same provider, also at its first byte. */
CG_EXPORT XGDataReaderRef XGDataReaderCreateCopy(XGDataReaderRef reader);
CG_EXPORT XGDataReaderRef XGDataReaderRetain(XGDataReaderRef reader);
CG_EXPORT void XGDataReaderRelease(XGDataReaderRef reader);
CG_EXPORT CGDataProviderRef XGDataReaderCopyProvider(XGDataReaderRef reader);

/** The provider's whole contents, as XGDataProviderLockData. */
CG_EXPORT const void* XGDataReaderLockBytePtr(XGDataReaderRef reader);
CG_EXPORT void XGDataReaderUnlockBytePtr(XGDataReaderRef reader);

/** Reads up to `count` bytes, goes on by as many, and stores how many in `read` (may be NULL).
 *  False when there were none. */
CG_EXPORT bool XGDataReaderRead(XGDataReaderRef reader, void* buffer, size_t count, size_t* read);
/** Goes to the start; false when the provider cannot. */
CG_EXPORT bool XGDataReaderRewind(XGDataReaderRef reader);
/** Goes on by what the provider skips of `count` bytes, which must not be negative. */
CG_EXPORT bool XGDataReaderSkip(XGDataReaderRef reader, int64_t count);
/** The position; -1 of no reader. */
CG_EXPORT int64_t XGDataReaderTell(XGDataReaderRef reader);
/** Goes to `offset` from the start, the position or the end, and answers with the position. -1 when
 *  the provider cannot seek, for a target before the start, and for a negative offset from anywhere
 *  but the end. The end itself is only noted: the stream does not move. From the end of a stream of
 *  2^63 - 1 bytes, which could not be measured, there is no way back but to the start. */
CG_EXPORT int64_t XGDataReaderSeek(XGDataReaderRef reader, int64_t offset, int whence);

CG_EXPORT bool XGDataReaderCanRewind(XGDataReaderRef reader);
CG_EXPORT int64_t XGDataReaderGetSize(XGDataReaderRef reader);
CG_EXPORT bool XGDataReaderIsDirect(XGDataReaderRef reader);

CG_END_DECLS
