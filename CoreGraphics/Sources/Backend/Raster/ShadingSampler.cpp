// ShadingSampler.cpp: a function of one parameter as straight pieces.

#include "Backend/Raster/ShadingSampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace cg {

namespace {

// What two colours may differ by to be the same: half a step of eight bits.
constexpr float kTolerance = 1.f / 512;
// What joining pieces may add to that.
constexpr float kJoiningTolerance = 1.f / 2048;
constexpr int kFirstPieces = 256;
// Where a piece this short is not straight yet, the function jumps.
constexpr float kShortestPiece = 1.f / (1 << 20);
// A bound on the time that a wild function takes.
constexpr int kMostEvaluations = 1 << 17;
// Skia looks a place up among its stops one by one unless they are evenly spread.
constexpr std::size_t kMostStops = 1024;
constexpr int kEvenPieces = 8192;

SkColor4f mix(const SkColor4f& from, const SkColor4f& to, float t) {
    SkColor4f mixed;
    for (int channel = 0; channel < 4; ++channel)
        mixed[channel] = from[channel] + t * (to[channel] - from[channel]);
    return mixed;
}

bool areClose(const SkColor4f& a, const SkColor4f& b) {
    for (int channel = 0; channel < 4; ++channel)
        if (std::abs(a[channel] - b[channel]) > kTolerance)
            return false;
    return true;
}

// Halves pieces until each is straight or as short as can be.
class Refiner {
public:
    explicit Refiner(const std::function<SkColor4f(float)>& colorAt) : colorAt_(colorAt) {}

    std::vector<ShadingStop> run() {
        ShadingStop last = at(0);
        stops_.push_back(last);
        for (int piece = 1; piece <= kFirstPieces; ++piece) {
            const ShadingStop next = at(static_cast<float>(piece) / kFirstPieces);
            append(last, next);
            last = next;
        }
        return std::move(stops_);
    }

    bool gaveUp() const { return evaluations_ >= kMostEvaluations; }

private:
    ShadingStop at(float location) {
        ++evaluations_;
        return {location, colorAt_(location)};
    }

    // The places are uneven, so that a function with a period of its own does not look straight.
    bool isStraight(const ShadingStop& from, const ShadingStop& to) {
        constexpr std::array kProbes = {0.5f, 0.23f, 0.81f};
        return std::ranges::all_of(kProbes, [&](float t) {
            const float location = from.location + t * (to.location - from.location);
            return areClose(at(location).color, mix(from.color, to.color, t));
        });
    }

    void append(const ShadingStop& from, const ShadingStop& to) {
        if (gaveUp() || isStraight(from, to)) {
            stops_.push_back(to);
        } else if (to.location - from.location <= kShortestPiece) {
            stops_.push_back({to.location, from.color});
            stops_.push_back(to);
        } else {
            const ShadingStop middle = at((from.location + to.location) / 2);
            append(from, middle);
            append(middle, to);
        }
    }

    const std::function<SkColor4f(float)>& colorAt_;
    std::vector<ShadingStop> stops_;
    int evaluations_ = 0;
};

// The slopes of the lines from one stop that pass close to all stops after it so far.
class Cone {
public:
    explicit Cone(const ShadingStop& apex) : apex_(apex) {
        low_.fill(-std::numeric_limits<float>::infinity());
        high_.fill(std::numeric_limits<float>::infinity());
    }

    // Whether the straight line to `stop` is one of them.
    bool reaches(const ShadingStop& stop) const {
        const float run = stop.location - apex_.location;
        if (!(run > 0))
            return false;
        for (std::size_t channel = 0; channel < low_.size(); ++channel) {
            const float slope = rise(stop, channel) / run;
            if (!(slope >= low_[channel] && slope <= high_[channel]))
                return false;
        }
        return true;
    }

    void passBy(const ShadingStop& stop) {
        const float run = stop.location - apex_.location;
        for (std::size_t channel = 0; channel < low_.size(); ++channel) {
            low_[channel] =
                std::max(low_[channel], (rise(stop, channel) - kJoiningTolerance) / run);
            high_[channel] =
                std::min(high_[channel], (rise(stop, channel) + kJoiningTolerance) / run);
        }
    }

private:
    float rise(const ShadingStop& stop, std::size_t channel) const {
        return stop.color[static_cast<int>(channel)] - apex_.color[static_cast<int>(channel)];
    }

    ShadingStop apex_;
    std::array<float, 4> low_, high_;
};

// Leaves out the stops that lie on a straight line between others.
std::vector<ShadingStop> joined(const std::vector<ShadingStop>& stops) {
    std::vector<ShadingStop> kept;
    std::size_t anchor = 0;
    Cone cone(stops[0]);
    const auto keep = [&](std::size_t index) {
        kept.push_back(stops[index]);
        anchor = index;
        cone = Cone(stops[index]);
    };
    keep(0);
    for (std::size_t index = 1; index < stops.size(); ++index) {
        if (!cone.reaches(stops[index]) && anchor != index - 1)
            keep(index - 1);
        if (stops[index].location == stops[anchor].location)
            keep(index);
        else
            cone.passBy(stops[index]);
    }
    if (anchor != stops.size() - 1)
        keep(stops.size() - 1);
    return kept;
}

std::vector<ShadingStop> sampleEvenly(const std::function<SkColor4f(float)>& colorAt) {
    std::vector<ShadingStop> stops;
    for (int piece = 0; piece <= kEvenPieces; ++piece) {
        const float location = static_cast<float>(piece) / kEvenPieces;
        stops.push_back({location, colorAt(location)});
    }
    return stops;
}

} // namespace

std::vector<ShadingStop> sampleShading(const std::function<SkColor4f(float)>& colorAt) {
    Refiner refiner(colorAt);
    std::vector<ShadingStop> stops = joined(refiner.run());
    return stops.size() > kMostStops ? sampleEvenly(colorAt) : stops;
}

} // namespace cg
