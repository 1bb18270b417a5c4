// CFAllocator.cpp: allocators over callbacks, and the built-in ones.

#include "CFAllocator.h"

#include "CFAllocatorInternal.h"
#include "CFDescription.h"
#include "CFRuntimeInternal.h"

#include <cstdlib>

struct __CFAllocator {
    CFRuntimeBase base;
    CFAllocatorContext context;
};

namespace {

void* systemAllocate(CFIndex size, CFOptionFlags, void*) {
    return std::malloc(static_cast<std::size_t>(size));
}

void* systemReallocate(void* memory, CFIndex size, CFOptionFlags, void*) {
    return std::realloc(memory, static_cast<std::size_t>(size));
}

void systemDeallocate(void* memory, void*) {
    std::free(memory);
}

constexpr CFAllocatorContext kSystemContext = {
    .allocate = systemAllocate,
    .reallocate = systemReallocate,
    .deallocate = systemDeallocate,
};

__CFAllocator systemDefault = {CF_STATIC_BASE(cf::kAllocatorClass, cf::kTypeAllocator),
                               kSystemContext};
__CFAllocator mallocAllocator = {CF_STATIC_BASE(cf::kAllocatorClass, cf::kTypeAllocator),
                                 kSystemContext};
__CFAllocator mallocZone = {CF_STATIC_BASE(cf::kAllocatorClass, cf::kTypeAllocator),
                            kSystemContext};
__CFAllocator nullAllocator = {CF_STATIC_BASE(cf::kAllocatorClass, cf::kTypeAllocator), {}};
// Never asked for memory: its address is what CFAllocatorCreate looks for.
__CFAllocator useContext = {CF_STATIC_BASE(cf::kAllocatorClass, cf::kTypeAllocator), {}};

// nullptr stands for the system's allocator, so that threads which set nothing pay for nothing.
// Every creation of an object looks at it: a library that is loaded with its program finds it
// without a call.
[[gnu::tls_model("initial-exec")]] constinit thread_local CFAllocatorRef threadDefault = nullptr;

// Touched only by threads that set a default, whose end then lets go of it.
struct ThreadDefaultOwner {
    cf::Ref<CFAllocatorRef> allocator;
    ~ThreadDefaultOwner() { threadDefault = nullptr; }
};
thread_local ThreadDefaultOwner threadDefaultOwner;

void finalizeAllocator(CFTypeRef object) {
    const auto* const allocator = static_cast<CFAllocatorRef>(object);
    const bool selfHosted = CFGetAllocator(allocator) == allocator;
    if (!selfHosted && allocator->context.release)
        allocator->context.release(allocator->context.info);
}

CFStringRef describeAllocator(CFTypeRef object) {
    const CFAllocatorContext& context = static_cast<CFAllocatorRef>(object)->context;
    cf::Description text(object);
    text.append(CFSTR("info = "));
    text.appendValue(context.info, context.copyDescription);
    return text.finish();
}

__CFAllocator* createIn(CFAllocatorRef allocator) {
    constexpr auto extra = static_cast<CFIndex>(sizeof(__CFAllocator) - sizeof(CFRuntimeBase));
    return static_cast<__CFAllocator*>(
        const_cast<void*>(_CFRuntimeCreateInstance(allocator, cf::kTypeAllocator, extra, nullptr)));
}

__CFAllocator* createInstance(CFAllocatorRef allocator, const CFAllocatorContext& context) {
    if (allocator != kCFAllocatorUseContext)
        return createIn(allocator);

    const __CFAllocator provisional = {CF_STATIC_BASE(cf::kAllocatorClass, cf::kTypeAllocator),
                                       context};
    auto* const created = createIn(&provisional);
    if (created)
        cf::setPrefixedAllocator(created, created);
    return created;
}

} // namespace

namespace cf {

const CFRuntimeClass kAllocatorClass = {
    .className = "CFAllocator",
    .finalize = finalizeAllocator,
    .copyDebugDescription = describeAllocator,
};

CFAllocatorRef resolveAllocator(CFAllocatorRef allocator) {
    if (allocator)
        return allocator;
    return threadDefault ? threadDefault : &systemDefault;
}

bool isSystemAllocator(CFAllocatorRef allocator) {
    return allocator == &systemDefault || (!allocator && !threadDefault);
}

void freeSelfHostedAllocator(CFAllocatorRef allocator, void* block) {
    const CFAllocatorContext context = allocator->context;
    if (context.deallocate)
        context.deallocate(block, context.info);
    if (context.release)
        context.release(context.info);
}

} // namespace cf

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFAllocatorRef kCFAllocatorSystemDefault = &systemDefault;
const CFAllocatorRef kCFAllocatorMalloc = &mallocAllocator;
const CFAllocatorRef kCFAllocatorMallocZone = &mallocZone;
const CFAllocatorRef kCFAllocatorNull = &nullAllocator;
const CFAllocatorRef kCFAllocatorUseContext = &useContext;

CFTypeID CFAllocatorGetTypeID(void) {
    return cf::kTypeAllocator;
}

CFAllocatorRef CFAllocatorCreate(CFAllocatorRef allocator, const CFAllocatorContext* context) {
    if (!context)
        return nullptr;
    auto* const created = createInstance(allocator, *context);
    if (!created)
        return nullptr;
    created->context = *context;
    if (context->retain)
        created->context.info = const_cast<void*>(context->retain(context->info));
    return created;
}

void CFAllocatorSetDefault(CFAllocatorRef allocator) {
    if (!allocator || allocator == &useContext)
        return;
    threadDefault = allocator == &systemDefault ? nullptr : allocator;
    threadDefaultOwner.allocator = cf::retain(allocator);
}

CFAllocatorRef CFAllocatorGetDefault(void) {
    return cf::resolveAllocator(nullptr);
}

void* CFAllocatorAllocate(CFAllocatorRef allocator, CFIndex size, CFOptionFlags hint) {
    if (size <= 0)
        return nullptr;
    const CFAllocatorContext& context = cf::resolveAllocator(allocator)->context;
    return context.allocate ? context.allocate(size, hint, context.info) : nullptr;
}

void* CFAllocatorReallocate(CFAllocatorRef allocator, void* memory, CFIndex newSize,
                            CFOptionFlags hint) {
    if (!memory)
        return CFAllocatorAllocate(allocator, newSize, hint);
    if (newSize <= 0) {
        CFAllocatorDeallocate(allocator, memory);
        return nullptr;
    }
    const CFAllocatorContext& context = cf::resolveAllocator(allocator)->context;
    return context.reallocate ? context.reallocate(memory, newSize, hint, context.info) : nullptr;
}

void CFAllocatorDeallocate(CFAllocatorRef allocator, void* memory) {
    if (!memory)
        return;
    const CFAllocatorContext& context = cf::resolveAllocator(allocator)->context;
    if (context.deallocate)
        context.deallocate(memory, context.info);
}

CFIndex CFAllocatorGetPreferredSizeForSize(CFAllocatorRef allocator, CFIndex size,
                                           CFOptionFlags hint) {
    if (size <= 0)
        return 0;
    const CFAllocatorContext& context = cf::resolveAllocator(allocator)->context;
    const CFIndex preferred =
        context.preferredSize ? context.preferredSize(size, hint, context.info) : size;
    return preferred < size ? size : preferred;
}

void CFAllocatorGetContext(CFAllocatorRef allocator, CFAllocatorContext* context) {
    if (context && context->version == 0)
        *context = cf::resolveAllocator(allocator)->context;
}
