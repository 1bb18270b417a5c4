/* ExclusiveFile.h: a file with one writer at a time, among all processes of the machine. */
#pragma once

#include <Host/Host.h>

HOST_BEGIN_DECLS

/** A descriptor open for writing to the emptied or new regular file at `path`, which nobody else
 * has from this call until it is closed or renamed and closed: others wait, for `milliseconds` at
 * most. A process that ends gives its file up. -1 when it cannot be had in time, or where the file
 * system knows no locks. New files may be read and written by everybody, less the process's mask.
 */
HOST_EXPORT int HostFileOpenExclusively(const char* path, uint32_t milliseconds);

HOST_END_DECLS
