/* MobileCoreServices.h: all of the type identifiers' interface. */
#pragma once

#include <MobileCoreServices/UTCoreTypes.h>
