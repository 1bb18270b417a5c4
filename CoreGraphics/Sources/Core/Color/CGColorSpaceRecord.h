// CGColorSpaceRecord.h: what a colour space is made of.
#pragma once

#include "XGColorSpaceProfile.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGColorSpace.h>

#include "Core/Object/RuntimeObject.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <variant>

namespace cg {

using Triple = std::array<CGFloat, 3>;

constexpr std::array<CGFloat, 9> kIdentityMatrix = {1, 0, 0, 0, 1, 0, 0, 0, 1};

// White and black points are CIE XYZ.
struct GrayCalibration {
    Triple whitePoint = {1, 1, 1};
    Triple blackPoint = {0, 0, 0};
    CGFloat gamma = 1;
};

struct RGBCalibration {
    Triple whitePoint = {1, 1, 1};
    Triple blackPoint = {0, 0, 0};
    Triple gamma = {1, 1, 1};
    std::array<CGFloat, 9> matrix = kIdentityMatrix;
};

struct LabCalibration {
    Triple whitePoint = {1, 1, 1};
    Triple blackPoint = {0, 0, 0};
    std::array<CGFloat, 4> range = {-100, 100, -100, 100}; // Of a*, then of b*.
};

// Colours of an indexed space, right behind the record: a byte for each component of the base.
struct ColorTable {
    std::size_t count = 0;
    std::span<const std::uint8_t> bytes;
};

std::uint64_t nextColorSpaceSerial();

} // namespace cg

struct CGColorSpace {
    CFRuntimeBase base;
    // One of the constant names, or NULL. The device's spaces get theirs when they are asked for by
    // name, on whichever thread does.
    std::atomic<CFStringRef> name = nullptr;
    // Tells the space from all others that there are or ever were.
    const std::uint64_t serial = cg::nextColorSpaceSerial();
    bool isDevice = false;              // One of the process's own gray, RGB or CMYK.
    cf::Ref<CGColorSpaceRef> baseSpace; // Of indexed and pattern spaces.
    // The one reference to it is the space's. Of ICC spaces from the start, of others once it is
    // asked for, on whichever thread is first.
    std::atomic<XGColorSpaceProfileRef> profile = nullptr;
    CGColorSpaceModel model = kCGColorSpaceModelUnknown;
    std::size_t componentCount = 0;
    std::variant<std::monostate, cg::GrayCalibration, cg::RGBCalibration, cg::LabCalibration,
                 cg::ColorTable>
        calibration;

    // Whether pixels show as those of sRGB do. Threads that find out at once find the same.
    enum class Likeness : std::uint8_t { Unknown, Same, Other };
    std::atomic<Likeness> sRGBLikeness = Likeness::Unknown;

    ~CGColorSpace() { cg::release(profile.load(std::memory_order_relaxed)); }
};

namespace cg {

// A new space without base and calibration, and `trailingBytes` behind the record; NULL when memory
// runs out.
CGColorSpace* createColorSpace(CGColorSpaceModel model, std::size_t componentCount,
                               std::size_t trailingBytes = 0);

// The space of the library's sRGB profile; NULL, with an error in the log, when it cannot be had.
CGColorSpaceRef createSRGB();

} // namespace cg
