// CGColorSpaceDevice.cpp: the spaces of the device itself, one of each for the process.

#include "XGColorSpace.h"
#include <CoreGraphics/CGColorSpace.h>

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/StaticInstance.h"
#include "Core/Object/RuntimeObject.h"

namespace {

CGColorSpaceRef makeDeviceSpace(cg::StaticInstance<CGColorSpace>& storage, CGColorSpaceModel model,
                                std::size_t componentCount) {
    CGColorSpace* const space = storage.make(CGColorSpaceGetTypeID());
    space->model = model;
    space->componentCount = componentCount;
    space->isDevice = true;
    return space;
}

} // namespace

CGColorSpaceRef XGColorSpaceGetDeviceGray(void) {
    static const CGColorSpaceRef gray = [] {
        static cg::StaticInstance<CGColorSpace> storage;
        const CGColorSpaceRef space = makeDeviceSpace(storage, kCGColorSpaceModelMonochrome, 1);
        space->calibration = cg::GrayCalibration{};
        return space;
    }();
    return gray;
}

CGColorSpaceRef XGColorSpaceGetDeviceRGB(void) {
    static const CGColorSpaceRef rgb = [] {
        static cg::StaticInstance<CGColorSpace> storage;
        const CGColorSpaceRef space = makeDeviceSpace(storage, kCGColorSpaceModelRGB, 3);
        space->calibration = cg::RGBCalibration{};
        return space;
    }();
    return rgb;
}

// Deliberate: this Get function gives a reference, and the Create function below a second one.
// Callers release that many; the space is immortal either way.
CGColorSpaceRef XGColorSpaceGetDeviceCMYK(void) {
    static const CGColorSpaceRef cmyk = [] {
        static cg::StaticInstance<CGColorSpace> storage;
        return makeDeviceSpace(storage, kCGColorSpaceModelCMYK, 4);
    }();
    return cg::retain(cmyk);
}

CGColorSpaceRef CGColorSpaceCreateDeviceGray(void) {
    return cg::retain(XGColorSpaceGetDeviceGray());
}

CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void) {
    return cg::retain(XGColorSpaceGetDeviceRGB());
}

CGColorSpaceRef CGColorSpaceCreateDeviceCMYK(void) {
    return cg::retain(XGColorSpaceGetDeviceCMYK());
}
