// StrikeScaler.cpp: resampling bitmaps of strikes.

#include "Glyph/StrikeScaler.h"

#include "Glyph/GlyphPixels.h"

#include <algorithm>
#include <cmath>

namespace fm {

namespace {

constexpr double kMostPixels = 2048;
// Samples along an axis of a pixel; from six on they need no interpolation among themselves.
constexpr int kMostSamples = 16;
constexpr int kEnoughSamples = 6;

struct Point {
    double x, y;
};

// x′ = ax + cy + tx, y′ = bx + dy + ty, y up.
struct Matrix {
    double a, b, c, d, tx, ty;

    Point apply(Point p) const { return {a * p.x + c * p.y + tx, b * p.x + d * p.y + ty}; }
    double determinant() const { return a * d - b * c; }
    Matrix inverse() const {
        const double det = determinant();
        return {
            d / det, -b / det, -c / det, a / det, (c * ty - d * tx) / det, (b * tx - a * ty) / det};
    }
};

Matrix matrixOf(const GlyphKey& key, double scale) {
    const double unit = scale / 65536;
    return {key.matrix[0] * unit, key.matrix[1] * unit, key.matrix[2] * unit,
            key.matrix[3] * unit, key.x / 64.0,         key.y / 64.0};
}

struct Box {
    double left, bottom, right, top;
};

// In whole pixels, around the transformed bitmap.
Box boxAround(const GlyphRecord& bitmap, const Matrix& matrix) {
    const double left = bitmap.left, top = bitmap.top;
    const double right = left + bitmap.width, bottom = top - bitmap.height;
    const Point corners[] = {matrix.apply({left, top}), matrix.apply({right, top}),
                             matrix.apply({left, bottom}), matrix.apply({right, bottom})};
    const auto [minX, maxX] = std::ranges::minmax(corners, {}, &Point::x);
    const auto [minY, maxY] = std::ranges::minmax(corners, {}, &Point::y);
    return {std::floor(minX.x), std::floor(minY.y), std::ceil(maxX.x), std::ceil(maxY.y)};
}

// Reads a bitmap at places between its pixels; around it there is nothing. Points are in the
// bitmap's pixels, rows downwards.
class Sampler {
public:
    explicit Sampler(const GlyphRecord& bitmap)
        : bitmap_(bitmap), channels_(bitmap.format == kFMGlyphFormatColor ? 4 : 1) {}

    int channels() const { return channels_; }

    void addNearest(Point p, double* sums) const {
        addPixel(std::floor(p.x), std::floor(p.y), 1, sums);
    }
    void addInterpolated(Point p, double* sums) const {
        const double x = std::floor(p.x - 0.5), y = std::floor(p.y - 0.5);
        const double fx = p.x - 0.5 - x, fy = p.y - 0.5 - y;
        addPixel(x, y, (1 - fx) * (1 - fy), sums);
        addPixel(x + 1, y, fx * (1 - fy), sums);
        addPixel(x, y + 1, (1 - fx) * fy, sums);
        addPixel(x + 1, y + 1, fx * fy, sums);
    }

private:
    void addPixel(double x, double y, double weight, double* sums) const {
        if (!(x >= 0 && y >= 0 && x < bitmap_.width && y < bitmap_.height))
            return;
        const uint8_t* const pixel = bitmap_.pixels +
                                     static_cast<std::size_t>(y) * bitmap_.bytesPerRow +
                                     static_cast<std::size_t>(x) * static_cast<unsigned>(channels_);
        for (int i = 0; i < channels_; ++i)
            sums[i] += weight * pixel[i];
    }

    const GlyphRecord& bitmap_;
    int channels_;
};

int samplesPerAxis(const Matrix& toBitmap) {
    const double step =
        std::max(std::hypot(toBitmap.a, toBitmap.b), std::hypot(toBitmap.c, toBitmap.d));
    return step < kMostSamples ? std::max(1, static_cast<int>(std::ceil(step))) : kMostSamples;
}

// From places in the scaled glyph, y up, to the bitmap's own pixels, rows downwards.
Point inBitmap(const GlyphRecord& bitmap, const Matrix& toBitmap, Point p) {
    const Point place = toBitmap.apply(p);
    return {place.x - bitmap.left, bitmap.top - place.y};
}

void fillPixel(const GlyphRecord& bitmap, const Sampler& sampler, const Matrix& toBitmap,
               Point corner, int samples, uint8_t* pixel) {
    double sums[4] = {};
    for (int j = 0; j < samples; ++j) {
        for (int i = 0; i < samples; ++i) {
            const Point p = inBitmap(
                bitmap, toBitmap, {corner.x + (i + 0.5) / samples, corner.y + (j + 0.5) / samples});
            if (samples < kEnoughSamples)
                sampler.addInterpolated(p, sums);
            else
                sampler.addNearest(p, sums);
        }
    }
    for (int i = 0; i < sampler.channels(); ++i)
        pixel[i] = static_cast<uint8_t>(sums[i] / (samples * samples) + 0.5);
}

void fill(GlyphRecord& record, const GlyphRecord& bitmap, const Matrix& toBitmap) {
    const Sampler sampler(bitmap);
    const int samples = samplesPerAxis(toBitmap);
    for (uint32_t row = 0; row < record.height; ++row) {
        uint8_t* pixel = rowOf(record, row);
        const double bottom = double(record.top) - row - 1;
        for (uint32_t x = 0; x < record.width; ++x, pixel += sampler.channels())
            fillPixel(bitmap, sampler, toBitmap, {double(record.left) + x, bottom}, samples, pixel);
    }
}

void makeTwoValued(GlyphRecord& record) {
    for (uint32_t row = 0; row < record.height; ++row)
        std::transform(rowOf(record, row), rowOf(record, row) + record.width, rowOf(record, row),
                       [](uint8_t coverage) { return coverage < 128 ? uint8_t{0} : uint8_t{255}; });
}

} // namespace

GlyphPointer scaleBitmap(const GlyphKey& key, const FT_GlyphSlotRec& slot, double scale) {
    GlyphPointer bitmap = copyBitmap(key, slot);
    if (!bitmap || bitmap->width == 0 || bitmap->height == 0 ||
        (scale == 1 && key.isUpright() && key.x == 0 && key.y == 0))
        return bitmap;
    const Matrix matrix = matrixOf(key, scale);
    const Box box = boxAround(*bitmap, matrix);
    if (std::max(box.right - box.left, box.top - box.bottom) > kMostPixels)
        return nullptr;
    if (matrix.determinant() == 0)
        return makeGlyphRecord(key, bitmap->format, 0, 0);
    GlyphPointer record =
        makeGlyphRecord(key, bitmap->format, static_cast<uint32_t>(box.right - box.left),
                        static_cast<uint32_t>(box.top - box.bottom));
    if (!record)
        return nullptr;
    record->left = static_cast<int32_t>(box.left);
    record->top = static_cast<int32_t>(box.top);
    fill(*record, *bitmap, matrix.inverse());
    if (key.kind == GlyphKind::Mono && record->format == kFMGlyphFormatGreyMask)
        makeTwoValued(*record);
    return record;
}

} // namespace fm
