// ForeignTableTest.cpp: every operation in every blend mode on bitmaps that Skia does not know:
// within one step of what bare Skia draws into the same colours.

#include "XGColorSpace.h"
#include "XGColorSpaceProfile.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/DrawingOperations.h"
#include "include/core/SkBitmap.h"

#include <gtest/gtest.h>
#include <lcms2.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kWidth = test::kTableWidth, kHeight = test::kTableHeight;
constexpr std::size_t kPadding = 3; // Rows begin anywhere.

// ---- Formats, and a slow reading of their pixels

// `bits` names the components from the pixel's most significant bit on: "x1r5g5b5". Gray is 'y'.
// The bytes of each `unit` stand in reverse.
struct Format {
    const char* what;
    const char* bits;
    std::size_t unit, bitsPerComponent;
    CGBitmapInfo info;

    bool isGray() const { return std::strchr(bits, 'y'); }
    bool hasAlpha() const { return std::strchr(bits, 'a'); }
    bool isDeep() const { return bitsPerComponent > 8; }
    // In steps of a component. Products of floats leave a few dozen of the 65,535 steps of 16 bits.
    double tolerance() const { return isDeep() ? 32.001 : 1.001; }
};

constexpr CGBitmapInfo kFirst = kCGImageAlphaPremultipliedFirst;
constexpr CGBitmapInfo kLast = kCGImageAlphaPremultipliedLast;
constexpr CGBitmapInfo kSkipFirst = kCGImageAlphaNoneSkipFirst;
constexpr CGBitmapInfo kSkipLast = kCGImageAlphaNoneSkipLast;
constexpr CGBitmapInfo kLittle16 = kCGBitmapByteOrder16Little;
constexpr CGBitmapInfo kLittle32 = kCGBitmapByteOrder32Little;
constexpr CGBitmapInfo kBig16 = kCGBitmapByteOrder16Big;
constexpr CGBitmapInfo k565 = kCGImagePixelFormatRGB565;

const Format kFormats[] = {
    {"BGRA across words", "a8r8g8b8", 4, 8, kFirst | kLittle32},
    {"ABGR", "r8g8b8a8", 4, 8, kLast | kLittle32},
    {"XBGR", "r8g8b8x8", 4, 8, kSkipLast | kLittle32},
    {"ARGB", "a8r8g8b8", 1, 8, kFirst},
    {"XRGB", "x8r8g8b8", 1, 8, kSkipFirst | kCGBitmapByteOrder32Big},
    {"ARGB in pairs", "a8r8g8b8", 2, 8, kFirst | kLittle16},
    {"RGB", "r8g8b8", 1, 8, 0},
    {"RGB in 6 bits with alpha", "r6g6b6a6", 1, 6, kLast},
    {"RGB in 4 bits with alpha", "r4g4b4a4", 2, 4, kLast | kLittle16},
    {"1-5-5-5 skipped, big", "x1r5g5b5", 1, 5, kSkipFirst | kBig16},
    {"1-5-5-5 skipped, little", "x1r5g5b5", 2, 5, kSkipFirst | kLittle16},
    {"5-5-5 alone", "r5g5b5x1", 2, 5, kCGImageAlphaNone | kLittle16},
    {"1-5-5-5 with alpha", "a1r5g5b5", 2, 5, kFirst | kLittle16},
    {"5-6-5 in host order", "r5g6b5", 2, 5, k565 | kLittle16},
    {"5-6-5 in the other", "r5g6b5", 1, 5, k565 | kBig16},
    {"RGBA of 16 bits in host order", "r16g16b16a16", 2, 16, kLast | kLittle16},
    {"RGBA of 16 bits in the other", "r16g16b16a16", 1, 16, kLast | kBig16},
    {"ARGB of 16 bits", "a16r16g16b16", 2, 16, kFirst | kLittle16},
    {"RGBX of 16 bits in pairs", "r16g16b16x16", 4, 16, kSkipLast | kLittle32},
    {"gray and alpha", "y8a8", 1, 8, kLast},
    {"alpha and gray, little", "a8y8", 2, 8, kFirst | kLittle16},
    {"gray and alpha of 16 bits", "y16a16", 1, 16, kLast},
    {"gray, skipped", "x8y8", 1, 8, kSkipFirst},
};

