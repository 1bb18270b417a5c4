// PixelResampler.cpp: separable box and linear filters over pixels of one or four components.

#include "PixelResampler.h"

#include "Core/Object/Diagnostics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>

namespace cg {

namespace {

// One axis of a picture, from `sourceLength` to `length` pixels.
class Axis {
public:
    Axis(std::size_t sourceLength, std::size_t length)
        : sourceLength_(sourceLength),
          step_(static_cast<double>(sourceLength) / static_cast<double>(length)) {}

    // Calls `tap(source, weight)` for the source pixels that make up a pixel, in order; the weights
    // add up to 1.
    template <typename Tap>
    void forEachTap(std::size_t pixel, Tap tap) const {
        if (step_ > 1)
            forEachCovered(pixel, tap);
        else
            forBothNeighbours(pixel, tap);
    }

private:
    template <typename Tap>
    void forEachCovered(std::size_t pixel, Tap tap) const {
        const double start = static_cast<double>(pixel) * step_;
        const double end = std::min(start + step_, static_cast<double>(sourceLength_));
        for (auto i = limited(start); i < sourceLength_ && static_cast<double>(i) < end; ++i) {
            const double covered =
                std::min(end, static_cast<double>(i + 1)) - std::max(start, static_cast<double>(i));
            tap(i, static_cast<float>(covered / (end - start)));
        }
    }

    template <typename Tap>
    void forBothNeighbours(std::size_t pixel, Tap tap) const {
        const double center = (static_cast<double>(pixel) + 0.5) * step_ - 0.5;
        const std::size_t before = limited(center);
        const std::size_t after = std::min(before + 1, sourceLength_ - 1);
        const auto weight = static_cast<float>(center <= 0 ? 0 : center - std::floor(center));
        tap(before, 1 - weight);
        tap(after, weight);
    }

    std::size_t limited(double place) const {
        return place <= 0 ? 0 : std::min(static_cast<std::size_t>(place), sourceLength_ - 1);
    }

    std::size_t sourceLength_;
    double step_;
};

// Source rows brought to their new width. Neighbouring rows are asked for again and again, so the
// last even and the last odd one are kept.
template <typename Component, std::size_t components>
class WidenedRows {
public:
    WidenedRows(const BakedPixels& source, std::size_t width, const PixelRect& part)
        : source_(source), axis_(source.width, width), part_(part) {
        if (part.width <= SIZE_MAX / 64)
            values_.reset(new (std::nothrow) float[part.width * components * 2]);
    }

    explicit operator bool() const { return values_ != nullptr; }

    const float* row(std::size_t index) {
        float* const values = values_.get() + index % 2 * part_.width * components;
        if (rowHeld_[index % 2] != index) {
            rowHeld_[index % 2] = index;
            widen(index, values);
        }
        return values;
    }

private:
    void widen(std::size_t index, float* out) const {
        const auto* const row =
            reinterpret_cast<const Component*>(source_.bytes.get() + index * source_.bytesPerRow());
        for (std::size_t x = 0; x < part_.width; ++x, out += components) {
            std::fill_n(out, components, 0.f);
            axis_.forEachTap(part_.x + x, [&](std::size_t pixel, float weight) {
                for (std::size_t i = 0; i < components; ++i)
                    out[i] += weight * static_cast<float>(row[components * pixel + i]);
            });
        }
    }

    const BakedPixels& source_;
    Axis axis_;
    PixelRect part_;
    std::unique_ptr<float[]> values_;
    std::array<std::size_t, 2> rowHeld_ = {SIZE_MAX, SIZE_MAX};
};

template <typename Component, std::size_t components>
BakedPixels resampled(const BakedPixels& source, std::size_t width, std::size_t height,
                      const PixelRect& part) {
    BakedPixels result = roomFor(part.width, part.height, source.layout);
    WidenedRows<Component, components> rows(source, width, part);
    const std::size_t values = part.width * components;
    const std::unique_ptr<float[]> sum(result && rows ? new (std::nothrow) float[values] : nullptr);
    if (!sum)
        return {};
    const Axis axis(source.height, height);
    auto* out = reinterpret_cast<Component*>(result.bytes.get());
    for (std::size_t y = 0; y < part.height; ++y) {
        std::fill_n(sum.get(), values, 0.f);
        axis.forEachTap(part.y + y, [&](std::size_t index, float weight) {
            const float* const row = rows.row(index);
            for (std::size_t i = 0; i < values; ++i)
                sum[i] += weight * row[i];
        });
        // Weights add up to 1 within their rounding.
        constexpr auto kMost = static_cast<float>(std::numeric_limits<Component>::max());
        for (std::size_t i = 0; i < values; ++i)
            *out++ = static_cast<Component>(std::min(sum[i] + 0.5f, kMost));
    }
    return result;
}

} // namespace

BakedPixels resample(const BakedPixels& source, std::size_t width, std::size_t height,
                     const PixelRect& part) {
    if (source.layout.components == 1)
        return resampled<std::uint8_t, 1>(source, width, height, part);
    if (source.layout.bytesPerComponent == 2)
        return resampled<std::uint16_t, 4>(source, width, height, part);
    return resampled<std::uint8_t, 4>(source, width, height, part);
}

} // namespace cg
