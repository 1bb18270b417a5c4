/* ImageIOBase.h: what the headers of the image file library share.
 *
 * What CGBase.h says of ownership, NULL, failure and threads holds here as well: a source and its
 * images may be read by several threads, a destination belongs to one at a time. Options and
 * properties are dictionaries with the keys of CGImageSource.h, CGImageDestination.h and
 * CGImageProperties.h; keys that are not known and values of another type are passed over. */
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreGraphics/CGBase.h>