// The places of a colour's components.
constexpr char kOrder[] = "bgra";
using Color = std::array<double, 4>; // 0…1, premultiplied.

struct Field {
    char name;
    unsigned bits;
    unsigned long most() const { return (1ul << bits) - 1; }
};

// A format taken apart.
class Pixels {
public:
    explicit Pixels(const Format& format) : format_(format) {
        unsigned bits = 0;
        for (const char* at = format.bits; *at;) {
            char* end = nullptr;
            const char name = *at;
            fields_.push_back({name, static_cast<unsigned>(std::strtoul(at + 1, &end, 10))});
            bits += fields_.back().bits;
            at = end;
        }
        bytesPerPixel_ = bits / 8;
        row_ = kWidth * bytesPerPixel_ + kPadding;
    }

    std::size_t bytesPerPixel() const { return bytesPerPixel_; }
    std::size_t row() const { return row_; }
    std::size_t at(std::size_t index) const {
        return index / kWidth * row_ + index % kWidth * bytesPerPixel_;
    }

    Color colorOf(const std::uint8_t* pixel) const {
        Color color = {0, 0, 0, 1};
        std::uint64_t number = numberOf(pixel);
        for (auto field = fields_.rbegin(); field != fields_.rend(); ++field) {
            const double value = double(number & field->most()) / double(field->most());
            number >>= field->bits;
            if (field->name == 'y')
                color[0] = color[1] = color[2] = value;
            else if (const char* const place = std::strchr(kOrder, field->name))
                color[std::size_t(place - kOrder)] = value;
        }
        return color;
    }

    // Colours are within their opacity: it is full, or all is 0.
    Bytes random() const {
        std::mt19937 random(7);
        Bytes bytes(row_ * kHeight);
        for (auto& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        std::uint64_t full = 0;
        for (const Field& field : fields_)
            full = full << field.bits | (field.name == 'a' ? field.most() : 0);
        for (std::size_t i = 0; format_.hasAlpha() && i < kWidth * kHeight; ++i) {
            std::uint8_t* const pixel = &bytes[at(i)];
            putNumber(random() % 3 == 0 ? 0 : numberOf(pixel) | full, pixel);
        }
        return bytes;
    }

    // How far the pixel is from a colour, in the format's own steps; gray is its luma.
    double stepsApart(const std::uint8_t* pixel, Color expected) const {
        if (format_.isGray())
            expected[1] = 0.0722 * expected[0] + 0.7152 * expected[1] + 0.2126 * expected[2];
        const Color color = colorOf(pixel);
        double steps = 0;
        for (const Field& field : fields_) {
            const char* const place = std::strchr(kOrder, field.name == 'y' ? 'g' : field.name);
            if (!place)
                continue;
            const auto c = std::size_t(place - kOrder);
            steps = std::max(steps, std::abs(color[c] - expected[c]) * double(field.most()));
        }
        return steps;
    }

private:
    // The pixel's bits as a number, most significant first.
    std::uint64_t numberOf(const std::uint8_t* pixel) const {
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < bytesPerPixel_; ++i)
            number = number << 8 | pixel[place(i)];
        return number;
    }
    void putNumber(std::uint64_t number, std::uint8_t* pixel) const {
        for (std::size_t i = bytesPerPixel_; i-- > 0; number >>= 8)
            pixel[place(i)] = static_cast<std::uint8_t>(number);
    }
    std::size_t place(std::size_t byte) const {
        const std::size_t unit = format_.unit;
        return byte / unit * unit + (unit - 1) - byte % unit;
    }

    const Format& format_;
    std::vector<Field> fields_;
    std::size_t bytesPerPixel_, row_;
};

// ---- The same colours where Skia draws them, in 8 or 16 bits a component

