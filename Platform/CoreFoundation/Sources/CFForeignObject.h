// CFForeignObject.h: objects of an object-messaging runtime that the process may have.
#pragma once

#include <CoreFoundation/CFBase.h>

// Each sends the message that stands for the operation. Without such a runtime in the process an
// object that is not ours is left alone: it cannot be told what it is.
namespace cf::foreign {

CFTypeRef retain(CFTypeRef object);
void release(CFTypeRef object);
bool areEqual(CFTypeRef a, CFTypeRef b);
CFHashCode hash(CFTypeRef object);
// The text of the object itself, lent; NULL when there is none.
CFStringRef description(CFTypeRef object);

} // namespace cf::foreign
