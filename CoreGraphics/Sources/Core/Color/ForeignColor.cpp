// ForeignColor.cpp: colours that are objects of a foreign object-messaging runtime.

#include <Host/Host.h>

#include "Core/Color/CGColorRecord.h"

namespace {

using Selector = const void*;
using SelectorRegistration = Selector (*)(const char* name);
using ColorMessage = CGColorRef (*)(const void* receiver, Selector selector);

// The runtime's entry points; both missing in a process without one.
struct Messaging {
    ColorMessage send = reinterpret_cast<ColorMessage>(HostSymbolFind("objc_msgSend"));
    SelectorRegistration registerName =
        reinterpret_cast<SelectorRegistration>(HostSymbolFind("sel_registerName"));
};

} // namespace

// The runtime is looked up each time: it may be loaded late, and a foreign colour is rare.
CGColorRef cg::colorOfForeignObject(CGColorRef object) {
    const Messaging messaging;
    if (!messaging.send || !messaging.registerName)
        return nullptr;
    const CGColorRef color = messaging.send(object, messaging.registerName("CGColor"));
    return _CFRuntimeIsNative(color) ? color : nullptr;
}