class Peer {
public:
    Peer(const Format& format, const Pixels& pixels, const Bytes& bytes) {
        const auto opacity = format.hasAlpha() ? kPremul_SkAlphaType : kOpaque_SkAlphaType;
        bitmap_.allocPixels(SkImageInfo::Make(
            kWidth, kHeight,
            format.isDeep() ? kR16G16B16A16_unorm_SkColorType : kBGRA_8888_SkColorType, opacity));
        for (std::size_t i = 0; i < kWidth * kHeight; ++i) {
            const Color color = pixels.colorOf(&bytes[pixels.at(i)]);
            for (std::size_t c = 0; c < 4; ++c)
                if (format.isDeep())
                    deep(i)[kPlaces[c]] = static_cast<std::uint16_t>(std::lround(color[c] * 65535));
                else
                    shallow(i)[c] = static_cast<std::uint8_t>(std::lround(color[c] * 255));
        }
    }

    const SkBitmap& bitmap() const { return bitmap_; }
    Color colorOf(std::size_t i) const {
        Color color;
        for (std::size_t c = 0; c < 4; ++c)
            color[c] = isDeep() ? deep(i)[kPlaces[c]] / 65535. : shallow(i)[c] / 255.;
        return color;
    }

private:
    static constexpr std::size_t kPlaces[] = {2, 1, 0, 3}; // Of blue, green, red, opacity in RGBA.

    bool isDeep() const { return bitmap_.bytesPerPixel() == 8; }
    std::uint16_t* deep(std::size_t i) const {
        return static_cast<std::uint16_t*>(bitmap_.getPixels()) + 4 * i;
    }
    std::uint8_t* shallow(std::size_t i) const {
        return static_cast<std::uint8_t*>(bitmap_.getPixels()) + 4 * i;
    }

    SkBitmap bitmap_;
};

class ForeignTable : public testing::TestWithParam<Format> {};

} // namespace

TEST_P(ForeignTable, IsWhatBareSkiaDraws) {
    const Format& format = GetParam();
    const Pixels pixels(format);
    const auto space = format.isGray() ? XGColorSpaceGetDeviceGray() : XGColorSpaceGetDeviceRGB();
    const Bytes start = pixels.random();
    const Peer before(format, pixels, start);
    const auto compare = [&](const Bytes& bytes, const Peer& after, std::size_t& changed) {
        for (std::size_t i = 0; i < kWidth * kHeight; ++i) {
            const std::uint8_t* const pixel = &bytes[pixels.at(i)];
            const Color color = after.colorOf(i);
            if (color == before.colorOf(i))
                ASSERT_EQ(std::memcmp(pixel, &start[pixels.at(i)], pixels.bytesPerPixel()), 0)
                    << "untouched pixel " << i;
            else
                ASSERT_LE(pixels.stepsApart(pixel, color), format.tolerance()) << "pixel " << i;
            changed += color != before.colorOf(i);
        }
        for (std::size_t end = pixels.row(); end <= bytes.size(); end += pixels.row())
            ASSERT_EQ(std::memcmp(&bytes[end - kPadding], &start[end - kPadding], kPadding), 0);
    };
    for (const test::DrawingOperation& operation : test::drawingOperations()) {
        if (operation.marks > 1) // The bitmap's format comes between the two.
            continue;
        std::size_t changed = 0;
        for (std::size_t mode = 0; mode < test::tableBlendModes().size(); ++mode) {
            SCOPED_TRACE(testing::Message() << operation.what << ", mode " << mode);
            Bytes bytes = start;
            const auto context = cf::adopt(CGBitmapContextCreate(bytes.data(), kWidth, kHeight,
                                                                 format.bitsPerComponent,
                                                                 pixels.row(), space, format.info));
            ASSERT_TRUE(context);
            EXPECT_EQ(CGBitmapContextGetBitsPerPixel(context.get()), 8 * pixels.bytesPerPixel());
            test::drawOurs(operation, context.get(), mode);
            const Peer after(format, pixels, start);
            test::drawBare(operation, after.bitmap(), mode, format.isGray());
            compare(bytes, after, changed);
        }
        EXPECT_GT(changed, 20 * test::tableBlendModes().size()) << operation.what;
    }
}

INSTANTIATE_TEST_SUITE_P(All, ForeignTable, testing::ValuesIn(kFormats), [](const auto& info) {
    std::string name = info.param.what;
    std::erase_if(name,
                  [](char letter) { return !std::isalnum(static_cast<unsigned char>(letter)); });
    return name;
});

// ---- Inks, whose colours are those of the library's profile

namespace {

// Between pixels of four inks and BGRA, as Little CMS does it in 8 bits.
class Inks {
public:
    Inks() {
        const auto profile = cf::adopt(XGColorSpaceProfileCreateUncalibratedCMYK());
        const cmsHPROFILE inks = XGColorSpaceProfileGetNativeObject(profile.get());
        const cmsHPROFILE rgb = cmsCreate_sRGBProfile();
        toColor_ = cmsCreateTransform(inks, TYPE_CMYK_8, rgb, TYPE_BGRA_8, INTENT_PERCEPTUAL, 0);
        toInk_ = cmsCreateTransform(rgb, TYPE_BGRA_8, inks, TYPE_CMYK_8, INTENT_PERCEPTUAL, 0);
        cmsCloseProfile(rgb);
    }
    ~Inks() {
        cmsDeleteTransform(toColor_);
        cmsDeleteTransform(toInk_);
    }
    Inks(const Inks&) = delete;
    Inks& operator=(const Inks&) = delete;

    Bytes colorsOf(const Bytes& inks) const {
        Bytes colors(inks.size(), 255);
        cmsDoTransform(toColor_, inks.data(), colors.data(), cmsUInt32Number(inks.size() / 4));
        return colors;
    }
    Bytes inksOf(const Bytes& colors) const {
        Bytes inks(colors.size());
        cmsDoTransform(toInk_, colors.data(), inks.data(), cmsUInt32Number(inks.size() / 4));
        return inks;
    }

private:
    cmsHTRANSFORM toColor_ = nullptr, toInk_ = nullptr;
};

} // namespace

TEST(InkTable, IsWhatBareSkiaDrawsInTheirColours) {
    constexpr std::size_t kRow = 4 * kWidth;
    const Inks inks;
    std::mt19937 random(7);
    Bytes start(kRow * kHeight);
    for (auto& byte : start)
        byte = static_cast<std::uint8_t>(random());
    const Bytes colors = inks.colorsOf(start);
    for (const test::DrawingOperation& operation : test::drawingOperations()) {
        if (operation.marks > 1)
            continue;
        for (std::size_t mode = 0; mode < test::tableBlendModes().size(); ++mode) {
            SCOPED_TRACE(testing::Message() << operation.what << ", mode " << mode);
            Bytes ours = start, bare = colors;
            const auto context =
                cf::adopt(CGBitmapContextCreate(ours.data(), kWidth, kHeight, 8, kRow,
                                                XGColorSpaceGetDeviceCMYK(), kCGImageAlphaNone));
            ASSERT_TRUE(context);
            test::drawOurs(operation, context.get(), mode);
            SkBitmap bitmap;
            bitmap.installPixels(
                SkImageInfo::Make(kWidth, kHeight, kBGRA_8888_SkColorType, kOpaque_SkAlphaType),
                bare.data(), kRow);
            test::drawBare(operation, bitmap, mode, false);
            const Bytes expected = inks.inksOf(bare);
            for (std::size_t i = 0; i < ours.size(); i += 4)
                for (std::size_t c = 0; c < 4; ++c)
                    if (std::memcmp(&bare[i], &colors[i], 3) == 0)
                        ASSERT_EQ(ours[i + c], start[i + c]) << "untouched pixel " << i / 4;
                    else
                        ASSERT_NEAR(ours[i + c], expected[i + c], 1) << "pixel " << i / 4;
        }
    }
}
